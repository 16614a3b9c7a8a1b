-- The CV Input panel: per channel mode, level, polarity, scale and smoothing; the Elkhorn settings in
-- the same place, swapped in by the thin toggle at the window's right edge; the hidden OSC group.

getWindowSize = getWindowSize or function()
	return 510, 220
end

-- Shows the Elkhorn group in place of the channels, or the channels again.
toggleGroups = toggleGroups or function()
	local showElkhorn = not elkhornGroup:isVisible()
	elkhornGroup:setVisible( showElkhorn )
	leftGroup:setVisible( not showElkhorn )
	rightGroup:setVisible( not showElkhorn )
	redrawLabels()
end

createUI = createUI or function()
	createUICommon()
	setBannerContent( "nameOnly", 20, 200 )

	local kKnobSpace = 69
	local kKnobSpaceV = 70
	local kTextW = 40
	local kButtonW = 50
	local groupPadding = { 10, 5, 10, 5 }

	local function knobGroup( LR, title )
		local g = group( title, groupPadding )
		labelledDropDown( g, "Mode " .. LR, "Mode", 0, 20 )
		smallKnobAndTextField( g, "Level " .. LR, "Level", 1*kKnobSpace, 0, kTextW )
		g:add( paramButton( "Bipolar " .. LR, "Bipolar", 2*kKnobSpace - 5, 20, kButtonW, 15 ) )
		smallKnobAndTextField( g, "Scale " .. LR, "Scale", 3*kKnobSpace, 0, kTextW )
		smallKnobAndTextField( g, "Smoothing " .. LR, "Smooth", 4*kKnobSpace, 0, kTextW )
		return g
	end

	theKnobRenderer = smallKnobRenderer

	miscGroup = oscGroup( groupPadding )

	leftGroup = knobGroup( "L", "Left Channel" )
	rightGroup = knobGroup( "R", "Right Channel" )

	elkhornGroup = group( "Elkhorn", groupPadding )
	controlGrid( elkhornGroup, {
		{ "knob", "Elkhorn Offset L", "Offset L" }, { "knob", "Elkhorn Offset R", "Offset R" },
		{ "knob", "Elkhorn Filter Freq", "Filter" }, { "knob", "Elkhorn Centre", "Centre" },
		{ "knob", "Elkhorn Tau 1", "Tau 1" }, { "knob", "Elkhorn Tau 2", "Tau 2" },
		{ "knob", "Elkhorn Force Smooth", "Force" } }, 7, 46, kKnobSpaceV )
	elkhornGroup:setVisible( false )

	-- positions!
	local ww, wh = getWindowSize()
	local x = windowEdgePad
	local y = windowEdgePad
	rightGroup:setPosition( x, y, true )
	elkhornGroup:setPosition( x, y, true )
	x = x + rightGroup:width() + pad
	miscGroup:setPosition( x, y, true )
	x = windowEdgePad
	y = y + rightGroup:height() + pad
	leftGroup:setPosition( x, y, true )

	-- add directly positioned objects
	add( luaButton( toggleGroups, "", "Show or hide the Elkhorn settings", "toggle", ww - 5, windowEdgePad, 5, 140 ) )
end
