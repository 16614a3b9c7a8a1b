-- The Follower panel: the envelope follower with its level history, the pitch follower with its pitch
-- history and readings, the calibration curve, and the hidden OSC group.

getWindowSize = getWindowSize or function()
	return 685, 360
end

createUI = createUI or function()
	createUICommon()

	local kKnobSpace = 60
	local kKnobSpaceV = 70
	local kTextW = 40
	local groupPadding = { 10, 5, 10, 5 }

	theKnobRenderer = smallKnobRenderer

	miscGroup = oscGroup( groupPadding )

	followerGroup = group( "Follower", groupPadding )
	controlGrid( followerGroup, {
		{ "drop", "Input Source", "Source", 54 }, { "knob", "Lowpass Cutoff", "Lowpass" },
		{ "knob", "Highpass Cutoff", "Highpass" }, { "knob", "Env Gain", "Gain" },
		{ "knob", "Env Attack", "Attack" }, { "knob", "Env Release", "Release" },
		{ "knob", "Env Gate", "Gate" } }, 7, kKnobSpace, kKnobSpaceV, 0, kKnobSpaceV, kTextW )
	controlGrid( followerGroup, {
		{ "knob", "Output Env L", "Env L" }, { "knob", "Output Env R", "Env R" },
		{ "knob", "Smoothing L", "Smooth L" }, { "knob", "Smoothing R", "Smooth R" } },
		4, kKnobSpace, kKnobSpaceV, 0, 0, kTextW )
	local env = followerEnvDisplay( 4*kKnobSpace, 0, 3*kKnobSpace - 20, 47 )
	setFollowerEnvelopeDisplayColours( env )
	followerGroup:add( env )

	pitchGroup = group( "Pitch", groupPadding )
	controlGrid( pitchGroup, {
		{ "drop", "Pitch Mode", "Mode", 54 }, { "drop", "V Scale Mode", "Scale Mode", 54 },
		{ "knob", "Volts Per Octave", "V/Oct" }, { "knob", "Hz Per Volt", "Hz/V" },
		{ "knob", "Manual V Scale", "Manual" }, { "knob", "Zero V Coarse", "Zero V" },
		{ "knob", "Zero V Fine", "Fine" } }, 7, kKnobSpace, kKnobSpaceV, 0, kKnobSpaceV, kTextW )
	controlGrid( pitchGroup, {
		{ "knob", "Output Pitch L", "Pitch L" }, { "knob", "Output Pitch R", "Pitch R" } },
		2, kKnobSpace, kKnobSpaceV, 0, 0, kTextW )
	local pitch = followerPitchDisplay( 2*kKnobSpace, 0, 2*kKnobSpace + 40, 47 )
	setFollowerPitchDisplayColours( pitch )
	pitchGroup:add( pitch )
	pitchGroup:add( followerInfoDisplay( 4*kKnobSpace + 50, 0, 3*kKnobSpace - 70, 47 ) )

	-- positions!
	local x = windowEdgePad
	local y = windowEdgePad
	pitchGroup:setPosition( x, y, true )
	y = y + pitchGroup:height() + pad
	followerGroup:setPosition( x, y, true )
	x = x + followerGroup:width() + pad
	miscGroup:setPosition( x, y, true )

	-- add directly positioned objects
	local cal = calibrationDisplay( x, windowEdgePad, 680 - x, pitchGroup:height() )
	setCalibrationDisplayColours( cal )
	add( cal )
end
