-- The Learner panel: the learned parameter's paths with their copy buttons, the active parameter and the
-- message histories; learning on and off, removing mappings; the notification target and mode; and the
-- hidden OSC group.

getWindowSize = getWindowSize or function()
	return 955, 300
end

createUI = createUI or function()
	createUICommon()

	local kButtonW = 80
	local kButtonH = 20
	local kCopyButtonW = 40
	local kCopyButtonH = 13
	local kCopyButtonSpace = 15
	local kPropertyTextFieldH = 20
	local ww, wh = getWindowSize()

	theKnobRenderer = smallKnobRenderer

	miscGroup = oscGroup()

	-- positions!
	local x = windowEdgePad
	local y = wh - 40 - 3*kCopyButtonSpace
	miscGroup:setPosition( ww - windowEdgePad - miscGroup:width(), windowEdgePad, true )

	-- add directly positioned objects
	add( learnerInfoDisplay( x, windowEdgePad + kPropertyTextFieldH + pad, 490, wh - 45 - kPropertyTextFieldH - pad ) )
	add( propertyTriggerButton( 64133, "Copy", "Copy long OSC path to Clipboard", x+500, y+3+2*kCopyButtonSpace, kCopyButtonW, kCopyButtonH ) )
	add( propertyTriggerButton( 64134, "Copy", "Copy compact OSC path to Clipboard", x+500, y+3+1*kCopyButtonSpace, kCopyButtonW, kCopyButtonH ) )
	add( propertyTriggerButton( 64135, "Copy", "Copy short OSC path to Clipboard", x+500, y+3+0*kCopyButtonSpace, kCopyButtonW, kCopyButtonH ) )

	local bx = x + 560
	add( propertyButton( 64130, "Learn Active", "Activate MIDI learn", "toggle", bx, y, kButtonW, kButtonH ) )
	add( propertyTriggerButton( 64131, "Remove", "", bx + kButtonW + pad, y, kButtonW, kButtonH ) )
	add( propertyTriggerButton( 64132, "Remove All", "", bx + 2*(kButtonW + pad), y, kButtonW, kButtonH ) )

	local lab = label( "Notify", x, windowEdgePad, "left", 40, kPropertyTextFieldH )
	setLabelColour( lab )
	add( lab )
	add( propertyTextField( 64110, "Enter target address and port (e.g. 127.0.0.1:7000)", x + 45, windowEdgePad, 250, kPropertyTextFieldH ) )
	add( dropDown( "Send OSC", x + 305, windowEdgePad + 4, kDropdownW, kTextFieldH ) )
end
