-- The CV To OSC panel: the target address, per channel the enable switch, threshold, rate and OSC path,
-- and the hidden OSC group.

getWindowSize = getWindowSize or function()
	return 550, 269
end

createUI = createUI or function()
	createUICommon()
	setBannerContent( "nameOnly", 20, 200 )

	local kKnobSpace = 69
	local kKnobSpaceV = 70
	local kTextW = 40
	local kButtonW = 50
	local kPropertyTextFieldH = 20
	local groupPadding = { 10, 5, 10, 5 }

	local function knobGroup( LR, title, pathProperty )
		local g = group( title, groupPadding )
		g:add( paramButton( "Enable " .. LR, "Enable", 0, 20, kButtonW, 15 ) )
		smallKnobAndTextField( g, "Threshold " .. LR, "Threshold", kButtonW + 15, 0, kTextW )
		smallKnobAndTextField( g, "Max Rate " .. LR, "Max Rate", kButtonW + 15 + kKnobSpace, 0, kTextW )
		local path = propertyTextField( pathProperty, "Enter OSC Path:", kButtonW + 15 + 2*kKnobSpace, 17, 250, kPropertyTextFieldH )
		g:add( path )
		local lab = label( "OSC Path", kButtonW + 15 + 2*kKnobSpace + 125, 14 )
		setLabelColour( lab )
		g:add( lab )
		return g
	end

	theKnobRenderer = smallKnobRenderer

	miscGroup = oscGroup( groupPadding )

	leftGroup = knobGroup( "L", "Left Channel", 64111 )
	rightGroup = knobGroup( "R", "Right Channel", 64112 )

	-- positions!
	local x = windowEdgePad
	local y = windowEdgePad + kPropertyTextFieldH + pad
	rightGroup:setPosition( x, y, true )
	y = y + rightGroup:height() + pad
	leftGroup:setPosition( x, y, true )
	miscGroup:setPosition( x + leftGroup:width() + pad, windowEdgePad + kPropertyTextFieldH + pad, true )

	-- add directly positioned objects
	local lab = label( "Target", windowEdgePad, windowEdgePad, "left", 45, kPropertyTextFieldH )
	setLabelColour( lab )
	add( lab )
	add( propertyTextField( 64110, "Enter target address and port (e.g. 127.0.0.1:7000)", windowEdgePad + 50, windowEdgePad, 250, kPropertyTextFieldH ) )
end
