#!/usr/bin/env bash
# Sets up, builds and runs every test: the normal build, then the unit tests again under
# AddressSanitizer and UndefinedBehaviorSanitizer; then every fuzz target for a bounded time, and the
# tests that run threads (with a short soak) under ThreadSanitizer, each in a tree that builds only
# what it runs.
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

# Each fuzz target for 20 seconds, after the inputs of every crash fixed before (see docs/reliability.md).
bash scripts/fuzz.sh 20

cmake -S . -B build-tsan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCORVANE_TSAN=ON -DCORVANE_WERROR=ON
cmake --build build-tsan --target thread_tests editor_thread_tests corvane_soak
(cd build-tsan && TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 suppressions=$PWD/../tests/tsan-suppressions.txt" \
    ctest --output-on-failure -j2)
