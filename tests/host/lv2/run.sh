#!/usr/bin/env bash
# Runs every LV2 host test on a build tree (default: build) and prints how long each took:
# lv2_validate, lv2file offline, jalv on JACK's dummy backend (CV To MIDI's MIDI output too), the editor
# UI in jalv.gtk3 under Xvfb, the UI opened and closed 12 times through suil (suil_ui_cycles.sh runs 100
# by hand), headless Ardour. Fails on the first failing script; each stops the servers
# and hosts it started.
set -euo pipefail
HERE=$(cd "$(dirname "$0")" && pwd)
BUILD=${1:-$HERE/../../../build}
passed=0
for test in validate offline jalv jalv_osc jalv_midi_out jalv_ui suil_ui_cycles ardour; do
    start=$(date +%s.%N)
    args=("$BUILD")
    [ "$test" = suil_ui_cycles ] && args+=(12)
    bash "$HERE/$test.sh" "${args[@]}"
    seconds=$(awk -v s="$start" -v e="$(date +%s.%N)" 'BEGIN { printf "%.1f", e - s }')
    echo "-- LV2 host test $test passed in $seconds s"
    passed=$((passed + 1))
done
echo "LV2 host tests passed: $passed of 8"
