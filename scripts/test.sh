#!/usr/bin/env bash
# Sets up, builds and runs every test: the normal build, then the unit tests again under
# AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/check-format.sh

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCORVANE_WERROR=ON
cmake --build build
(cd build && ctest --output-on-failure -j2)
bash tests/host/lv2/run.sh build
bash tests/host/cli/live_jack_session.sh build

cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCORVANE_SANITIZE=ON -DCORVANE_BENCH=OFF -DCORVANE_WERROR=ON
cmake --build build-asan
(cd build-asan && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 ctest --output-on-failure -j2)
