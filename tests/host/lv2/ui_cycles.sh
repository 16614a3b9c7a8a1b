#!/usr/bin/env bash
# The editor UI opened and closed 100 times (or $1 times) around one running plug-in, through the same
# descriptor a host uses: no thread left behind, no memory growth. The test program runs a shorter
# count in CI; this script runs the full one. Usage: ui_cycles.sh [BUILD] [COUNT]
set -euo pipefail
HERE=$(cd "$(dirname "$0")" && pwd)
BUILD=$(cd "${1:-$HERE/../../../build}" && pwd)
CORVANE_UI_CYCLES=${2:-100} "$BUILD/tests/host/lv2/lv2_tests" --gtest_filter='Lv2UiCycles.*'
