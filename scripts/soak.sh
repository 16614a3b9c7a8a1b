#!/usr/bin/env bash
# The long soak: every module in one busy patch (see tests/soak/Soak.cpp) for FRAMES frames (default
# 100,000,000) with random MIDI, parameter changes, OSC traffic and transport jumps. Prints its figures
# (frames, events, parameter changes, peak memory, time) and keeps them in build/soak.log; fails when
# an output is not finite, a queue overflows, memory grows, or a saved state does not restore.
# CI runs a short one as the test "soak_short".
#
# Usage: scripts/soak.sh [FRAMES] [SEED]
set -euo pipefail
cd "$(dirname "$0")/.."
frames="${1:-100000000}"
seed="${2:-1}"
if [ ! -f build/build.ninja ]; then
    cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
cmake --build build --target corvane_soak
build/tests/corvane_soak --frames "$frames" --seed "$seed" | tee build/soak.log
