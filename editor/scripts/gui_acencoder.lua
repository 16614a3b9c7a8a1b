-- The AC Encoder panel: per channel the enable button, the input polarity and the two output levels,
-- and the hidden OSC group.

getWindowSize = getWindowSize or function()
	return 510, 220
end

createUI = createUI or function()
	createUICommon()
	setBannerContent( "nameOnly", 20, 200 )

	local kKnobSpace = 69
	local kKnobSpaceV = 70
	local kTextW = 40
	local kButtonW = 50

	local function knobGroup( LR, title )
		local g = group( title )
		g:add( paramButton( "Enable " .. LR, "Enable", 0, 20, kButtonW, 15 ) )
		labelledDropDown( g, "Input Polarity " .. LR, "Polarity", 1*kKnobSpace, 20 )
		smallKnobAndTextField( g, "Min Output Level " .. LR, "Min Out", 2*kKnobSpace, 0, kTextW )
		smallKnobAndTextField( g, "Max Output Level " .. LR, "Max", 3*kKnobSpace, 0, kTextW )
		return g
	end

	theKnobRenderer = smallKnobRenderer

	miscGroup = oscGroup()

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
