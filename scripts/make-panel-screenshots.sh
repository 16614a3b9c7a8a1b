#!/bin/bash
# Draws every built module's panel off screen into docs/panels/<stem>.png with the corvane screenshot
# command (a private Xvfb each). The editor tests compare their own pictures with these.
# Usage: scripts/make-panel-screenshots.sh [BUILD_DIR]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
corvane="$build/host/corvane"
mkdir -p docs/panels
"$corvane" list | cut -f2 | while read -r stem; do
    # The DC picture shows two knobs away from their defaults, as the tests set them.
    extra=()
    if [ "$stem" = dc ]; then
        extra=(--set "Output Positive L=0.25" --set "Multiplier R=-2")
    fi
    "$corvane" screenshot "$stem" --out "docs/panels/$stem.png" "${extra[@]}"
    echo "docs/panels/$stem.png"
done
