#!/bin/bash
# Where the time of a block goes, by instruction counts (callgrind), which a loaded machine does not
# disturb: per module, instructions per frame at blocks of 32 and 1024, the instructions a block costs
# beyond its frames, and the functions that take most of a block of 32.
# Usage: bench/profile.sh [BUILD_DIR] [STEM...]
set -euo pipefail
build=${1:-build}
shift || true
corvane="$build/host/corvane"
stems=("$@")
[ ${#stems[@]} -eq 0 ] && stems=(dc Function lfo steplfo sync trigger voicecontroller)
seconds=1
frames=48000
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT

instructions() {  # stem block -> instructions inside RunBench
    valgrind --tool=callgrind --toggle-collect='BR::RunBench*' --callgrind-out-file="$out/$1.$2" \
        "$corvane" bench --seconds "$seconds" --block "$2" --module "$1" >/dev/null 2>&1
    callgrind_annotate "$out/$1.$2" 2>/dev/null | awk '/PROGRAM TOTALS/ {gsub(",", "", $1); print $1}'
}

printf "%-16s %12s %12s %16s\n" module "Ir/frame@32" "Ir/frame@1024" "Ir/block beyond"
for stem in "${stems[@]}"; do
    a=$(instructions "$stem" 32)
    b=$(instructions "$stem" 1024)
    awk -v s="$stem" -v a="$a" -v b="$b" -v f="$frames" 'BEGIN {
        pa = a / f; pb = b / f;
        # Ir(frames) = frames * perFrame + blocks * perBlock, at two block sizes.
        perBlock = (a - b) / (f / 32 - f / 1024);
        printf "%-16s %12.1f %12.1f %16.0f\n", s, pa, pb, perBlock }'
done
echo
for stem in "${stems[@]}"; do
    echo "== $stem, block 32: functions by inclusive instructions per block (1500 blocks)"
    callgrind_annotate --inclusive=yes "$out/$stem.32" 2>/dev/null |
        awk '/^ *[0-9,]+ +\(/ && /Brel|BR::/ { n = $1; gsub(",", "", n); line = $0;
             sub(/^ *[0-9,]+ +\([^)]*\) +/, "", line); sub(/ \[.*$/, "", line);
             sub(/^[^ ]*\.(cpp|h):/, "", line); gsub(/\(.*$/, "", line);
             if (n / 1500 >= 20) printf "  %8.0f  %s\n", n / 1500, line }' | awk '!seen[$2]++' | head -12
done
