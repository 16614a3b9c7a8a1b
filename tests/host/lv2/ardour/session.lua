-- Headless Ardour driver of the LV2 host tests: ardour7-lua session.lua, steered by the environment.
--   CT_MODE   dc      new session DIR at CT_TEMPO, a MIDI track with the note emitter and Corvane DC
--                     set from CT_SETTINGS ("port=value,..."), exported to dc.wav and saved
--             reload  loads DIR, prints every DC control, exports dc-reloaded.wav, saves again
--             probe   loads DIR (made with a 6-channel master), adds the note emitter and the host
--                     probe set from CT_SETTINGS, wires its 6 outputs to the master's, exports probe.wav
--   CT_DIR session folder (name "ct"), CT_OUT export folder, CT_BLOCK engine block, CT_FRAMES length
local MODE, DIR, OUT = os.getenv("CT_MODE"), os.getenv("CT_DIR"), os.getenv("CT_OUT")
local BLOCK, FRAMES = tonumber(os.getenv("CT_BLOCK") or "2048"), tonumber(os.getenv("CT_FRAMES") or "96000")
local PRESET = "5b7e2a10-8c3d-4f6e-a1b2-3c4d5e6f7a80"
local DC, PROBE = "urn:brelmont:corvane:dc", "urn:brelmont:corvane-test:hostprobe"

local be = AudioEngine:set_backend("None (Dummy)", "", "")
be:set_device_name("Silence"); be:set_sample_rate(48000); be:set_buffer_size(BLOCK)
assert(AudioEngine:start(false) == 0, "engine")
ARDOUR.config():set_output_auto_connect(ARDOUR.AutoConnectOption.ManualConnect)

local function track(name)
	return Session:new_midi_track(ARDOUR.ChanCount(ARDOUR.DataType("midi"), 1), ARDOUR.ChanCount(ARDOUR.DataType("audio"), 2),
		false, ARDOUR.PluginInfo(), nil, nil, 1, name, ARDOUR.PresentationInfo.max_order, ARDOUR.TrackMode.Normal, true, false):front()
end
local function plug(tr, what, pos)
	local p = what:find(":") and ARDOUR.LuaAPI.new_plugin(Session, what, ARDOUR.PluginType.LV2, "")
	                           or ARDOUR.LuaAPI.new_luaproc(Session, what)
	assert(not p:isnil(), "no plug-in " .. what); assert(tr:add_processor_by_index(p, pos, nil, true) == 0); return p
end
local function wire(tr, n)   -- track outs 1..n -> master ins 1..n, no panner in between
	print("track outputs", tr:n_outputs():n_audio(), "master inputs", Session:master_out():n_inputs():n_audio())
	tr:panner_shell():set_bypassed(true); Session:master_out():panner_shell():set_bypassed(true)
	local mi = Session:master_out():input()
	for i = 0, n - 1 do tr:output():audio(i):connect(mi:audio(i):name()) end
end
local function tempo(bpm)
	local tm = Temporal.TempoMap.fetch_writable(); tm:set_tempo(Temporal.Tempo(bpm, bpm, 4), Temporal.timepos_t(0))
	Temporal.TempoMap.update(tm); print("bpm", Temporal.TempoMap.read():quarters_per_minute_at(Temporal.timepos_t(0)))
end
local function apply(p, settings)   -- "n=v,n=v": n-th control port from 0
	for n, v in string.gmatch(settings or "", "(%d+)=([^,]+)") do
		assert(ARDOUR.LuaAPI.set_processor_param(p, tonumber(n), tonumber(v)), "set " .. n)
	end
end
local function controls(p, count)
	local t = {}
	for n = 0, count - 1 do t[#t + 1] = string.format("%d=%.9g", n, (ARDOUR.LuaAPI.get_processor_param(p, n, true))) end
	print("controls " .. table.concat(t, ","))
end
local function export(name)
	local se = Session:simple_export()
	assert(se:set_preset(PRESET), "preset"); se:set_folder(OUT); se:set_name(name); se:set_range(0, FRAMES)
	local ok = se:check_outputs() and se:run_export(); se = nil; collectgarbage(); print("export", name, ok)
	assert(ok, "export failed")
end
local function save() Session:save_state("", false, false, false, false, false); print("saved") end

if MODE == "dc" then
	assert(create_session(DIR, "ct", 48000)); tempo(tonumber(os.getenv("CT_TEMPO") or "90"))
	local tr = track("DC"); plug(tr, "Corvane Test Note Emitter", 0); local dc = plug(tr, DC, 1); wire(tr, 2)
	apply(dc, os.getenv("CT_SETTINGS")); controls(dc, 14)
	tr, dc = nil; collectgarbage(); export("dc"); save()
elseif MODE == "reload" then
	assert(load_session(DIR, "ct")); print("block", Session:get_block_size())
	local dc = Session:route_by_name("DC"):nth_plugin(1); controls(dc, 14); dc = nil; collectgarbage()
	export("dc-reloaded"); save()
elseif MODE == "probe" then
	assert(load_session(DIR, "ct")); tempo(tonumber(os.getenv("CT_TEMPO") or "90"))
	print("master inputs", Session:master_out():n_inputs():n_audio(), "block", Session:get_block_size())
	local tr = track("Probe"); plug(tr, "Corvane Test Note Emitter", 0); local p = plug(tr, PROBE, 1)
	apply(p, os.getenv("CT_SETTINGS")); wire(tr, 6); tr, p = nil; collectgarbage(); export("probe"); save()
end
collectgarbage(); close_session(); print("done")
