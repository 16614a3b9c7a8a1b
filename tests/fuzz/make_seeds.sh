#!/usr/bin/env bash
# Writes the seed corpora of the fuzz targets into seeds/<target>/: small good inputs of each kind,
# some made by the corvane command of a normal build (state files, a float WAV), the rest here.
# Usage: tests/fuzz/make_seeds.sh [BUILD_DIR]   (default: build)
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
root="$(cd "$here/../.." && pwd)"
corvane="$root/${1:-build}/host/corvane"
seeds="$here/seeds"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
rm -rf "$seeds"
mkdir -p "$seeds"/{osc_packet,state_chunks,state_file,calibration_file,patch_json,midi_file,wav_input,lua_midi_script}

# Calibration files, also used for the states below.
printf 'Corvane Calibration Data\nversion: 1\n48 0.1\n60 0.2\n72 0.3\n' > "$seeds/calibration_file/three_notes.txt"
printf 'Corvane Calibration Data\nversion: 1\n0 -1\n64 0\n127 1\n128 1\n' > "$seeds/calibration_file/full_range.txt"
printf 'Corvane Calibration Data\r\nversion: 1\r\n60 0.5\r\n61 0.5\r\n-1 0.2\r\n' > "$seeds/calibration_file/crlf_repeat.txt"
printf 'Corvane Calibration Data\nversion: 2\n60 0.5\n' > "$seeds/calibration_file/version_2.txt"

# State files of several modules, with tables, grids and names in their "Chnk" images.
cal="$seeds/calibration_file/three_notes.txt"
"$corvane" render dc --frames 64 --set "Output Positive L=0.25" --out "$work/o.wav" --state-out "$seeds/state_file/dc.state"
"$corvane" render voicecontroller --frames 64 --calibration-in "$cal" --out "$work/o.wav" --state-out "$seeds/state_file/voicecontroller.state"
"$corvane" render quantizer --frames 64 --set "Mode L=Calibrated" --calibration-in "$cal" --out "$work/o.wav" --state-out "$seeds/state_file/quantizer.state"
"$corvane" render steplfo --frames 64 --out "$work/o.wav" --state-out "$seeds/state_file/steplfo.state"
for stem in follower cvtomidi; do
    if "$corvane" params "$stem" > /dev/null 2>&1; then
        extra=()
        [ "$stem" = follower ] && extra=(--calibration-in "$cal")
        [ "$stem" = cvtomidi ] && extra=(--property "64100=Some Device")
        "$corvane" render "$stem" --frames 64 "${extra[@]}" --out "$work/o.wav" --state-out "$seeds/state_file/$stem.state"
    fi
done
# The event modules' own entries: the Learner's destination ("ipep"), CV To OSC's target and paths
# ("ipep", "osp0", "osp1"), the Soundplane's calibration table and name ("calt", "calf").
"$corvane" render learner --frames 64 --property "64110=127.0.0.1:9001" --out "$work/o.wav" --state-out "$seeds/state_file/learner.state"
"$corvane" render cvtoosc --frames 64 --property "64110=osc.udp://127.0.0.1:9002" --property "64111=/cv/left" \
    --property "64112=/cv/right" --out "$work/o.wav" --state-out "$seeds/state_file/cvtoosc.state"
"$corvane" render soundplane --frames 64 --calibration-in "$cal" --out "$work/o.wav" --state-out "$seeds/state_file/soundplane.state"
"$corvane" render dc --frames 64 --out "$seeds/wav_input/dc_float.wav"

python3 - "$seeds" <<'PY'
import struct, sys, os, wave
seeds = sys.argv[1]
def put(target, name, data):
    with open(os.path.join(seeds, target, name), "wb") as f:
        f.write(data)

# The state chunks: "elck" and "Chnk" of each state file, as the chunk target takes them.
for name in sorted(os.listdir(os.path.join(seeds, "state_file"))):
    data = open(os.path.join(seeds, "state_file", name), "rb").read()
    count = struct.unpack_from("<I", data, 16)[0]
    at, chunks = 20, {}
    for _ in range(count):
        cid, _version, size = struct.unpack_from("<III", data, at)
        chunks[cid] = data[at + 12: at + 12 + size]
        at += 12 + size
    elck = chunks.get(0x656c636b, b"")[:0xFFFF]
    chnk = chunks.get(0x43686e6b, b"")
    put("state_chunks", name.replace(".state", ".chunks"), struct.pack("<H", len(elck)) + elck + chnk)
put("state_chunks", "ids.chunks", struct.pack("<H", 0) + struct.pack("<III", 0x4272656c, 1, 24) +
    b"diul" + struct.pack("<II", 4, 3) + b"diug" + struct.pack("<II", 4, 7))
# A Learner image with mappings ("mmap", version 2: target id, parameter, source id, channel, kind,
# number, minimum, maximum, unit), addressed to the ids the instances of the chunk target get.
def store(*entries):
    body = b"".join(struct.pack("<II", tag, len(data) + -len(data) % 4) + data + b"\0" * (-len(data) % 4) for tag, data in entries)
    return struct.pack("<III", 0x4272656c, 1, len(body)) + body
