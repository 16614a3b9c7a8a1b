-- The Soundplane panel: the voice and its gate source, the output matrix of offset, note, gate and the
-- three touch axes with smoothing per output, the calibration curve, and the hidden OSC group.

getWindowSize = getWindowSize or function()
	return 570, 380
end

createUI = createUI or function()
	createUICommon()
	setBannerContent( "nameOnly", 20, 200 )

	local kFieldSpace = 46
	local kRowH = 18
	local kTextW = 40
	local kButtonW = 50
	local groupPadding = { 10, 5, 10, 5 }

	theKnobRenderer = smallKnobRenderer

	miscGroup = oscGroup( groupPadding )

	voiceGroup = group( "Voice", groupPadding )
	-- "Voice ID" has no value names ("Off" at 0 is its display text), so a value field, not a drop-down.
	controlGrid( voiceGroup, { { "field", "Voice ID", "Voice" } }, 1, 0, 0, 0, 0, kDropdownW )
	voiceGroup:add( paramButton( "Gate Z", "Gate Z", 70, 0, kButtonW, 15 ) )

	-- One row per output, one column per source, and the output's smoothing.
	matrixGroup = group( "Output Matrix", groupPadding )
	local columns = { "Offset", "Note", "Gate", "X", "Y", "Z" }
	local cells = {}
	for o = 1, 6 do
		for _, c in ipairs( columns ) do table.insert( cells, { "field", "Output " .. o .. " " .. c } ) end
		table.insert( cells, { "field", "Output " .. o .. " Smoothing" } )
	end
	controlGrid( matrixGroup, cells, 7, kFieldSpace, kRowH, 20, 0, kTextW )
	for o = 1, 6 do
		local lab = label( "" .. o, 0, (6-o)*kRowH, "right", 14, kTextFieldH )
		setLabelColour( lab )
		matrixGroup:add( lab )
	end
	for i, c in ipairs( { "Offset", "Note", "Gate", "X", "Y", "Z", "Smooth" } ) do
		local lab = label( c, 20 + (i-1)*kFieldSpace + 0.5*kTextW, 6*kRowH + 11 )
		setLabelColour( lab )
		matrixGroup:add( lab )
	end

	-- positions!
	local x = windowEdgePad
	local y = windowEdgePad
	voiceGroup:setPosition( x, y, true )
	x = x + voiceGroup:width() + pad
	miscGroup:setPosition( x, y, true )
	x = windowEdgePad
	y = y + math.max( voiceGroup:height(), miscGroup:height() ) + pad
	matrixGroup:setPosition( x, y, true )

	-- add directly positioned objects
	local ww, wh = getWindowSize()
	local calX = windowEdgePad + matrixGroup:width() + pad
	local cal = calibrationDisplay( calX, y, ww - windowEdgePad - calX, matrixGroup:height() )
	setCalibrationDisplayColours( cal )
	add( cal )
end
