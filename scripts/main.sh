#!/usr/bin/env bash
# Sets up, builds, installs the manual page, and renders the DC demo (one second of a 500 ms slew to
# half scale) with its plot.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCORVANE_WERROR=ON
cmake --build build --target corvane
cmake --build build --target corvane_lv2_bundle
bash scripts/install-lv2.sh --build build
mkdir -p out
man1="${XDG_DATA_HOME:-$HOME/.local/share}/man/man1"
mkdir -p "$man1"
install -m 644 docs/corvane.1 "$man1/corvane.1"
echo "manual page installed as $man1/corvane.1 (man corvane, or man -l docs/corvane.1)"
./build/host/corvane render dc --set "Output Positive L=0.5" --set "Smoothing L=500" --seconds 1 --out out/dc-demo.wav \
    --plot out/dc-demo.png
echo "DC demo written to $(pwd)/out/dc-demo.wav (48 kHz, 32-bit float, 2 channels), its plot to out/dc-demo.png"
