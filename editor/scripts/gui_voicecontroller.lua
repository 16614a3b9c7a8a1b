-- The Voice Controller panel: three envelopes shown one at a time, chosen in "Simple Env Controls" beside
-- their display; the modes, portamento, voltages, overrides and tuning; the output matrix; the hardware
-- targets; calibration with its curve, routines and files; the panic button; and the hidden OSC group.

getWindowSize = getWindowSize or function()
	return 925, 385
end

-- Shows envelope `n` (1 to 3) and hides the other two.
showEnvelope = showEnvelope or function( n )
	for i = 1, 3 do
		envGroups[i]:setVisible( i == n )
		envDisplays[i]:setVisible( i == n )
	end
	redrawLabels()
end

createUI = createUI or function()
	createUICommon()

	local kKnobSpace = 58
	local kFieldSpace = 46
	local kTextW = 40
	local kButtonW = 50
	local kRowH = 30
	local kPropertyTextFieldH = 20
	local groupPadding = { 8, 5, 8, 5 }
	local ww, wh = getWindowSize()

	theKnobRenderer = smallKnobRenderer

	miscGroup = oscGroup( groupPadding )

	-- Each envelope: times, shapes and curve types per stage, then the four levels.
	envGroups = {}
	local stages = { "A1", "A2", "A3", "R1", "R2" }
	for n = 1, 3 do
		local g = group( "Env " .. n, groupPadding )
		local e = "Env " .. n .. " "
		local items = {}
		for _, s in ipairs( stages ) do table.insert( items, { "field", e .. "Time " .. s, "Time " .. s } ) end
		for _, s in ipairs( stages ) do table.insert( items, { "field", e .. "Shape " .. s, "Shape " .. s } ) end
		for _, s in ipairs( stages ) do table.insert( items, { "drop", e .. "Type " .. s, "Type " .. s, kTextW } ) end
		table.insert( items, { "field", e .. "Level A1", "Lvl A1" } )
		table.insert( items, { "field", e .. "Level A2", "Lvl A2" } )
		table.insert( items, { "field", e .. "Sustain", "Sustain" } )
		table.insert( items, { "field", e .. "Level R1", "Lvl R1" } )
		controlGrid( g, items, 5, kFieldSpace, kRowH, 0, 0, kTextW )
		envGroups[n] = g
	end

	modesGroup = group( "Modes", groupPadding )
	controlGrid( modesGroup, {
		{ "drop", "Note Priority", "Priority" }, { "drop", "Retrigger Mode", "Retrigger" },
		{ "drop", "Poly Mode", "Poly" }, { "field", "Polyphony/Voice", "Voices" } }, 2, 60, kRowH )

	portamentoGroup = group( "Portamento", groupPadding )
	controlGrid( portamentoGroup, {
		{ "drop", "Portamento Mode", "Mode", 54 }, { "field", "Portamento Time", "Time" },
		{ "field", "Portamento Shape", "Shape" } }, 1, 60, kRowH, 0, 0, 54 )

	voltagesGroup = group( "Voltages", groupPadding )
	controlGrid( voltagesGroup, {
		{ "field", "Gate Closed Voltage", "Gate Lo" }, { "field", "Gate Open Voltage", "Gate Hi" },
		{ "field", "Trigger Off Voltage", "Trig Lo" }, { "field", "Trigger On Voltage", "Trig Hi" },
		{ "field", "Velocity Min Voltage", "Vel Lo" }, { "field", "Velocity Max Voltage", "Vel Hi" } },
		2, kFieldSpace, kRowH, 0, 0, kTextW )

	overridesGroup = group( "Overrides", groupPadding )
	controlGrid( overridesGroup, {
		{ "button", "Override Pitch", "Pitch" }, { "field", "Pitch", "Note" },
		{ "button", "Override Gate", "Gate" }, { "field", "Gate", "Level" } }, 2, kFieldSpace, kRowH, 0, 0, kTextW )

	detuneGroup = group( "Detune", groupPadding )
	controlGrid( detuneGroup, {
		{ "field", "Pitch Wheel Range", "Bend" }, { "field", "Detune", "Detune" },
		{ "field", "Pitch LFO Depth", "LFO Dep" }, { "field", "Pitch LFO Speed", "LFO Spd" },
		{ "field", "Random Tuning", "Random" }, { "field", "Transpose", "Transp" } }, 2, kFieldSpace, kRowH, 0, 0, kTextW )

	-- The envelope shown: three buttons, and its shape.
	simpleEnvGroup = group( "Simple Env Controls", groupPadding )
	envDisplays = {}
	for n = 1, 3 do
		simpleEnvGroup:add( luaButton( function() showEnvelope( n ) end, "Env " .. n, "Show envelope " .. n, "push", (n-1)*42, 0, 38, 15 ) )
		local env = envelopeDisplay( n - 1, 0, 20, 80, 122 )
		setEnvelopeDisplayColours( env )
		simpleEnvGroup:add( env )
		envDisplays[n] = env
	end

	envMiscGroup = group( "Env Misc", groupPadding )
	local misc = {}
	for n = 1, 3 do
		table.insert( misc, { "field", "Env " .. n .. " Velocity Depth", "Vel " .. n } )
		table.insert( misc, { "drop", "Env " .. n .. " Multiplier", "Mult " .. n, kTextW } )
		table.insert( misc, { "button", "Env " .. n .. " Reset To Zero", "Zero " .. n, kTextW } )
	end
	controlGrid( envMiscGroup, misc, 3, kFieldSpace, kRowH, 0, 0, kTextW )

	-- One row per output: its offset, the mix of each source, and its smoothing.
	matrixGroup = group( "Output Matrix", groupPadding )
	local columns = { "Offset", "Pitch", "Gate", "Env1", "Env2", "Env3", "Trigger", "Velocity" }
	local cells = {}
	for o = 1, 6 do
		for _, c in ipairs( columns ) do table.insert( cells, { "field", "Output " .. o .. " " .. c } ) end
		table.insert( cells, { "field", "Output " .. o .. " Smoothing" } )
	end
	controlGrid( matrixGroup, cells, 9, 42, 16, 20, 0, 38 )
	for o = 1, 6 do
		local lab = label( "" .. o, 0, (6-o)*16, "right", 14, kTextFieldH )
		setLabelColour( lab )
		matrixGroup:add( lab )
	end
	for i, c in ipairs( { "Offset", "Pitch", "Gate", "Env1", "Env2", "Env3", "Trig", "Vel", "Smooth" } ) do
		local lab = label( c, 20 + (i-1)*42 + 19, 6*16 + 11 )
		setLabelColour( lab )
		matrixGroup:add( lab )
	end

	targetGroup = group( "Cinder/Dunmore Target", groupPadding )
	controlGrid( targetGroup, { { "drop", "Target Hardware", "Hardware" }, { "drop", "Target Channel", "Channel" } }, 1, 66, kRowH )

	ardentGroup = group( "Ardent Settings", groupPadding )
	controlGrid( ardentGroup, { { "button", "Bipolar 3", "Bipolar 3" }, { "button", "Bipolar 4", "Bipolar 4" }, { "button", "Bipolar 5", "Bipolar 5" } }, 1, 66, 20 )

	-- The table of notes to output values, its routines and files.
	calibrationGroup = group( "Calibration", groupPadding )
	local cal = calibrationDisplay( 0, 50, 250, 70 )
	setCalibrationDisplayColours( cal )
	calibrationGroup:add( cal )
	calibrationGroup:add( propertyTriggerButton( 64092, "Calibrate V/oct", "Start calibration routine", 0, 25, 100, 18 ) )
	calibrationGroup:add( propertyTriggerButton( 64093, "Calibrate Hz/V", "Start calibration routine", 105, 25, 95, 18 ) )
	calibrationGroup:add( propertyTriggerButton( 64090, "Ardent", "Create a calibration suitable for the Ardent", 205, 25, 45, 18 ) )
	calibrationGroup:add( propertyTriggerButton( 64091, "Cinder/Dunmore", "Create a calibration suitable for the Cinder/Dunmore", 0, 0, 100, 18 ) )
	calibrationGroup:add( button( "VCSave", "Save", 105, 0, 45, 18 ) )
	calibrationGroup:add( button( "VCLoad", "Load", 155, 0, 45, 18 ) )
	calibrationGroup:add( button( "Transfer", "Copy", 205, 0, 45, 18 ) )
	local file = propertyTextField( 64121, "Loaded calibration file", 0, 125, 250, 14 )
	file:setEditable( false )
	calibrationGroup:add( file )

	triggerGroup = group( "Trigger", groupPadding )
	controlGrid( triggerGroup, { { "field", "Trigger Length", "Length" } }, 1, kFieldSpace, kRowH, 0, 0, kTextW )

	interfaceGroup = group( "Interface", groupPadding )
	labelledDropDown( interfaceGroup, "Interface Category", "Category", 0, 0 )

	hardwareGroup = group( "Hardware", groupPadding )
	labelledDropDown( hardwareGroup, "Hardware Mode", "Mode", 0, 0 )

	-- positions!  Bottom row first, since y goes up; stacked groups form columns.
	local function column( groups, x, y )
		local widest = 0
		for _, g in ipairs( groups ) do
			g:setPosition( x, y, true )
			y = y + g:height() + pad
			widest = math.max( widest, g:width() )
		end
		return x + widest + pad, y
	end
	local x = windowEdgePad
	local y = windowEdgePad
	local top1, top2
	x, top1 = column( { matrixGroup }, x, y )
	x, top2 = column( { calibrationGroup }, x, y )
	local topA, topB
	x, topA = column( { targetGroup, ardentGroup }, x, y )
	x, topB = column( { hardwareGroup, triggerGroup, interfaceGroup }, x, y )

	x = windowEdgePad
	y = math.max( top1, top2, topA, topB )
	for n = 1, 3 do
		envGroups[n]:setPosition( x, y, true )
	end
	x = x + envGroups[1]:width() + pad
	x = column( { simpleEnvGroup }, x, y )
	x = column( { envMiscGroup }, x, y )
	x = column( { voltagesGroup, overridesGroup }, x, y )
	x = column( { detuneGroup, modesGroup }, x, y )
	x = column( { portamentoGroup, miscGroup }, x, y )

	-- add directly positioned objects
	add( propertyTriggerButton( 64094, "Don't Panic", "All gates/envs off", prefsX - kButtonW - 20 - pad, wh - 25 - windowEdgePad, kButtonW + 20, 25 ) )
	showEnvelope( 1 )
end
