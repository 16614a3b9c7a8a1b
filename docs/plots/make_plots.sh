#!/usr/bin/env bash
# Draws the plots under docs/plots with the built command: the DC demo of the README's first command,
# and a Voice Controller's gate and envelopes for two notes.
# Usage: docs/plots/make_plots.sh [BUILD]
set -euo pipefail
HERE=$(cd "$(dirname "$0")" && pwd)
CORVANE=$(cd "${1:-$HERE/../../build}" && pwd)/host/corvane
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
"$CORVANE" render dc --set "Output Positive L=0.5" --set "Smoothing L=500" --seconds 1 --out "$WORK/dc-demo.wav" \
    --plot "$HERE/dc-demo.png" --plot-size 1000x420
"$CORVANE" render voicecontroller --seconds 2 --event 4800:903C64 --event 48000:803C00 --event 60000:904064 \
    --event 80000:804000 --out "$WORK/envelope.wav" --plot "$HERE/envelope.png"
