#!/usr/bin/env bash
# Runs "corvane render cvtoosc --realtime" on a slewed ramp (L) and a constant (R) made by the DC
# module, with liblo's oscdump listening at the target, and prints what oscdump received (time tags
# cut off) and the render's status. Usage: CORVANE PORT WORK_FOLDER
set -u
CORVANE=$1
PORT=$2
WORK=$3
cd "$WORK" || exit 1

# L rises from 0 by 1/12000 per sample (a slew of 500 ms over the range -1 to 1) and holds at 1 from
# frame 12000; R stands at -0.5.
"$CORVANE" render dc --seconds 1 --set "Output Positive L=1" --set "Smoothing L=500" \
    --set "Output Symmetric R=-0.5" --out in.wav || exit 1

oscdump -L "$PORT" > dump.log 2>&1 &
DUMPER=$!
sleep 0.5
"$CORVANE" render cvtoosc --realtime --in in.wav --set "Enable L=1" --set "Max Rate L=10" --set "Enable R=1" \
    --property "64110=osc.udp://127.0.0.1:$PORT" --property 64111=/cv/left --property 64112=/cv/right \
    --out out.wav > corvane.out 2> corvane.err
echo "status $?"
sleep 0.3
kill "$DUMPER"
wait "$DUMPER" 2> /dev/null
echo "-- dump"
cut -d' ' -f2- dump.log
echo "-- err"
cat corvane.err
