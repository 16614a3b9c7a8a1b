-- The DC panel: two channels of six knobs, and the hidden OSC group.

getWindowSize = getWindowSize or function()
	return 510, 220
end

createUI = createUI or function()
	createUICommon()
	setBannerContent( "nameOnly", 20, 200 )

	local kKnobSpace = 69
	local kKnobSpaceV = 70
	local kTextW = 40

	local function knobGroup( LR, title )
		local g = group( title )
		smallKnobAndTextField( g, "Output Positive " .. LR, "Out 0->1", 0*kKnobSpace, 0, kTextW )
		smallKnobAndTextField( g, "Output Symmetric " .. LR, "Out -1->1", 1*kKnobSpace, 0, kTextW )
		smallKnobAndTextField( g, "Multiplier " .. LR, "Multiplier", 2*kKnobSpace, 0, kTextW )
		smallKnobAndTextField( g, "Input Add " .. LR, "Input Add", 3*kKnobSpace, 0, kTextW )
		smallKnobAndTextField( g, "Input Multiply " .. LR, "Input Mult", 4*kKnobSpace, 0, kTextW )
		smallKnobAndTextField( g, "Smoothing " .. LR, "Smooth", 5*kKnobSpace, 0, kTextW )
		return g
	end

	theKnobRenderer = smallKnobRenderer

	miscGroup = group( "OSC" )
	smallKnobAndTextField( miscGroup, "OSC Port Offset", "Port", 0*kKnobSpace, 0 )
	miscGroup:setVisible( false )

	leftGroup = knobGroup( "L", "Left Channel" )
	rightGroup = knobGroup( "R", "Right Channel" )

	-- positions!
	local x = windowEdgePad
	local y = windowEdgePad
	rightGroup:setPosition( x, y, true )
	x = x + rightGroup:width() + pad
	miscGroup:setPosition( x, y, true )
	x = windowEdgePad
	y = y + rightGroup:height() + pad
	leftGroup:setPosition( x, y, true )
end
