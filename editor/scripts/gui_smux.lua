-- The SMUX panel: a flip button per channel, and the hidden OSC group.

getWindowSize = getWindowSize or function()
	return 410, 135
end

createUI = createUI or function()
	createUICommon()
	setBannerContent( "nameOnly", 20, 200 )

	local kKnobSpace = 69
	local kButtonW = 50
	local kButtonH = 20

	theKnobRenderer = smallKnobRenderer

	miscGroup = group( "OSC" )
	smallKnobAndTextField( miscGroup, "OSC Port Offset", "Port", 0*kKnobSpace, 0 )
	miscGroup:setVisible( false )

	-- left above right on the screen, as in the two-channel panels
	flipGroup = group( "Flip" )
	flipGroup:add( paramButton( "Flip L", "Left", 0, kButtonH + pad, kButtonW, kButtonH ) )
	flipGroup:add( paramButton( "Flip R", "Right", 0, 0, kButtonW, kButtonH ) )

	-- positions!
	local x = windowEdgePad
	local y = windowEdgePad
	flipGroup:setPosition( x, y, true )
	x = x + flipGroup:width() + pad
	miscGroup:setPosition( x, y, true )
end
