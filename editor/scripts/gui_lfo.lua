-- The LFO panel: per channel the waveform display, the big speed knob, the wave mix and the timing and
-- shape controls, and the hidden OSC group.

getWindowSize = getWindowSize or function()
	return 733, 360
end

createUI = createUI or function()
	createUICommon()

	local kKnobSpace = 46
	local kKnobSpaceV = 70
	local kTextW = 40
	local kButtonW = 50
	local groupPadding = { 10, 5, 10, 5 }

	local function knobGroup( LR, title, id )
		local g = group( title, groupPadding )
		theKnobRenderer = bigKnobRenderer
		bigKnobAndTextField( g, "Speed " .. LR, "Speed", 0, 0 )
		theKnobRenderer = smallKnobRenderer
		local x0 = kBigKnobSize + 10
		controlGrid( g, {
			{ "knob", "Sine " .. LR, "Sine" }, { "knob", "Triangle " .. LR, "Tri" },
			{ "knob", "Square " .. LR, "Square" }, { "knob", "Saw " .. LR, "Saw" },
			{ "knob", "Random " .. LR, "Random" }, { "knob", "Noise " .. LR, "Noise" },
			{ "knob", "Pulse Width " .. LR, "Width" }, { "knob", "Asymmetry " .. LR, "Asym" },
			{ "knob", "Phase " .. LR, "Phase" }, { "knob", "Offset " .. LR, "Offset" } },
			10, kKnobSpace, kKnobSpaceV, x0, kKnobSpaceV, kTextW )
		controlGrid( g, {
			{ "drop", "Speed Multiplier " .. LR, "Mult" }, { "drop", "Sync " .. LR, "Sync" },
			{ "drop", "Beat Divisor " .. LR, "Divisor" }, { "knob", "Beats " .. LR, "Beats" },
			{ "button", "Triplet " .. LR, "Triplet" }, { "knob", "Swing " .. LR, "Swing" },
			{ "drop", "Swing Type " .. LR, "Type" }, { "drop", "Input Mode " .. LR, "Input" },
			{ "button", "Reset By Note " .. LR, "Reset" }, { "knob", "Smoothing " .. LR, "Smooth" } },
			10, kKnobSpace, kKnobSpaceV, x0, 0, kTextW )
		local wave = waveformDisplay( id, x0 + 10*kKnobSpace, 0, 46, 117 )
		setWaveformDisplayColours( wave )
		g:add( wave )
		return g
	end

	theKnobRenderer = smallKnobRenderer
	miscGroup = oscGroup( groupPadding )

	leftGroup = knobGroup( "L", "Left Channel", 0 )
	rightGroup = knobGroup( "R", "Right Channel", 1 )

	-- positions!
	local x = windowEdgePad
	local y = windowEdgePad
	rightGroup:setPosition( x, y, true )
	y = y + rightGroup:height() + pad
	leftGroup:setPosition( x, y, true )
	miscGroup:setPosition( x + leftGroup:width() + pad, windowEdgePad, true )
end
