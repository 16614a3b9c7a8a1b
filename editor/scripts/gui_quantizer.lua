-- The Quantizer panel: per channel the grid of steps, the scale and key, and the note output last,
-- and the hidden OSC group.

getWindowSize = getWindowSize or function()
	return 786, 257
end

createUI = createUI or function()
	createUICommon()
	setBannerContent( "nameOnly", 20, 200 )

	local kKnobSpace = 52
	local kKnobSpaceV = 70
	local kTextW = 40
	local kButtonW = 50
	local groupPadding = { 10, 5, 10, 5 }

	local function knobGroup( LR, title, index )
		local g = group( title, groupPadding )
		g:add( paramButton( "Enable " .. LR, "Enable", 0, 20, kButtonW, 15 ) )
		labelledDropDown( g, "Mode " .. LR, "Mode", 1*kKnobSpace, 20, 50 )
		controlGrid( g, {
			{ "knob", "Steps " .. LR, "Steps" }, { "knob", "Steps Fine " .. LR, "Fine" },
			{ "knob", "Offset " .. LR, "Offset" }, { "knob", "Transpose " .. LR, "Transpose" },
			{ "knob", "Smoothing " .. LR, "Smooth" } }, 5, kKnobSpace, kKnobSpaceV, 2*kKnobSpace, 0, kTextW )
		g:add( paramButton( "Enable Scale " .. LR, "Scale", 7*kKnobSpace, 20, kButtonW, 15 ) )
		labelledDropDown( g, "Key " .. LR, "Key", 8*kKnobSpace, 20, 50 )
		smallKnobAndTextField( g, "Key Offset " .. LR, "Key Offset", 9*kKnobSpace, 0, kTextW )
		labelledDropDown( g, "Scale " .. LR, "Scale", 10*kKnobSpace, 20, 80 )
		local info = quantizerInfoDisplay( 10*kKnobSpace + 90, 6, 80, 34, index )
		g:add( info )
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
	miscGroup:setPosition( x + rightGroup:width() + pad, windowEdgePad, true )
end
