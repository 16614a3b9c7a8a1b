-- The common part of every panel: sizes, fonts, colours and layout helpers.
-- Every name is defined as "name = name or ...", so that a skin's script, which runs first, wins.

kBitmapTinyKnobSize = kBitmapTinyKnobSize or 26
kBitmapKnobSize = kBitmapKnobSize or 34
kBitmapBigKnobSize = kBitmapBigKnobSize or 92
pad = pad or 10.0
windowEdgePad = windowEdgePad or 5.0
kTinyKnobSize = kTinyKnobSize or kBitmapTinyKnobSize
kKnobSize = kKnobSize or kBitmapKnobSize
kBigKnobSize = kBigKnobSize or kBitmapBigKnobSize
kTextFieldH = kTextFieldH or 12
kDropdownW = kDropdownW or 60
if showTestSignals == nil then showTestSignals = false end
if showLogicIndicators == nil then showLogicIndicators = false end
if isLogicPro == nil then isLogicPro = getBooleanProperty( 64140 ) end

-- fonts: file names of the platform's font folder, the first one found is used
getFont = getFont or function()
	local second = "arial.ttf"
	if isMac then second = "Monaco.dfont" end
	return { { name="Verdana.ttf", size=13 }, { name=second, size=13 } }
end
getLabelFont = getLabelFont or function()
	local second = "arial.ttf"
	if isMac then second = "Monaco.dfont" end
	return { { name="Verdana.ttf", size=11 }, { name=second, size=11 } }
end
getTextFieldFont = getTextFieldFont or function()
	local second = "arial.ttf"
	if isMac then second = "Monaco.dfont" end
	return { { name="Verdana.ttf", size=11 }, { name=second, size=11 } }
end

-- colours
getGraphBackgroundColour = getGraphBackgroundColour or function() return 0.1, 0.1, 0.1, 1 end
getGraphFillColour = getGraphFillColour or function() return 0.15, 0.25, 0.5, 1 end
getGraphLineColour = getGraphLineColour or function() return 0.3, 0.5, 1, 1 end

setLabelColour = setLabelColour or function( lab )
	lab:setBackgroundColour( 0.1, 0.1, 0.15, 0.3 )
	lab:setForegroundColour( 0.9, 0.9, 0.9, 1.0 )
end

setEnvelopeDisplayColours = setEnvelopeDisplayColours or function( env )
	env:setBackgroundColour( getGraphBackgroundColour() )
	env:setFillColour( getGraphFillColour() )
	env:setLineColour( getGraphLineColour() )
end

setCalibrationDisplayColours = setCalibrationDisplayColours or function( cb )
	cb:setBackgroundColour( getGraphBackgroundColour() )
	cb:setLineColour( getGraphLineColour() )
end

setWaveformDisplayColours = setWaveformDisplayColours or function( wv )
	wv:setBackgroundColour( getGraphBackgroundColour() )
	wv:setLineColour( getGraphLineColour() )
end

setFollowerEnvelopeDisplayColours = setFollowerEnvelopeDisplayColours or function( env )
	env:setBackgroundColour( getGraphBackgroundColour() )
	env:setFillColour( getGraphFillColour() )
	env:setLineColour( getGraphLineColour() )
	env:setPeakLineColour( 0.3, 0.8, 0.6, 1.0 )
end

setFollowerPitchDisplayColours = setFollowerPitchDisplayColours or function( env )
	env:setBackgroundColour( getGraphBackgroundColour() )
	env:setFillColour( getGraphFillColour() )
	env:setLineColour( getGraphLineColour() )
end

setStepEditorColours = setStepEditorColours or function( env )
	env:setBackgroundColour( getGraphBackgroundColour() )
	env:setFillColour( 0.2, 0.4, 0.8, 1 )
	env:setLineColour( getGraphLineColour() )
end

setFunctionDisplayColours = setFunctionDisplayColours or function( env )
	env:setBackgroundColour( getGraphBackgroundColour() )
	env:setLineColour( getGraphLineColour() )
end

setRandomRegisterColours = setRandomRegisterColours or function( env )
	env:setBackgroundColour( getGraphBackgroundColour() )
	env:setFillColour( 0.2, 0.4, 0.8, 1 )
	env:setLineColour( getGraphLineColour() )
end

setDACEditorColours = setDACEditorColours or function( env )
	env:setBackgroundColour( getGraphBackgroundColour() )
	env:setFillColour( 0.2, 0.4, 0.8, 1 )
	env:setLineColour( getGraphLineColour() )
end

setUIColours = setUIColours or function()
	setBackgroundColour( 0.4, 0.4, 0.4 )
	setBannerColour( 0.1, 0.1, 0.15, 0.3 )
	setBannerTextColour( 0.9, 0.9, 0.9, 1.0 )
	setGroupActiveColour( 0.7, 0.7, 0.7, 1.0 )
	setGroupInactiveColour( 0.6, 0.6, 0.6, 1.0 )
