#!/usr/bin/env bash
# Runs each plug-in of the built corvane.lv2 through lv2bench beside reference plug-ins of other
# Debian packages doing similar per-sample work, in the same run, and prints the ratios:
#   mda Image (mda-lv2): a stereo 2x2 matrix per sample, like DC's scale-and-offset per channel
#   eg-amp (lv2-examples): a mono gain per sample
# Each figure is the best of several alternating rounds, so that both sides meet the same machine.
#   bench/lv2bench.sh [BUILD_FOLDER] [--block N] [--frames N] [--rounds N]
set -euo pipefail
cd "$(dirname "$0")/.."

build=build block=256 frames=4800000 rounds=5
while [ $# -gt 0 ]; do
    case "$1" in
        --block) block=$2; shift 2 ;;
        --frames) frames=$2; shift 2 ;;
        --rounds) rounds=$2; shift 2 ;;
        -*) echo "lv2bench.sh: unknown option $1" >&2; exit 2 ;;
        *) build=$1; shift ;;
    esac
done
bundle=$build/host/lv2/corvane.lv2
[ -f "$bundle/corvane.so" ] || { echo "lv2bench.sh: build $bundle first (cmake --build $build)" >&2; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/lv2"
ln -s "$(cd "$bundle" && pwd)" "$work/lv2/corvane.lv2"
export LV2_PATH="$work/lv2:/usr/lib/lv2"
references=(http://drobilla.net/plugins/mda/Image http://lv2plug.in/plugins/eg-amp)

# Seconds lv2bench takes for all frames of one plug-in (silent input, no MIDI).
seconds() {
    local out
    out=$(lv2bench -b "$block" -n "$frames" "$1" 2> /dev/null | awk -v uri="$1" '$2 == uri { print $1 }')
    [ -n "$out" ] || { echo "lv2bench.sh: lv2bench gave no figure for $1" >&2; exit 1; }
    echo "$out"
}
best() {  # URI -> least seconds over the rounds; every round runs all plug-ins in turn
    sort -g "$work/$(echo "$1" | tr -c 'a-zA-Z0-9\n' _)" | head -1
}

plugins=()
while IFS=$'\t' read -r _ stem _; do plugins+=("urn:brelmont:corvane:$stem"); done < <("$build/host/corvane" list)
for ((r = 0; r < rounds; r++)); do
    for uri in "${plugins[@]}" "${references[@]}"; do
        seconds "$uri" >> "$work/$(echo "$uri" | tr -c 'a-zA-Z0-9\n' _)"
    done
done

printf 'lv2bench, %s frames in blocks of %s, best of %s rounds\n' "$frames" "$block" "$rounds"
printf '%-36s %10s %14s %14s\n' plug-in seconds "x mda Image" "x eg-amp"
image=$(best "${references[0]}")
amp=$(best "${references[1]}")
for uri in "${plugins[@]}" "${references[@]}"; do
    s=$(best "$uri")
    awk -v u="$uri" -v s="$s" -v i="$image" -v a="$amp" 'BEGIN { printf "%-36s %10.6f %14.2f %14.2f\n", u, s, s / i, s / a }'
done
