#!/usr/bin/env bash
# Makes docs/editor/enter-property-cvtoosc-target.png: CV To OSC's panel under Xvfb with "Enter
# Property" open on the target field and a new target typed, as the editor test that sets the target
# through the dialog sees it. Usage: docs/editor/enter-property-cvtoosc-target.sh [BUILD]
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/../.." && pwd)
BUILD=$(cd "${1:-$ROOT/build}" && pwd)
cmake --build "$BUILD" --target editor_tests
CORVANE_UPDATE_SCREENSHOTS=1 "$BUILD/tests/editor_tests" \
    --gtest_filter='WindowEnterPropertyCVToOSC.OkSetsTargetCancelLeavesIt'
echo "wrote $ROOT/docs/editor/enter-property-cvtoosc-target.png"
