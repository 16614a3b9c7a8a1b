#!/usr/bin/env bash
# Drives a live "corvane patch --realtime" of two LFOs over UDP on loopback with liblo's oscsend as
# the client and oscdump as the listener for replies, then prints what oscdump received (time tags
# cut off), what corvane said, and the two WAVs' paths. Usage: CORVANE BASE_PORT WORK_FOLDER
set -u
CORVANE=$1
BASE=$2
WORK=$3
cd "$WORK" || exit 1
P1=$((BASE + 5))
P2=$((BASE + 6))
DUMP=$((BASE + 100))
CLIENT=osc.udp://127.0.0.1:$DUMP

cat > calls.lua <<'LUA'
function sum(a, b) return a + b, "sum", nil, 7 end
LUA
cat > patch.json <<JSON
{"rate": 48000, "block": 256, "seconds": 6,
 "instances": [
  {"name": "one", "module": "lfo", "set": {"OSC Port Offset": 5}, "scripts": ["calls.lua"]},
  {"name": "two", "module": "lfo", "set": {"OSC Port Offset": 6}}
 ]}
JSON

oscdump -L "$DUMP" > dump.log 2>&1 &
DUMPER=$!
"$CORVANE" patch patch.json --realtime --osc-base-port "$BASE" > corvane.out 2> corvane.err &
RUN=$!
for _ in $(seq 200); do
    grep -q "two listens for OSC on port $P2" corvane.err && grep -q "one listens for OSC on port $P1" corvane.err && break
    sleep 0.05
done
step() { sleep 0.15; }

oscsend localhost "$P1" /ping ss "$CLIENT" /pong; step
oscsend localhost "$P1" /getAll ss "$CLIENT" /all; step
oscsend localhost "$P1" /registerUpdate iss 1 "$CLIENT" /upd; step
oscsend localhost "$P1" /set if 1 2.5; step
oscsend localhost "$P1" /get iss 1 "$CLIENT" /got; step
oscsend localhost "$P1" /brel/2/1 f 3.5; step
oscsend localhost "$P2" /get iss 1 "$CLIENT" /two; step
oscsend localhost "$P2" /brel/CRLFO/*/SpeedL f 4.5; step
oscsend localhost "$P1" /get iss 1 "$CLIENT" /got; step
oscsend localhost "$P1" /get iss 1 "$CLIENT" /got; step
oscsend localhost "$P2" /brel/CRLFO/1/SpeedL/CRLFO/2/SpeedL ff 1.25 6.75; step
oscsend localhost "$P2" /get iss 1 "$CLIENT" /two; step
oscsend localhost "$P1" /call sssii sum "$CLIENT" /sum 3 4; step
printf 'not an OSC packet' > "/dev/udp/127.0.0.1/$P1"; step
oscsend localhost "$P1" /ping ss "$CLIENT" /pong2; step

wait "$RUN"
echo "status $?"
sleep 0.2
kill "$DUMPER"
wait "$DUMPER" 2> /dev/null
echo "-- dump"
cut -d' ' -f2- dump.log
echo "-- out"
cat corvane.out
echo "-- err"
cat corvane.err
