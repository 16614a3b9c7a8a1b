ardour { ["type"] = "dsp", name = "Corvane Test Note Emitter", category = "Utility", license = "MIT",
	author = "Corvane host tests", description = [[Emits fixed MIDI events at absolute session samples while rolling]] }
-- { absolute sample, status, data1, data2 }, sorted by sample; incoming MIDI is dropped.
EVENTS = { { 1000, 0x90, 60, 100 }, { 13000, 0x80, 60, 0 }, { 50000, 0x90, 64, 100 }, { 62000, 0x80, 64, 0 } }
function dsp_ioconfig () return { { midi_in = 1, midi_out = 1, audio_in = 0, audio_out = 0 } } end
function dsp_run (_, _, n_samples)
	if not Session:transport_rolling () then return end
	local pos, cnt = Session:transport_sample (), 1
	for _, e in ipairs (EVENTS) do
		if e[1] >= pos and e[1] < pos + n_samples then
			midiout[cnt] = { time = e[1] - pos + 1, data = { e[2], e[3], e[4] } } -- time is 1-based
			cnt = cnt + 1
		end
	end
end
