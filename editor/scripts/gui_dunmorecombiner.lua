-- The Dunmore combiner panel: the target, the eight inputs with their filters, the pass-through and proof
-- switches, the interface, the offsets, and the hidden OSC group. The test signal shows with
-- showTestSignals; otherwise it waits in the hidden OSC group.

getWindowSize = getWindowSize or function()
	return 630, 200
end

createUI = createUI or function()
	createUICommon()
	setBannerContent( "nameOnly", 20, 200 )

	local kKnobSpace = 44
	local kKnobSpaceV = 70
	local kTextW = 36
	local kDropW = 44
	local groupPadding = { 8, 5, 8, 5 }

	theKnobRenderer = smallKnobRenderer

	miscGroup = oscGroup( groupPadding )

	targetGroup = group( "Target", groupPadding )
	controlGrid( targetGroup, { { "drop", "Target Hardware", "Hardware", 54 }, { "drop", "Target Channel", "Channel", 54 } }, 1, 54, 40 )

	inputsGroup = group( "Inputs", groupPadding )
	local inputs = {}
	for n = 1, 8 do
		table.insert( inputs, { "drop", "Input " .. n, "Input " .. n, kDropW } )
	end
	for n = 1, 8 do
		table.insert( inputs, { "button", "Filter " .. n, "Filter", kDropW } )
	end
	controlGrid( inputsGroup, inputs, 8, kDropW + 4, 40 )

	miscControls = group( "Misc", groupPadding )
	labelledDropDown( miscControls, "Input Thru", "Thru", 0, 34, 60 )
	miscControls:add( paramButton( "SMUX Proof", "Proof", 0, 0, 60, 15 ) )
	miscControls:add( paramButton( "Adaptive Mode", "Adaptive", 66, 0, 60, 15 ) )
	if showTestSignals then
		controlGrid( miscControls, { { "field", "Test Signal", "Test" } }, 1, 60, 34, 66, 34 )
	else
		controlGrid( miscGroup, { { "field", "Test Signal", "Test" } }, 1, 40, 34, 40, 0 )
	end

	interfaceGroup = group( "Interface", groupPadding )
	labelledDropDown( interfaceGroup, "Interface Category", "Category", 0, 0 )

	offsetsGroup = group( "Offsets", groupPadding )
	controlGrid( offsetsGroup, {
		{ "knob", "Offset 1", "1" }, { "knob", "Offset 2", "2" }, { "knob", "Offset 3", "3" }, { "knob", "Offset 4", "4" },
		{ "knob", "Offset 5", "5" }, { "knob", "Offset 6", "6" }, { "knob", "Offset 7", "7" }, { "knob", "Offset 8", "8" } },
		8, kKnobSpace, kKnobSpaceV, 0, 0, kTextW )

	-- positions!  The offsets and the switches below, the target and inputs above.
	local x = windowEdgePad
	local y = windowEdgePad
	offsetsGroup:setPosition( x, y, true )
	x = x + offsetsGroup:width() + pad
	miscControls:setPosition( x, y, true )
	x = x + miscControls:width() + pad
	miscGroup:setPosition( x, y, true )
	x = windowEdgePad
	y = y + offsetsGroup:height() + pad
	targetGroup:setPosition( x, y, true )
	x = x + targetGroup:width() + pad
	inputsGroup:setPosition( x, y, true )
	x = x + inputsGroup:width() + pad
	interfaceGroup:setPosition( x, y, true )
end
