-- The CV To MIDI panel: per channel the switches and modes above the knobs of the controller and note
-- conversions; the MIDI target with its browse and clear buttons, the Learner switch, and the hidden
-- OSC group.

getWindowSize = getWindowSize or function()
	return 525, 395
end

createUI = createUI or function()
	createUICommon()
	setBannerContent( "nameOnly", 20, 200 )

	local kKnobSpace = 64
	local kKnobSpaceV = 70
	local kTextW = 40
	local kButtonW = 50
	local kPrefsW = kKnobSpace
	local kPropertyTextFieldH = 20
	local groupPadding = { 10, 5, 10, 5 }

	local function knobGroup( LR, title )
		local g = group( title, groupPadding )
		controlGrid( g, {
			{ "button", "Enable " .. LR, "Enable" }, { "field", "Channel " .. LR, "Channel" },
			{ "button", "Enable CC " .. LR, "CC" }, { "field", "Send CC " .. LR, "Send CC" },
			{ "button", "Enable Note " .. LR, "Notes" }, { "drop", "Note On Mode " .. LR, "Note On" },
			{ "drop", "Note Off Mode " .. LR, "Note Off" }, { "drop", "Gate Close Msg " .. LR, "Gate Close" } },
			8, 60, 30, 0, kKnobSpaceV )
		controlGrid( g, {
			{ "knob", "CC Min " .. LR, "CC Min" }, { "knob", "CC Max " .. LR, "CC Max" },
			{ "knob", "Pitch Centre " .. LR, "Centre" }, { "knob", "Pitch Slope " .. LR, "Slope" },
			{ "knob", "Gate Threshold " .. LR, "Threshold" }, { "knob", "Max Note Length " .. LR, "Max Len" },
			{ "knob", "Max Rate " .. LR, "Max Rate" } }, 7, kKnobSpace, kKnobSpaceV, 0, 0, kTextW )
		return g
	end

	theKnobRenderer = smallKnobRenderer

	miscGroup = oscGroup( groupPadding )

	leftGroup = knobGroup( "L", "Left Channel" )
	rightGroup = knobGroup( "R", "Right Channel" )

	-- positions!
	local x = windowEdgePad
	local y = windowEdgePad + kPropertyTextFieldH + pad
	rightGroup:setPosition( x, y, true )
	x = windowEdgePad
	y = y + rightGroup:height() + pad
	leftGroup:setPosition( x, y, true )
	miscGroup:setPosition( x, y + leftGroup:height() + pad, true )

	-- add directly positioned objects
	x = windowEdgePad
	y = windowEdgePad
	local target = propertyTextField( 64100, "Enter MIDI destination", x, y, 250, kPropertyTextFieldH )
	add( target )
	x = x + 250 + pad
	add( midiBrowseButton( "Browse", "Choose a MIDI destination", 64100, x, y, kPrefsW, kPropertyTextFieldH ) )
	x = x + kPrefsW + pad
	add( luaButton( function() setStringProperty( 64100, "" ) end, "Clear", "Clear MIDI target", "push", x, y, kPrefsW, kPropertyTextFieldH ) )
	x = x + kPrefsW + pad
	add( paramButton( "Send To Learner", "Learner", x, y, kPrefsW, kPropertyTextFieldH ) )
end
