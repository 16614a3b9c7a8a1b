#!/usr/bin/env bash
# Builds the fuzz targets in their own tree (clang's libFuzzer with AddressSanitizer and
# UndefinedBehaviorSanitizer) and runs each for SECONDS (default 60) on its committed seeds, the inputs
# of crashes found and fixed before (tests/fuzz/regressions, run first) and the corpus it has grown. Any crash, leak, hang (25 s) or undefined behaviour fails the run; the
# input that caused it lands in build-fuzz/fuzz-artifacts/. Figures per target: build-fuzz/fuzz-logs/.
#
# Usage: scripts/fuzz.sh [SECONDS] [TARGET...]      targets: the folders of tests/fuzz/seeds
# CORVANE_FUZZ_RUNS=N also ends each target after N inputs, whichever comes first.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-60}"
shift || true
tree="${CORVANE_FUZZ_TREE:-build-fuzz}"

if [ ! -f "$tree/build.ninja" ]; then
    launcher=()
    if command -v ccache > /dev/null; then
        launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
    fi
    cmake -S . -B "$tree" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCORVANE_FUZZ=ON -DCORVANE_WERROR=ON \
        -DCMAKE_CXX_COMPILER=clang++-14 -DCMAKE_C_COMPILER=clang-14 "${launcher[@]}"
fi
cmake --build "$tree" --target fuzz_targets

if [ "$#" -gt 0 ]; then
    targets=("$@")
else
    targets=()
    for folder in tests/fuzz/seeds/*/; do
        targets+=("$(basename "$folder")")
    done
fi

limit=()
[ -n "${CORVANE_FUZZ_RUNS:-}" ] && limit=(-runs="$CORVANE_FUZZ_RUNS")
mkdir -p "$tree/fuzz-logs" "$tree/fuzz-artifacts"
failed=()
printf '%-18s %10s %8s %8s %8s\n' target inputs cov ft corpus
for target in "${targets[@]}"; do
    corpus="$tree/fuzz-corpus/$target"
    log="$tree/fuzz-logs/$target.log"
    mkdir -p "$corpus"
    sources=("$corpus" "tests/fuzz/seeds/$target")
    [ -d "tests/fuzz/regressions/$target" ] && sources+=("tests/fuzz/regressions/$target")
    status=0
    # Standard input closed: nothing an input reaches may wait for a terminal.
    "$tree/tests/fuzz/fuzz_$target" -max_total_time="$seconds" -timeout=25 -rss_limit_mb=4096 \
        -print_final_stats=1 -artifact_prefix="$tree/fuzz-artifacts/$target-" \
        "${limit[@]}" "${sources[@]}" < /dev/null > "$log" 2>&1 || status=$?
    inputs="$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)"
    last="$(grep -E '^#[0-9]+' "$log" | tail -1 || true)"
    cov="$(sed -n 's/.* cov: \([0-9]*\).*/\1/p' <<< "$last")"
    ft="$(sed -n 's/.* ft: \([0-9]*\).*/\1/p' <<< "$last")"
    printf '%-18s %10s %8s %8s %8s\n' "$target" "${inputs:-?}" "${cov:-?}" "${ft:-?}" "$(ls "$corpus" | wc -l)"
    if [ "$status" -ne 0 ]; then
        failed+=("$target")
        grep -E 'ERROR|SUMMARY|runtime error|Test unit written' "$log" | head -20 >&2 || tail -20 "$log" >&2
    fi
done
if [ "${#failed[@]}" -gt 0 ]; then
    echo "fuzz: failed: ${failed[*]} (logs in $tree/fuzz-logs)" >&2
    exit 1
fi
