-- The Sync panel: clock setup, the clock and run signals, the hardware and interface choices, and the
-- hidden OSC group.

getWindowSize = getWindowSize or function()
	return 673, 217
end

createUI = createUI or function()
	createUICommon()

	local kKnobSpace = 58
	local kTextW = 40
	local kButtonW = 60
	local kButtonH = 15
	local kDropRowY = 34
	local groupPadding = { 10, 5, 10, 5 }

	theKnobRenderer = smallKnobRenderer

	miscGroup = group( "OSC", groupPadding )
	smallKnobAndTextField( miscGroup, "OSC Port Offset", "Port", 0*kKnobSpace, 0 )
	miscGroup:setVisible( false )

	setupGroup = group( "Setup", groupPadding )
	smallKnobAndTextField( setupGroup, "PPQN", "PPQN", 0*kKnobSpace, 0, kTextW )
	smallKnobAndTextField( setupGroup, "Multiplier", "Multiplier", 1*kKnobSpace, 0, kTextW )
	smallKnobAndTextField( setupGroup, "Swing", "Swing", 2*kKnobSpace, 0, kTextW )
	smallKnobAndTextField( setupGroup, "Offset", "Offset", 3*kKnobSpace, 0, kTextW )
	labelledDropDown( setupGroup, "DINsync Type", "Type", 4*kKnobSpace, kDropRowY )
	labelledDropDown( setupGroup, "Divisor", "Divisor", 4*kKnobSpace, 0 )
	labelledDropDown( setupGroup, "Swing Type", "Swing Type", 4*kKnobSpace + 70, kDropRowY )
	setupGroup:add( paramButton( "1st Delay", "1st Delay", 4*kKnobSpace + 70, 0, kButtonW, kButtonH ) )

	clockGroup = group( "Clock Signal", groupPadding )
	labelledDropDown( clockGroup, "Clock Output", "Output", 0, kDropRowY )
	clockGroup:add( paramButton( "Mute Clocks", "Mute", 0, 0, kButtonW, kButtonH ) )
	smallKnobAndTextField( clockGroup, "Clock Low", "Low", 70, 0, kTextW )
	smallKnobAndTextField( clockGroup, "Clock High", "High", 70 + 1*kKnobSpace, 0, kTextW )
	smallKnobAndTextField( clockGroup, "Trigger Length", "Trig Len", 70 + 2*kKnobSpace, 0, kTextW )

	runGroup = group( "Run Signal", groupPadding )
	labelledDropDown( runGroup, "Run Output", "Output", 0, kDropRowY )
	runGroup:add( paramButton( "Skip First Clock", "Skip 1st", 0, 0, kButtonW, kButtonH ) )
	labelledDropDown( runGroup, "Run Signal Type", "Signal", 70, kDropRowY )
	labelledDropDown( runGroup, "Run Beat Divisor", "Beat", 70, 0 )
	smallKnobAndTextField( runGroup, "Run Low", "Low", 140, 0, kTextW )
	smallKnobAndTextField( runGroup, "Run High", "High", 140 + 1*kKnobSpace, 0, kTextW )
	smallKnobAndTextField( runGroup, "Run Trigger Length", "Trig Len", 140 + 2*kKnobSpace, 0, kTextW )
	smallKnobAndTextField( runGroup, "Run Beats", "Beats", 140 + 3*kKnobSpace, 0, kTextW )

	hardwareGroup = group( "Hardware", groupPadding )
	labelledDropDown( hardwareGroup, "BR Hardware Mode", "Mode", 0, kDropRowY )
	hardwareGroup:add( paramButton( "Enable FSK", "FSK", 0, 0, kButtonW, kButtonH ) )

	interfaceGroup = group( "Interface", groupPadding )
	labelledDropDown( interfaceGroup, "Interface Category", "Category", 0, kDropRowY )

	-- positions!
	local x = windowEdgePad
	local y = windowEdgePad
	setupGroup:setPosition( x, y, true )
	x = x + setupGroup:width() + pad
	hardwareGroup:setPosition( x, y, true )
	x = x + hardwareGroup:width() + pad
	interfaceGroup:setPosition( x, y, true )
	x = x + interfaceGroup:width() + pad
	miscGroup:setPosition( x, y, true )
	x = windowEdgePad
	y = y + setupGroup:height() + pad
	clockGroup:setPosition( x, y, true )
	x = x + clockGroup:width() + pad
	runGroup:setPosition( x, y, true )
end
