-- The Ardent Controller panel: inputs and their modes, inputs to gates, outputs, the two MIDI/CV
-- channels and the gate channels on the left; MIDI out, miscellany, interface, trigger lengths, accents,
-- the frame bytes and the panic button on the right; and the hidden OSC group.

getWindowSize = getWindowSize or function()
	return 723, 450
end

createUI = createUI or function()
	createUICommon()

	local kDropSpace = 56
	local kRowH = 30
	local kTextW = 40
	local kButtonW = 50
	local kCellW = 36
	local kCellH = 16
	local groupPadding = { 8, 5, 8, 5 }
	local ww, wh = getWindowSize()

	theKnobRenderer = smallKnobRenderer

	miscGroup = oscGroup( groupPadding )

	local function dropRow( title, names, labels, space, w, kind )
		local g = group( title, groupPadding )
		local items = {}
		for i, name in ipairs( names ) do
			table.insert( items, { kind or "drop", name, labels[i], w } )
		end
		controlGrid( g, items, #items, space or kDropSpace, kRowH )
		return g
	end

	-- A table of value fields or buttons with numbered rows and titled columns.
	local function cellTable( g, rows, columns, columnTitles, make )
		for r = 1, rows do
			local y = (rows - r)*kCellH
			local lab = label( "" .. r, 0, y, "right", 14, kTextFieldH )
			setLabelColour( lab )
			g:add( lab )
			for c = 1, columns do
				g:add( make( r, c, 20 + (c-1)*kCellW, y ) )
			end
		end
		for c = 1, columns do
			local lab = label( columnTitles[c], 20 + (c-1)*kCellW + 0.5*(kCellW - 4), rows*kCellH + 11 )
			setLabelColour( lab )
			g:add( lab )
		end
	end

	local numbers = {}
	for n = 1, 8 do numbers[n] = "" .. n end
	local function names( pattern, count )
		local list = {}
		for n = 1, count do list[n] = string.format( pattern, n ) end
		return list
	end

	inputsGroup = dropRow( "Inputs", names( "Input %d", 5 ), numbers )
	inputModesGroup = dropRow( "Input Modes", names( "Input Mode %d", 5 ), numbers )
	inputGatesGroup = dropRow( "Input To Gates", names( "Input %d To Gate", 8 ), numbers, 44, 40 )

	miscControls = group( "Misc", groupPadding )
	controlGrid( miscControls, {
		{ "field", "Test Signal", "Test" }, { "drop", "Input Thru", "Thru" },
		{ "field", "MIDI Clock Offset", "Clock Ofs" }, { "button", "Use MIDI SPP", "SPP" },
		{ "button", "Match Note Offs", "Match Offs" }, { "button", "Delay Start Slice", "Dly Start" },
		{ "button", "Delay Stop Slice", "Dly Stop" } }, 4, kDropSpace, kRowH + 10, 0, 0, kTextW )

	interfaceGroup = group( "Interface", groupPadding )
	labelledDropDown( interfaceGroup, "Interface Category", "Category", 0, 0 )

	local function channelGroup( n )
		local c = "Ch " .. n .. " "
		local g = group( "MIDI/CV " .. n, groupPadding )
		controlGrid( g, {
			{ "field", c .. "MIDI Channel", "Channel" }, { "field", c .. "Range Min", "Low" },
			{ "field", c .. "Range Max", "High" }, { "drop", c .. "Gate Output", "Gate", 46 },
			{ "drop", c .. "Vel Output", "Velocity", 46 }, { "drop", c .. "Note Priority", "Priority", 46 },
			{ "drop", c .. "Retrigger Mode", "Retrigger", 46 } }, 7, 50, kRowH, 0, 0, kTextW )
		return g
	end
	channel1Group = channelGroup( 1 )
	channel2Group = channelGroup( 2 )

	outputsGroup = dropRow( "Outputs", names( "Output %d", 5 ), numbers, nil, nil, "field" )

	gatesGroup = group( "Gates", groupPadding )
	local gates = {}
	for n = 1, 5 do table.insert( gates, { "field", "Gates " .. n .. " MIDI Channel", "Channel " .. n } ) end
	for n = 1, 5 do table.insert( gates, { "field", "Gates " .. n .. " Base Note", "Note " .. n } ) end
	controlGrid( gatesGroup, gates, 5, kDropSpace, kRowH, 0, 0, kTextW )

	triggersGroup = group( "Triggers", groupPadding )
	cellTable( triggersGroup, 5, 8, numbers, function( r, c, x, y )
		return textField( "Trigger " .. r .. "/" .. c .. " Length", x, y, kCellW - 4, kTextFieldH )
	end )

	accentsGroup = group( "Accents", groupPadding )
	cellTable( accentsGroup, 5, 4, { "2", "4", "6", "8" }, function( r, c, x, y )
		return paramButton( "Accent " .. r .. "/" .. 2*c, "", x, y, kCellW - 8, kTextFieldH )
	end )

	midiOutGroup = group( "MIDI Out", groupPadding )
	controlGrid( midiOutGroup, {
		{ "field", "Byte 1", "Byte 1" }, { "field", "Byte 2", "Byte 2" }, { "field", "Byte 3", "Byte 3" },
		{ "field", "Bytes", "Bytes" }, { "button", "Send", "Send" },
		{ "drop", "MIDI Out MIDI Channel", "Channel" }, { "drop", "MIDI Out Output", "Output" },
		{ "button", "MIDI Out Clock", "Clock" }, { "field", "MIDI Clock Swing", "Swing" },
		{ "drop", "MIDI Clock Swing Type", "Swing Type" }, { "drop", "MIDI Out Channelise", "Channelise" },
		{ "drop", "MIDI Out Polyphony", "Polyphony" } }, 4, kDropSpace, kRowH, 0, 0, kTextW )

	-- positions!  Left column from the bottom.
	local x = windowEdgePad
	local y = windowEdgePad
	for _, g in ipairs( { gatesGroup, channel2Group, channel1Group, outputsGroup, inputGatesGroup, inputModesGroup, inputsGroup } ) do
		g:setPosition( x, y, true )
		y = y + g:height() + pad
	end
	local right = windowEdgePad + inputGatesGroup:width() + pad
	y = windowEdgePad
	miscControls:setPosition( right, y, true )
	interfaceGroup:setPosition( right + miscControls:width() + pad, y, true )
	local panicX = right + miscControls:width() + pad
	local panicY = y + interfaceGroup:height() + 5
	y = y + miscControls:height() + pad
	midiOutGroup:setPosition( right, y, true )
	miscGroup:setPosition( right + midiOutGroup:width() + pad, y, true )
	y = y + midiOutGroup:height() + pad
	triggersGroup:setPosition( right, y, true )
	y = y + triggersGroup:height() + pad
	accentsGroup:setPosition( right, y, true )
	local infoX = right + accentsGroup:width() + pad
	local infoY = y

	-- add directly positioned objects
	add( propertyTriggerButton( 64094, "Don't Panic", "All gates/envs off", panicX, panicY, kButtonW + 20, 25 ) )
	add( infoDisplay( infoX, infoY, 155, 16, 6 ) )
	if showLogicIndicators then
		local logicH = 20
		add( propertyButton( 64140, "Logic", "In Logic Mode?", "indicator", prefsX, wh-prefsH-windowEdgePad-logicH-pad, prefsW, logicH ) )
	end
end
