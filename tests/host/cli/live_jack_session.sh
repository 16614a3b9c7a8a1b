#!/usr/bin/env bash
# `corvane live` on JACK's dummy backend (a private server, no sound card): an LFO, a Voice Controller
# and a Sync fed by the LFO run live as JACK's timebase master; what their ports give (recorded by
# our capture client, and by jack_rec) equals `corvane patch` of the same patch sample for sample
# (period 256 = the patch's block); MIDI played into the live MIDI port (by our driver client, and
# by jack_midiseq) lands on the voice's gate at its frame; a second live patch follows JACK's
# transport, driven by the first and then by jack_transport; OSC and a Lua script's OSC path set
# parameters of a live instance; SIGTERM ends it within a second with status 0 and its state file
# written; a port that does not exist, no server, a second SIGINT and a server that goes away are
# handled clearly.
# Usage: live_jack_session.sh [BUILD]
set -euo pipefail
HERE=$(cd "$(dirname "$0")" && pwd)
BUILD=$(cd "${1:-$HERE/../../../build}" && pwd)
CORVANE=$BUILD/host/corvane
TOOL=$BUILD/tests/host/lv2/corvane_host_tool
for f in "$CORVANE" "$TOOL"; do [ -x "$f" ] || { echo "FAIL: $f is missing: build first" >&2; exit 1; }; done
WORK=$(mktemp -d "${TMPDIR:-/tmp}/corvane-live-XXXXXX")
# One name, not one per run: JACK frees a killed server's slot only for a server of the same name.
export JACK_DEFAULT_SERVER="corvane-live" JACK_NO_AUDIO_RESERVATION=1 JACK_NO_START_SERVER=1
export XDG_CONFIG_HOME="$WORK/config" XDG_DATA_HOME="$WORK/data"
mkdir -p "$XDG_CONFIG_HOME"
PIDS=()
cleanup() {
    local status=$? i
    for ((i = ${#PIDS[@]} - 1; i >= 0; i--)); do kill "${PIDS[i]}" 2> /dev/null || true; wait "${PIDS[i]}" 2> /dev/null || true; done
    if [ $status -ne 0 ]; then echo "[live] work folder kept: $WORK" >&2; else rm -rf "$WORK"; fi
    exit $status
}
trap cleanup EXIT
fail() { echo "FAIL [live]: $*" >&2; exit 1; }
step() { echo "== [live] $*"; }
cd "$WORK"

wait_port() {
    for _ in $(seq 200); do jack_lsp 2> /dev/null | grep -qx "$1" && return 0; sleep 0.05; done
    fail "JACK port $1 did not appear"
}

cat > patch.json << 'JSON'
{"rate": 48000, "block": 256, "seconds": 40,
 "instances": [
   {"name": "lfo", "module": "lfo", "set": {"Sine L": 0.9, "Triangle R": 0.8, "Speed R": 3.7}},
   {"name": "vc", "module": "voicecontroller", "state": "vc.state"},
   {"name": "sync", "module": "sync", "inputs": ["lfo:0"]}],
 "midi_in": ["vc"], "jack_transport": "master"}
JSON
# A Sync whose clock shows the tempo it follows: 24 pulses a quarter, half a pulse high.
cat > follow.json << 'JSON'
{"rate": 48000, "block": 256, "transport": {"tempo": 60},
 "instances": [{"name": "s", "module": "sync", "set": {"DINsync Type": 1}}]}
JSON

step "no JACK server: one line, status 2"
set +e
"$CORVANE" live patch.json > out.txt 2> err.txt
status=$?
set -e
[ $status -eq 2 ] || fail "status $status without a server"
[ "$(wc -l < err.txt)" -eq 1 ] && grep -q "no JACK server is running" err.txt || fail "message: $(cat err.txt)"

jackd --no-realtime --sync --timeout 10000 -n "$JACK_DEFAULT_SERVER" -d dummy -r 48000 -p 256 > jackd.log 2>&1 &
JACKD=$!
PIDS+=($JACKD)
jack_wait -w -t 10 > /dev/null 2>&1 || fail "jackd did not start"

step "a port that does not exist: status 2, naming it"
sed 's/"midi_in"/"connect": [["lfo:0", "nosuch:port"]], "midi_in"/' patch.json > badport.json
set +e
"$CORVANE" live badport.json --seconds 5 > out.txt 2> err.txt
status=$?
set -e
[ $status -eq 2 ] || fail "status $status for a missing port"
grep -q 'badport.json: connect\[0\]: the JACK server has no port "nosuch:port"' err.txt || fail "message: $(cat err.txt)"

step "the offline render of the same patch (whose state file does not exist yet)"
sed 's/, "state": "vc.state"//' patch.json > offline.json
"$CORVANE" patch offline.json 2> /dev/null

step "a follower waits for JACK's transport"
"$CORVANE" live follow.json --name fo > follow.log 2>&1 &
FOLLOW=$!
PIDS+=($FOLLOW)
wait_port fo:s_out_1

step "live as timebase master: recorded outputs equal the offline render"
"$CORVANE" live patch.json --name cv > live.log 2>&1 &
LIVE=$!
PIDS+=($LIVE)
wait_port cv:sync_out_1
wait_port cv:midi_in
for instance in lfo sync; do
    "$TOOL" capture --name "rec_$instance" --out "rec_$instance.wav" --frames 24000 "cv:${instance}_out_0" \
        "cv:${instance}_out_1" > "capture_$instance.log" 2>&1 || fail "capture failed: $(cat "capture_$instance.log")"
    # The Sync's run output stays high while the transport plays; its clock and both LFO traces move.
    [ $instance = sync ] || "$TOOL" expect-varying "$instance.wav" --min-distinct 1000 > /dev/null \
        || fail "$instance.wav hardly moves"
    "$TOOL" compare "rec_$instance.wav" "$instance.wav" --align || fail "$instance differs from the offline render"
done

# jack_rec writes 32-bit integers without clipping, so the LFO stays below full scale; it connects
# its ports one after the other, so its first periods are left out.
step "jack_rec's recording equals the offline render (to the 32-bit PCM it writes)"
jack_rec -f jackrec_lfo.wav -d 1 -b 32 cv:lfo_out_0 cv:lfo_out_1 > jackrec.log 2>&1 || fail "jack_rec: $(cat jackrec.log)"
"$TOOL" compare jackrec_lfo.wav lfo.wav --align --tolerance 1e-6 --from 4800 || fail "jack_rec's recording differs from the offline render"

step "the follower runs at the master's tempo (120, not its patch's 60): a pulse every 1000 frames"
"$TOOL" capture --name rec_fo --out fo_master.wav --frames 9600 fo:s_out_0 fo:s_out_1 > capture_fo.log 2>&1 \
    || fail "capture failed: $(cat capture_fo.log)"
"$TOOL" expect-gate fo_master.wav 1 --period 1000 --width 500 --min-edges 8 > /dev/null || fail "the follower's clock is not at 120"
"$TOOL" expect-constant fo_master.wav 2 1 > /dev/null || fail "the follower's run line is not high while JACK rolls"

step "live: MIDI into cv:midi_in lands on the voice's gate at its frame"
"$CORVANE" render voicecontroller --frames 24000 --block 256 --event 6000:903C64 --event 15000:803C00 \
    --out vc_ref.wav 2> /dev/null
"$TOOL" drive --name play --out played.wav --frames 24000 --midi-to cv:midi_in --event 6000:903C64 \
    --event 15000:803C00 cv:vc_out_0 cv:vc_out_1 cv:vc_out_2 cv:vc_out_3 cv:vc_out_4 cv:vc_out_5 > drive.log 2>&1 \
    || fail "drive failed: $(cat drive.log)"
"$TOOL" compare played.wav vc_ref.wav || fail "the played voice differs from the offline render"
"$TOOL" expect-constant played.wav 2 0 --to 6000 > /dev/null || fail "the gate opened before its note"
"$TOOL" expect-constant played.wav 2 1 --from 6000 --to 15000 > /dev/null || fail "the gate is not open from frame 6000"

step "jack_midiseq's notes open the voice's gate for their length, a loop apart"
jack_midiseq seq 24000 0 60 12000 > midiseq.log 2>&1 &
SEQ=$!
PIDS+=($SEQ)
wait_port seq:out
jack_connect seq:out cv:midi_in
"$TOOL" capture --name rec_seq --out seq.wav --frames 80000 cv:vc_out_1 > capture_seq.log 2>&1 \
    || fail "capture failed: $(cat capture_seq.log)"
"$TOOL" expect-gate seq.wav 1 --period 24000 --width 12000 --level 1 --min-edges 3 > /dev/null \
    || fail "the gate does not follow jack_midiseq's notes"
kill $SEQ
wait $SEQ 2> /dev/null || true

step "SIGTERM ends it within a second, status 0, state written"
rm -f vc.state
kill -TERM $LIVE
for _ in $(seq 20); do kill -0 $LIVE 2> /dev/null || break; sleep 0.05; done
kill -0 $LIVE 2> /dev/null && fail "live still runs a second after SIGTERM"
set +e
wait $LIVE
status=$?
set -e
[ $status -eq 0 ] || fail "status $status after SIGTERM: $(cat live.log)"
grep -q 'SIGTERM: stopped after' live.log || fail "no stop message: $(cat live.log)"
[ -s vc.state ] || fail "vc.state was not written"
"$CORVANE" render voicecontroller --frames 256 --state-in vc.state --out check.wav 2> /dev/null \
    || fail "vc.state does not load"

step "the master gone, the follower's run line falls; under jack_transport at 150 its clock follows"
"$TOOL" capture --name rec_fo2 --out fo_stopped.wav --frames 4800 fo:s_out_1 > capture_fo.log 2>&1 \
    || fail "capture failed: $(cat capture_fo.log)"
"$TOOL" expect-constant fo_stopped.wav 1 0 > /dev/null || fail "the follower's run line stays high after the stop"
mkfifo transport.fifo
jack_transport < transport.fifo > transport.log 2>&1 &
TRANSPORT=$!
PIDS+=($TRANSPORT)
exec 3> transport.fifo
printf 'master\ntempo 150\nlocate 0\nplay\n' >&3
sleep 0.5
"$TOOL" capture --name rec_fo3 --out fo_150.wav --frames 9600 fo:s_out_0 > capture_fo.log 2>&1 \
    || fail "capture failed: $(cat capture_fo.log)"
"$TOOL" expect-gate fo_150.wav 1 --period 800 --width 400 --min-edges 8 > /dev/null || fail "the follower's clock is not at 150"
printf 'stop\nquit\n' >&3
exec 3>&-
wait $TRANSPORT 2> /dev/null || true
kill -TERM $FOLLOW
set +e
wait $FOLLOW
status=$?
set -e
[ $status -eq 0 ] || fail "status $status of the follower: $(cat follow.log)"
grep -q "following JACK's transport" follow.log || fail "follower: $(cat follow.log)"

step "OSC and a Lua script's OSC path set parameters of a live instance"
echo 'registerOSCPathForParameter("/level", "Output Positive R")' > level.lua
cat > osc.json << 'JSON'
{"instances": [{"name": "d", "module": "dc", "set": {"OSC Port Offset": 3}, "scripts": ["level.lua"]}]}
JSON
"$CORVANE" live osc.json --name oc --osc-base-port 7450 > osc.log 2>&1 &
OSCLIVE=$!
PIDS+=($OSCLIVE)
wait_port oc:d_out_1
for _ in $(seq 100); do grep -q "listens for OSC on port 7453" osc.log && break; sleep 0.05; done
"$TOOL" capture --name rec_osc --out osc_before.wav --frames 4800 oc:d_out_0 oc:d_out_1 > capture_osc.log 2>&1 \
    || fail "capture failed: $(cat capture_osc.log)"
"$TOOL" expect-constant osc_before.wav 1 0 > /dev/null || fail "the DC is not at its default"
oscsend localhost 7453 /set if 0 0.5
oscsend localhost 7453 /level f 0.25
sleep 0.3
"$TOOL" capture --name rec_osc2 --out osc_after.wav --frames 4800 oc:d_out_0 oc:d_out_1 > capture_osc.log 2>&1 \
    || fail "capture failed: $(cat capture_osc.log)"
"$TOOL" expect-constant osc_after.wav 1 0.5 > /dev/null || fail "/set did not reach the live instance: $(cat osc.log)"
"$TOOL" expect-constant osc_after.wav 2 0.25 > /dev/null || fail "the Lua path did not reach the live instance: $(cat osc.log)"
kill -TERM $OSCLIVE
wait $OSCLIVE 2> /dev/null || fail "status $? after SIGTERM: $(cat osc.log)"

step "a second SIGINT while it winds down changes nothing"
"$CORVANE" live patch.json --name cv2 > live2.log 2>&1 &
LIVE=$!
PIDS+=($LIVE)
wait_port cv2:midi_in
kill -INT $LIVE
kill -INT $LIVE 2> /dev/null || true
set +e
wait $LIVE
status=$?
set -e
[ $status -eq 0 ] || fail "status $status after two SIGINTs: $(cat live2.log)"
"$CORVANE" render voicecontroller --frames 256 --state-in vc.state --out check.wav 2> /dev/null \
    || fail "vc.state does not load after two SIGINTs"

step "the server goes away: a clear message, state saved"
"$CORVANE" live patch.json --name cv3 > live3.log 2>&1 &
LIVE=$!
PIDS+=($LIVE)
wait_port cv3:midi_in
rm -f vc.state
kill -TERM $JACKD
wait $JACKD 2> /dev/null || true
set +e
wait $LIVE
status=$?
set -e
[ $status -eq 1 ] || fail "status $status when the server went away: $(cat live3.log)"
grep -q 'the JACK server went away' live3.log || fail "message: $(cat live3.log)"
[ -s vc.state ] || fail "vc.state was not written when the server went away"
echo "-- [live] passed"
