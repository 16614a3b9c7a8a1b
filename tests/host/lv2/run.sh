#!/usr/bin/env bash
# Runs every LV2 host test on a build tree (default: build) and prints how long each took:
# lv2_validate, lv2file offline, jalv on JACK's dummy backend (CV To MIDI's MIDI output too), headless
# Ardour. Fails on the first failing script; each stops the servers and hosts it started.
set -euo pipefail
HERE=$(cd "$(dirname "$0")" && pwd)
BUILD=${1:-$HERE/../../../build}
passed=0
for test in validate offline jalv jalv_osc jalv_midi_out ardour; do
    start=$(date +%s.%N)
    bash "$HERE/$test.sh" "$BUILD"
    seconds=$(awk -v s="$start" -v e="$(date +%s.%N)" 'BEGIN { printf "%.1f", e - s }')
    echo "-- LV2 host test $test passed in $seconds s"
    passed=$((passed + 1))
done
echo "LV2 host tests passed: $passed of 6"