end

-- layout helpers

-- A knob above its value field, centred on each other, with a label 3 px under the field.
knobAndTextField = knobAndTextField or function( group, param, labelText, x, y, size, textH, textW, format )
	textW = textW or size
	format = format or ""
	local knobx = x
	local textx = x
	if textW > size then
		knobx = x + 0.5*(textW-size)
	else
		textx = x - 0.5*(size-textW)
	end
	group:add( knob( param, knobx, y+textH+1, size ) )
	group:add( textField( param, textx, y, textW, textH, format ) )
	if labelText then
		local lab = label( labelText, textx+0.5*textW, y-3 )
		setLabelColour( lab )
		group:add( lab )
	end
end

smallKnobAndTextField = smallKnobAndTextField or function( group, param, label, x, y, textW, format )
	knobAndTextField( group, param, label, x, y, kKnobSize, kTextFieldH, textW, format )
end

bigKnobAndTextField = bigKnobAndTextField or function( group, param, label, x, y )
	knobAndTextField( group, param, label, x, y, kBigKnobSize, kTextFieldH, kKnobSize )
end

labelledDropDown = labelledDropDown or function( group, param, labelText, x, y, w )
	w = w or kDropdownW
	group:add( dropDown( param, x, y, w, kTextFieldH ) )
	local lab = label( labelText, x+0.5*w, y-3 )
	setLabelColour( lab )
	group:add( lab )
end

leftLabelledDropDown = leftLabelledDropDown or function( group, param, labelText, x, y, lw, w )
	w = w or kDropdownW
	group:add( dropDown( param, x+lw, y, w, kTextFieldH ) )
	local lab = label( labelText, x, y, "right", lw, kTextFieldH )
	setLabelColour( lab )
	group:add( lab )
end

-- the atlas is 128 px high; its y is measured from the bottom
createKnobRenderers = createKnobRenderers or function()
	local tex = texture( "buttons.png" )
	tinyKnobRenderer = arcKnobRenderer( tex, 2, 128-100-26, 26, 32, 128-100-26 )
	smallKnobRenderer = arcKnobRenderer( tex, 2, 128-2-34, 34, 2, 128-42-34 )
	bigKnobRenderer = arcKnobRenderer( tex, 52, 128-2-92, 92, 162, 128-2-92 )
end

createUICommon = createUICommon or function()
	createKnobRenderers()
	setUIColours()
	local ww, wh = getWindowSize()
	prefsW = kKnobSize + 20
	prefsH = 25
	prefsX = ww - prefsW - windowEdgePad
	setBannerBounds( pad, wh - 25, prefsX - pad, wh - 10 )
	setBannerContent( "full", 60, -1 )
	add( button( "Prefs", "Prefs", prefsX, wh-prefsH-windowEdgePad, prefsW, prefsH ) )
end

-- A grid of controls, the first row on top, its lower left at (x, y): each item is
-- { kind, param, label [, width] } with kind "knob" (a knob over its value field), "field" (a value
-- field alone), "drop" (a drop-down) or "button" (a parameter's two-state button). Labels hang 3 px
-- under knobs, fields and drop-downs; a button carries its label as its caption.
controlGrid = controlGrid or function( group, items, columns, cellW, cellH, x, y, textW )
	x = x or 0
	y = y or 0
	textW = textW or 40
	local rows = math.ceil( #items / columns )
	for i, item in ipairs( items ) do
		local cx = x + ((i-1) % columns)*cellW
		local cy = y + (rows - 1 - math.floor( (i-1) / columns ))*cellH
		local kind, param, text, w = item[1], item[2], item[3], item[4]
		if kind == "knob" then
			smallKnobAndTextField( group, param, text, cx, cy, w or textW )
		elseif kind == "field" then
			w = w or textW
			group:add( textField( param, cx, cy, w, kTextFieldH ) )
			if text then
				local lab = label( text, cx+0.5*w, cy-3 )
				setLabelColour( lab )
				group:add( lab )
			end
		elseif kind == "drop" then
			labelledDropDown( group, param, text, cx, cy, w or (cellW - 6) )
		elseif kind == "button" then
			group:add( paramButton( param, text, cx, cy, w or (cellW - 6), 15 ) )
		end
	end
end

-- The hidden group of the OSC port, present in every panel so that it keeps its layout space.
oscGroup = oscGroup or function( padding )
	local g = group( "OSC", padding )
	smallKnobAndTextField( g, "OSC Port Offset", "Port", 0, 0 )
	g:setVisible( false )
	return g
end