mappings = struct.pack("<I", 2)
for target, parameter, source, kind, number in ((8, 1, 12, 0, 7), (12, 0, 12, 1, 60), (3, 2, 5, 2, 0), (99, 4, 1, 3, 0)):
    mappings += struct.pack("<IIIIIIffI", target, parameter, source, 0, kind, number, 0.0, 1.0, 1)
put("state_chunks", "learner_mappings.chunks", struct.pack("<H", 0) +
    store((0x69706570, b"127.0.0.1:9003\0"), (0x6D6D6170, mappings)))

# OSC packets.
def pad(b):
    return b + b"\0" * (4 - len(b) % 4)
def message(address, *args):
    tags, body = ",", b""
    for a in args:
        if isinstance(a, bool):
            tags += "T" if a else "F"
        elif isinstance(a, int):
            tags += "i"; body += struct.pack(">i", a)
        elif isinstance(a, float):
            tags += "f"; body += struct.pack(">f", a)
        elif a is None:
            tags += "N"
        else:
            tags += "s"; body += pad(a.encode())
    return pad(address.encode()) + pad(tags.encode()) + body
def bundle(*elements):
    out = b"#bundle\0" + struct.pack(">Q", 1)
    for e in elements:
        out += struct.pack(">i", len(e)) + e
    return out
client = "osc.udp://127.0.0.1:9000"
packets = {
    "ping": message("/ping", client, "/pong"),
    "set": message("/set", 1, 2.5),
    "set_offset": message("/set", 0, 3.0),
    "get": message("/get", 1, client, "/value"),
    "get_all": message("/getAll", "127.0.0.1:9000", "/all"),
    "get_all_registered": message("/getAllRegistered"),
    "num": message("/getNumParameters", client, "/n"),
    "used": message("/isParameterUsed", 2, client, "/u"),
    "info": message("/getInfo", 3, client, "/i"),
    "register": message("/registerUpdate", 1, client, "/speed"),
    "unregister": message("/unregisterUpdate", 1, client, "/speed"),
    "exec": message("/exec", "bump", 1, 2.0, "three"),
    "exec_setter": message("/exec", "setter", 1, 0.5),
    "exec_fail": message("/exec", "fail", True),
    "call": message("/call", "many", client, "/r", 1, 2.5, "x", None),
    "call_others": message("/call", "others", client, "/r", 2, 1, 0.5),
    "call_info": message("/call", "info", client, "/r", 1),
    "exec_flag": message("/exec", "flag", 3, True),
    "exec_send": message("/exec", "send", client, "/s", 0.5),
    "exec_timed": message("/exec", "timed", 0.001),
    "start_note": message("/startNote", 60, 0.8),
    "stop_note": message("/stopNote", 60, 0.0),
    "brel_global": message("/brel/1/3", 0.5),
    "brel_name": message("/brel/CRLFO/1/SpeedL", 4.0),
    "brel_all": message("/brel/CRQuantizer/*/StepsL", 7.0),
    "brel_two": message("/brel/CRLFO/1/SpeedL/CRQuantizer/1/2", 1.0, 2.0),
    "brel_multi": message("/brel/+multi1/CRLFO/1/2/3", 0.25),
    "level": message("/level", 0.3),
    "pair": message("/pair", 0.1, 0.2),
    "norm": message("/norm", 0.7),
    "fn": message("/fn", 1, 2.0, "x"),
    "err": message("/err", "boom"),
    "note": message("/note", 64.0, 1.0),
    "bundle": bundle(message("/set", 1, 1.0), message("/get", 1, client, "/v"), bundle(message("/ping", client, "/p"))),
    "touch": bundle(message("/t3d/frm", 1, 0), message("/t3d/tch1", 0.5, 0.5, 0.2, 60.0), message("/t3d/tch16", 0.1, 0.9, 0.0, 1.0)),
}
for name, data in packets.items():
    put("osc_packet", name + ".osc", data)

# Standard MIDI Files.
def var(n):
    out = [n & 0x7F]
    n >>= 7
    while n:
        out.insert(0, 0x80 | (n & 0x7F)); n >>= 7
    return bytes(out)
def smf(fmt, division, tracks):
    out = b"MThd" + struct.pack(">IHHH", 6, fmt, len(tracks), division)
    for t in tracks:
        out += b"MTrk" + struct.pack(">I", len(t)) + t
    return out
end = var(0) + b"\xff\x2f\x00"
notes = var(0) + b"\x90\x3c\x64" + var(10) + b"\x3e\x50" + var(96) + b"\x80\x3c\x00" + var(0) + b"\x3e\x00" + end
tempo = var(0) + b"\xff\x51\x03\x07\xa1\x20" + var(48) + b"\xff\x51\x03\x03\xd0\x90" + end
sysex = var(0) + b"\xf0\x03\x7e\x01\xf7" + var(5) + b"\xb0\x07\x64" + var(5) + b"\xe0\x00\x40" + var(5) + b"\xc0\x05" + end
far = var(0x0FFFFFFF) + b"\x90\x40\x40" + var(0x0FFFFFFF) + b"\x80\x40\x00" + end
put("midi_file", "format0.mid", smf(0, 96, [notes]))
put("midi_file", "format1_tempo.mid", smf(1, 480, [tempo, notes, sysex]))
put("midi_file", "far_deltas.mid", smf(1, 960, [far]))
put("midi_file", "smpte.mid", smf(0, 0xE728, [notes]))

