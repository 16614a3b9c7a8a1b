-- The Function panel: per channel the transfer curve over its switch, function and the scales and
-- offsets of input and output, and the hidden OSC group.

getWindowSize = getWindowSize or function()
	return 400, 400
end

createUI = createUI or function()
	createUICommon()
	setBannerContent( "nameOnly", 20, 200 )

	local kKnobSpace = 60
	local kKnobSpaceV = 70
	local kTextW = 40
	local kButtonW = 50
	local groupPadding = { 10, 5, 10, 5 }

	local function knobGroup( LR, title, id )
		local g = group( title, groupPadding )
		g:add( paramButton( "Enable " .. LR, "Enable", 0, 94, kButtonW, 15 ) )
		labelledDropDown( g, "Function " .. LR, "Function", 0, 60, 70 )
		controlGrid( g, {
			{ "knob", "Input Scale " .. LR, "In Scale" }, { "knob", "Input Offset " .. LR, "In Offset" },
			{ "knob", "Output Scale " .. LR, "Out Scale" }, { "knob", "Output Offset " .. LR, "Out Offset" } },
			4, kKnobSpace, kKnobSpaceV, 0, 0, kTextW )
		local curve = functionDisplay( id, 4*kKnobSpace, 0, 100, 109 )
		setFunctionDisplayColours( curve )
		g:add( curve )
		return g
	end

	theKnobRenderer = smallKnobRenderer

	miscGroup = oscGroup( groupPadding )

	leftGroup = knobGroup( "L", "Left Channel", 0 )
	rightGroup = knobGroup( "R", "Right Channel", 1 )

	-- positions!
	local x = windowEdgePad
	local y = windowEdgePad
	rightGroup:setPosition( x, y, true )
	y = y + rightGroup:height() + pad
	leftGroup:setPosition( x, y, true )
	y = y + leftGroup:height() + pad
	miscGroup:setPosition( x, y, true )
end
