-- The Step LFO panel: per lane two step editors (steps 1 to 48 and 49 to 96), the random register and
-- the DAC editor, the lane's choices as drop-downs, its values as fields and its switches; and the
-- hidden OSC group.

getWindowSize = getWindowSize or function()
	return 907, 415
end

createUI = createUI or function()
	createUICommon()

	local kKnobSpace = 42
	local kKnobSpaceV = 70
	local kTextW = 38
	local kDropSpace = 72
	local kRowH = 34
	local groupPadding = { 10, 5, 10, 5 }

	local function knobGroup( LR, title, id )
		local g = group( title, groupPadding )
		controlGrid( g, {
			{ "drop", "Speed Mode " .. LR, "Speed Mode" }, { "drop", "Speed Multiplier " .. LR, "Multiplier" },
			{ "drop", "Sync " .. LR, "Sync" }, { "drop", "Beat Divisor " .. LR, "Divisor" },
			{ "drop", "Range Mode " .. LR, "Range" }, { "drop", "Length Mode " .. LR, "Length Mode" },
			{ "field", "Start Step " .. LR, "Start" }, { "field", "Length In Steps " .. LR, "Length" },
			{ "field", "End Step " .. LR, "End" }, { "drop", "Interpolation " .. LR, "Interpolation" },
			{ "drop", "Input Mode " .. LR, "Input Mode" },
			{ "drop", "Swing Type " .. LR, "Swing Type" }, { "drop", "Reset By Note " .. LR, "Note Reset" },
			{ "drop", "Signal Input " .. LR, "Signal In" }, { "drop", "Trigger Input " .. LR, "Trigger In" },
			{ "drop", "Reset Input " .. LR, "Reset In" }, { "drop", "Random Mode " .. LR, "Random Mode" },
			{ "field", "Register Length " .. LR, "Register" }, { "field", "DAC Bits " .. LR, "DAC Bits" },
			{ "drop", "DAC Scale Mode " .. LR, "DAC Scale" }, { "drop", "DAC Range Mode " .. LR, "DAC Range" } },
			11, kDropSpace, kRowH, 0, kRowH )
		controlGrid( g, {
			{ "field", "Speed " .. LR, "Speed" }, { "field", "Beats " .. LR, "Beats" },
			{ "field", "Phase " .. LR, "Phase" }, { "field", "Offset " .. LR, "Offset" },
			{ "field", "Multiplier " .. LR, "Mult" }, { "field", "Asymmetry " .. LR, "Asym" },
			{ "field", "Smoothing " .. LR, "Smooth" }, { "field", "Swing " .. LR, "Swing" },
			{ "field", "Reset Note Min " .. LR, "Rst Lo" }, { "field", "Reset Note Max " .. LR, "Rst Hi" },
			{ "field", "Trigger Note Min " .. LR, "Trg Lo" }, { "field", "Trigger Note Max " .. LR, "Trg Hi" },
			{ "field", "Gate Length " .. LR, "Gate" }, { "field", "Randomness " .. LR, "Random" },
			{ "field", "DAC Scale " .. LR, "Scale" },
			{ "button", "Triplet " .. LR, "Trip" }, { "button", "Random Enable " .. LR, "Rnd" },
			{ "button", "Random Set Next " .. LR, "Next" }, { "button", "DAC Enable " .. LR, "DAC" } },
			19, kKnobSpace, kRowH, 0, 0, kTextW )
		local top = 3*kRowH - 14
		local steps1 = stepEditor( id, 0, top, 255, 50, 1, 48 )
		setStepEditorColours( steps1 )
		g:add( steps1 )
		local steps2 = stepEditor( id, 265, top, 255, 50, 49, 48 )
		setStepEditorColours( steps2 )
		g:add( steps2 )
		local register = randomRegister( id, 530, top + 36, 260, 14 )
		setRandomRegisterColours( register )
		g:add( register )
		local dac = dacEditor( id, 530, top, 260, 30 )
		setDACEditorColours( dac )
		g:add( dac )
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
	miscGroup:setPosition( x + rightGroup:width() + pad, y, true )
	y = y + rightGroup:height() + pad
	leftGroup:setPosition( x, y, true )
end