# WAV inputs in integer formats (the float one is the command's own output).
for bits, name in ((16, "pcm16.wav"), (24, "pcm24.wav")):
    path = os.path.join(seeds, "wav_input", name)
    with wave.open(path, "wb") as w:
        w.setnchannels(2); w.setsampwidth(bits // 8); w.setframerate(48000)
        w.writeframes(bytes(range(256)) * (bits // 8))
with wave.open(os.path.join(seeds, "wav_input", "mono8.wav"), "wb") as w:
    w.setnchannels(1); w.setsampwidth(1); w.setframerate(44100); w.writeframes(bytes(range(64)))

# Lua scripts driven by MIDI: instance, then (delta, status, data1, data2) per event.
def events(instance, *evs):
    return bytes([instance]) + b"".join(bytes(e) for e in evs)
put("lua_midi_script", "notes.midi", events(0, (0, 0x90, 60, 100), (10, 0x80, 60, 0), (5, 0x91, 3, 127), (200, 0x81, 3, 1)))
put("lua_midi_script", "controllers.midi", events(1, (0, 0xB0, 7, 100), (1, 0xB0, 99, 0), (1, 0xB0, 98, 0), (1, 0xB0, 6, 64), (1, 0xB0, 38, 1), (1, 0xC0, 5, 0), (1, 0xA0, 60, 30), (1, 0xD0, 120, 0), (1, 0xE0, 0, 64)))
put("lua_midi_script", "timers.midi", events(2, (0, 0x90, 60, 1), (0, 0x90, 61, 2), (100, 0x80, 60, 0), (0, 0xB3, 9, 70), (0, 0xC2, 4, 0), (0, 0xE0, 5, 0), (255, 0xD0, 9, 0)))
put("lua_midi_script", "voices.midi", events(3, *[(3, 0x90, 40 + k, 100) for k in range(12)], *[(3, 0x80, 40 + k, 0) for k in range(12)]))
put("lua_midi_script", "system.midi", events(4, (0, 0xF8, 0, 0), (0, 0xFA, 0, 0), (0, 0xF0, 1, 2), (0, 0xF2, 3, 4), (1, 0xFF, 0, 0)))
put("lua_midi_script", "trigger.midi", events(5, (0, 0x99, 36, 127), (20, 0x89, 36, 0), (20, 0x99, 38, 64)))
PY

# Patch files.
cat > "$seeds/patch_json/two_in_series.json" <<'JSON'
{"rate": 48000, "block": 256, "seconds": 0.01,
 "transport": {"tempo": 120, "position": 0, "playing": true, "meter": "6/8", "loop": [0, 4]},
 "instances": [
  {"name": "lfo", "module": "lfo", "set": {"Speed L": 2, "Sync L": "Tempo"}, "midi": "in.mid", "out": "lfo.wav"},
  {"name": "m", "module": "CRdc", "set": {"Output Positive L": 0.5, "Input Multiply L": true},
   "events": ["0:903C64", "10:803C00"], "inputs": ["lfo:0", null, "in.wav:1"], "state": "m.state", "out": "m.wav"}]}
JSON
cat > "$seeds/patch_json/voices.json" <<'JSON'
{"rate": 44100, "block": 64, "frames": 512, "transport": null,
 "instances": [
  {"name": "master", "module": "voicecontroller", "midi": "in.mid", "set": {"Poly Mode": "Master", "Polyphony/Voice": 2}},
  {"name": "v1", "module": "voicecontroller", "inputs": ["master:0"], "calibration": "vco.txt",
   "set": {"Poly Mode": "Voice", "Polyphony/Voice": 1}, "properties": [64090, "64121=grid"], "scripts": ["none.lua"]},
  {"name": "q", "module": "quantizer", "inputs": ["v1:0", "v1:1"], "calibration": "vco.txt", "set": {"Mode R": "Calibrated"}}]}
JSON
cat > "$seeds/patch_json/live_keys.json" <<'JSON'
{"instances": [{"name": "a", "module": "dc"}], "connect": [["a:0", "system:playback_1"]], "midi_in": ["a"]}
JSON
echo '{"instances": [{"name": "a", "module": "dc", "set": {"Output Positive L": 1e400}}]}' > "$seeds/patch_json/huge_number.json"
echo '{"instances": [{"name": "a", "module": "lfo", "inputs": ["b:0"]}, {"name": "b", "module": "dc", "inputs": ["a:0"]}]}' > "$seeds/patch_json/loop.json"
echo "seeds written to $seeds"
