-- The six-channel AC Encoder panel: one group per channel, three to a row, and the hidden OSC group.
-- Its rows are named like the stereo encoder's, with the channel's number in place of L and R.

getWindowSize = getWindowSize or function()
	return 603, 314
end

createUI = createUI or function()
	createUICommon()
	setBannerContent( "nameOnly", 20, 200 )

	local kKnobSpace = 46
	local kTextW = 40
	local kButtonW = 50
	local groupPadding = { 8, 5, 8, 5 }

	local function channelGroup( n )
		local g = group( "Channel " .. n, groupPadding )
		g:add( paramButton( "Enable " .. n, "Enable", 0, 85, kButtonW, 15 ) )
		labelledDropDown( g, "Input Polarity " .. n, "Polarity", kButtonW + 10, 85, 2*kKnobSpace + kTextW - kButtonW - 10 )
		smallKnobAndTextField( g, "Min Output Level " .. n, "Min Out", 0, 0, kTextW )
		smallKnobAndTextField( g, "Max Output Level " .. n, "Max", kKnobSpace, 0, kTextW )
		return g
	end

	theKnobRenderer = smallKnobRenderer

	miscGroup = oscGroup( groupPadding )
	channels = {}
	for n = 1, 6 do
		channels[n] = channelGroup( n )
	end

	-- positions!  Channels 4 to 6 on the bottom row, 1 to 3 above.
	local y = windowEdgePad
	for row = 1, 0, -1 do
		local x = windowEdgePad
		for col = 1, 3 do
			local g = channels[row*3 + col]
			g:setPosition( x, y, true )
			x = x + g:width() + pad
		end
		if row == 1 then miscGroup:setPosition( x, y, true ) end
		y = y + channels[1]:height() + pad
	end
end
