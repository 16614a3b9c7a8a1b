-- The Trigger panel: the envelope with its display, the output setup, the trigger note and length, the
-- voltages, the gate override, the CV trigger, and the hidden OSC group.

getWindowSize = getWindowSize or function()
	return 714, 315
end

createUI = createUI or function()
	createUICommon()

	local kKnobSpace = 58
	local kKnobSpaceV = 70
	local kTextW = 40
	local kButtonW = 50
	local groupPadding = { 10, 5, 10, 5 }

	theKnobRenderer = smallKnobRenderer

	miscGroup = oscGroup( groupPadding )

	-- Times, shapes and levels of the five stages, one column per stage.
	envGroup = group( "Env ", groupPadding )
	local stages = { "A1", "A2", "A3", "R1", "R2" }
	local items = {}
	for _, s in ipairs( stages ) do
		table.insert( items, { "knob", "Env 1 Time " .. s, "Time " .. s } )
	end
	for _, s in ipairs( stages ) do
		table.insert( items, { "knob", "Env 1 Shape " .. s, "Shape " .. s } )
	end
	for _, s in ipairs( stages ) do
		table.insert( items, { "drop", "Env 1 Type " .. s, "Type " .. s, 50 } )
	end
	controlGrid( envGroup, { items[1], items[2], items[3], items[4], items[5] }, 5, kKnobSpace, kKnobSpaceV, 0, 2*kKnobSpaceV - 30 )
	controlGrid( envGroup, { items[6], items[7], items[8], items[9], items[10] }, 5, kKnobSpace, kKnobSpaceV, 0, kKnobSpaceV - 30 )
	controlGrid( envGroup, { items[11], items[12], items[13], items[14], items[15] }, 5, kKnobSpace, kKnobSpaceV, 0, 0 )
	controlGrid( envGroup, {
		{ "knob", "Env 1 Level A1", "Level A1" }, { "knob", "Env 1 Level A2", "Level A2" },
		{ "knob", "Env 1 Sustain", "Sustain" }, { "knob", "Env 1 Level R1", "Level R1" },
		{ "knob", "Env 1 Velocity Depth", "Velocity" } }, 5, kKnobSpace, kKnobSpaceV, 5*kKnobSpace, 2*kKnobSpaceV - 30 )
	controlGrid( envGroup, {
		{ "drop", "Env 1 Multiplier", "Multiplier", 50 }, { "button", "Env 1 Reset To Zero", "Reset" } },
		2, kKnobSpace, kKnobSpaceV, 5*kKnobSpace, kKnobSpaceV )
	local env = envelopeDisplay( 0, 5*kKnobSpace, 0, 48, 5*kKnobSpace - 18 )
	setEnvelopeDisplayColours( env )
	envGroup:add( env )

	setupGroup = group( "Setup", groupPadding )
	controlGrid( setupGroup, { { "drop", "Output Mode", "Output" } }, 1, 70, kKnobSpaceV, 0, 55 )
	controlGrid( setupGroup, { { "knob", "Smoothing", "Smooth" } }, 1, 70, kKnobSpaceV, 0, 0 )

	triggerGroup = group( "Trigger", groupPadding )
	controlGrid( triggerGroup, { { "knob", "Trigger Note", "Note" }, { "knob", "Trigger Length", "Length" } }, 2, kKnobSpace, kKnobSpaceV )

	voltagesGroup = group( "Voltages", groupPadding )
	controlGrid( voltagesGroup, { { "knob", "Min Voltage", "Min" }, { "knob", "Max Voltage", "Max" } }, 2, kKnobSpace, kKnobSpaceV )

	overridesGroup = group( "Overrides", groupPadding )
	overridesGroup:add( paramButton( "Override Gate", "Override", 0, 20, kButtonW, 15 ) )
	smallKnobAndTextField( overridesGroup, "Gate", "Gate", kButtonW + 10, 0, kTextW )

	cvGroup = group( "CV Trigger", groupPadding )
	cvGroup:add( paramButton( "CV Trigger Enable", "Enable", 0, 20, kButtonW, 15 ) )
	smallKnobAndTextField( cvGroup, "CV Trigger Threshold", "Threshold", kButtonW + 10, 0, kTextW )

	-- positions!
	local x = windowEdgePad
	local y = windowEdgePad
	triggerGroup:setPosition( x, y, true )
	x = x + triggerGroup:width() + pad
	voltagesGroup:setPosition( x, y, true )
	x = x + voltagesGroup:width() + pad
	overridesGroup:setPosition( x, y, true )
	x = x + overridesGroup:width() + pad
	cvGroup:setPosition( x, y, true )
	x = x + cvGroup:width() + pad
	miscGroup:setPosition( x, y, true )
	x = windowEdgePad
	y = y + triggerGroup:height() + pad
	envGroup:setPosition( x, y, true )
	x = x + envGroup:width() + pad
	setupGroup:setPosition( x, y, true )
end
