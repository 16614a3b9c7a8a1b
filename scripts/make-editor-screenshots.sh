#!/bin/bash
# Draws the pictures of docs/editor/ that show the module displays and the step editors at work:
# the Trigger's panel with two envelopes (corvane screenshot, after half a second of rendering), and
# the pictures the editor tests draw and check themselves: the envelope display for two sustain
# levels, the LFO's waveform display with each of its six waves, and the Step LFO's panel after a
# synthetic drag from step 3 to step 7.
# Usage: scripts/make-editor-screenshots.sh [BUILD_DIR]
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(realpath "${1:-build}")
corvane="$build/host/corvane"
mkdir -p docs/editor
times=(--set "Env 1 Time A1=0.1" --set "Env 1 Time A2=0.1" --set "Env 1 Time A3=0.1"
    --set "Env 1 Time R1=0.1" --set "Env 1 Time R2=0.1")
"$corvane" screenshot trigger --seconds 0.5 "${times[@]}" --set "Env 1 Sustain=0.25" \
    --out docs/editor/trigger-panel-sustain-low.png
"$corvane" screenshot trigger --seconds 0.5 "${times[@]}" --set "Env 1 Sustain=0.75" \
    --set "Env 1 Shape A2=0.1" --set "Env 1 Type R1=0" --out docs/editor/trigger-panel-sustain-high.png
echo docs/editor/trigger-panel-sustain-low.png docs/editor/trigger-panel-sustain-high.png
# The tests write beside themselves too: run them in a scratch folder.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
(cd "$scratch" && CORVANE_UPDATE_SCREENSHOTS=1 CORVANE_SOURCE_DIR="$OLDPWD" "$build/tests/editor_tests" \
    --gtest_filter='WindowTriggerEnvelopeDisplay.*:WindowLfoWaveform.*:WindowStepLfoDrag.*' --gtest_brief=1)
ls docs/editor/trigger-envelope-sustain-*.png docs/editor/lfo-six-waves.png docs/editor/steplfo-drag-steps-3-to-7.png
