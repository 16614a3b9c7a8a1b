-- The Basalt Controller panel: inputs to gates, outputs, the gate channels and the trigger lengths on the
-- left; MIDI out, miscellany, the pass-through input, interface, accents, the frame bytes and the panic
-- button on the right; and the hidden OSC group.

getWindowSize = getWindowSize or function()
	return 727, 335
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

	inputsGroup = group( "Inputs", groupPadding )
	labelledDropDown( inputsGroup, "Input Thru", "Thru", 0, 0 )
	inputGatesGroup = dropRow( "Input To Gates", names( "Input %d To Gate", 8 ), numbers, 44, 40 )

	miscControls = group( "Misc", groupPadding )
	controlGrid( miscControls, {
		{ "field", "Test Signal", "Test" }, { "field", "MIDI Clock Offset", "Clock Ofs" },
		{ "button", "Use MIDI SPP", "SPP", 46 }, { "button", "Match Note Offs", "Match", 46 },
		{ "button", "Delay Start Slice", "Dly Start", 46 }, { "button", "Delay Stop Slice", "Dly Stop", 46 } },
		2, 50, kRowH, 0, 0, kTextW )

	interfaceGroup = group( "Interface", groupPadding )
	labelledDropDown( interfaceGroup, "Interface Category", "Category", 0, 0 )

	outputsGroup = dropRow( "Outputs", names( "Output %d", 6 ), numbers, nil, nil, "field" )

	gatesGroup = group( "Gates", groupPadding )
	local gates = {}
	for n = 1, 6 do table.insert( gates, { "field", "Gates " .. n .. " MIDI Channel", "Channel " .. n } ) end
	for n = 1, 6 do table.insert( gates, { "field", "Gates " .. n .. " Base Note", "Note " .. n } ) end
	controlGrid( gatesGroup, gates, 6, kDropSpace, kRowH, 0, 0, kTextW )

	triggersGroup = group( "Triggers", groupPadding )
	cellTable( triggersGroup, 6, 8, numbers, function( r, c, x, y )
		return textField( "Trigger " .. r .. "/" .. c .. " Length", x, y, kCellW - 4, kTextFieldH )
	end )

	accentsGroup = group( "Accents", groupPadding )
	cellTable( accentsGroup, 6, 4, { "2", "4", "6", "8" }, function( r, c, x, y )
		return paramButton( "Accent " .. r .. "/" .. 2*c, "", x, y, kCellW - 8, kTextFieldH )
	end )

	midiOutGroup = group( "MIDI Out", groupPadding )
	controlGrid( midiOutGroup, {
		{ "field", "Byte 1", "Byte 1" }, { "field", "Byte 2", "Byte 2" }, { "field", "Byte 3", "Byte 3" },
		{ "field", "Bytes", "Bytes" }, { "button", "Send", "Send", 46 },
		{ "drop", "MIDI Out MIDI Channel", "Channel" }, { "drop", "MIDI Out Output", "Output", 46 },
		{ "button", "MIDI Out Clock", "Clock", 46 }, { "field", "MIDI Clock Swing", "Swing" },
		{ "drop", "MIDI Clock Swing Type", "Swing Type", 46 }, { "drop", "MIDI Out Channelise", "Channelise", 46 },
		{ "drop", "MIDI Out Polyphony", "Polyphony", 46 } }, 4, 50, kRowH, 0, 0, kTextW )

	-- positions!  Left column from the bottom.
	local x = windowEdgePad
	local y = windowEdgePad
	for _, g in ipairs( { triggersGroup, gatesGroup, outputsGroup, inputGatesGroup } ) do
		g:setPosition( x, y, true )
		y = y + g:height() + pad
	end
	local right = windowEdgePad + inputGatesGroup:width() + pad
	y = windowEdgePad
	midiOutGroup:setPosition( right, y, true )
	miscControls:setPosition( right + midiOutGroup:width() + pad, y, true )
	y = y + midiOutGroup:height() + pad
	accentsGroup:setPosition( right, y, true )
	local x2 = right + accentsGroup:width() + pad
	inputsGroup:setPosition( x2, y, true )
	interfaceGroup:setPosition( x2, y + inputsGroup:height() + pad, true )
	miscGroup:setPosition( x2 + inputsGroup:width() + pad, y, true )
	y = y + accentsGroup:height() + pad
	local panicX = right
	local panicY = y
	local infoX = right + kButtonW + 20 + pad
	local infoY = y + 5

	-- add directly positioned objects
	add( propertyTriggerButton( 64094, "Don't Panic", "All gates/envs off", panicX, panicY, kButtonW + 20, 25 ) )
	add( infoDisplay( infoX, infoY, 155, 16, 6 ) )
	if showLogicIndicators then
		local logicH = 20
		add( propertyButton( 64140, "Logic", "In Logic Mode?", "indicator", prefsX, wh-prefsH-windowEdgePad-logicH-pad, prefsW, logicH ) )
	end
end
