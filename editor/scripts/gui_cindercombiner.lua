-- The Cinder combiner panel: the target, the four inputs with their filters, the pass-through and proof
-- switches, the interface, the offsets, and the hidden OSC group. The test signal shows with
-- showTestSignals; otherwise it waits in the hidden OSC group.

getWindowSize = getWindowSize or function()
	if showTestSignals then
		return 700, 155
	end
	return 650, 155
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
	for n = 1, 4 do
		table.insert( inputs, { "drop", "Input " .. n, "Input " .. n, kDropW } )
	end
	for n = 1, 4 do
		table.insert( inputs, { "button", "Filter " .. n, "Filter", kDropW } )
	end
	controlGrid( inputsGroup, inputs, 4, kDropW + 4, 40 )

	miscControls = group( "Misc", groupPadding )
	controlGrid( miscControls, { { "drop", "Input Thru", "Thru", 60 }, { "button", "SMUX Proof", "Proof", 60 } }, 1, 60, 40 )
	if showTestSignals then
		controlGrid( miscControls, { { "field", "Test Signal", "Test" } }, 1, 50, 40, 70, 40 )
	else
		controlGrid( miscGroup, { { "field", "Test Signal", "Test" } }, 1, 50, 40, 0, -40 )
	end

	interfaceGroup = group( "Interface", groupPadding )
	labelledDropDown( interfaceGroup, "Interface Category", "Category", 0, 0 )

	offsetsGroup = group( "Offsets", groupPadding )
	controlGrid( offsetsGroup, {
		{ "knob", "Offset 1", "1" }, { "knob", "Offset 2", "2" }, { "knob", "Offset 3", "3" }, { "knob", "Offset 4", "4" } },
		4, kKnobSpace, kKnobSpaceV, 0, 0, kTextW )

	-- positions!
	local x = windowEdgePad
	local y = windowEdgePad
	targetGroup:setPosition( x, y, true )
	x = x + targetGroup:width() + pad
	inputsGroup:setPosition( x, y, true )
	x = x + inputsGroup:width() + pad
	miscControls:setPosition( x, y, true )
	interfaceGroup:setPosition( x, y + miscControls:height() + pad, true )
	x = x + miscControls:width() + pad
	offsetsGroup:setPosition( x, y, true )
	x = x + offsetsGroup:width() + pad
	miscGroup:setPosition( x, y, true )
end
