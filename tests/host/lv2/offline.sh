#!/usr/bin/env bash
# lv2file renders every built module offline from a file, in host blocks of 4096 and 16384 frames
# (longer than the module's 1024 and than the most it is given, 8192): the samples must be those of
# "corvane render" with the same settings. The probe shows how long the module's blocks were.
source "$(dirname "$0")/common.sh"

# Input port symbols of a plug-in, in port order, from lv2file's own listing.
input_ports() {
    lv2file -n "$1" 2> /dev/null | awk '/^==Audio Ports==/ { on = 1; next } /^==/ { on = 0 } on && NF { sub(":.*", ""); print }'
}
# lv2file with channel k of the input file on the k-th audio input.
run_lv2file() {  # URI IN OUT BLOCK [lv2file options...]
    local uri=$1 in=$2 out=$3 block=$4 k=0 port
    shift 4
    local connect=()
    while read -r port; do
        k=$((k + 1))
        connect+=(-c "$k:$port")
    done < <(input_ports "$uri")
    lv2file -i "$in" -o "$out" -b "$block" --ignore-clipping "${connect[@]}" "$@" "$uri" > "$WORK/lv2file.log" 2>&1 \
        || { cat "$WORK/lv2file.log" >&2; fail "lv2file failed on $uri"; }
}

while IFS=$'\t' read -r stem inputs outputs; do
    step "$stem: lv2file in blocks of 4096 and 16384 against corvane render"
    "$TOOL" signal "$WORK/in-$stem.wav" "$inputs" 48000
    for block in 4096 16384; do
        run_lv2file "urn:brelmont:corvane:$stem" "$WORK/in-$stem.wav" "$WORK/$stem-$block.wav" $block
        render "$stem" --in "$WORK/in-$stem.wav" --block $block --no-transport --out "$WORK/$stem-$block-ref.wav"
        "$TOOL" compare "$WORK/$stem-$block.wav" "$WORK/$stem-$block-ref.wav" || fail "$stem differs in blocks of $block"
    done
done < <(built_modules)

step "dc with settings: lv2file against corvane render"
"$TOOL" signal "$WORK/in2.wav" 2 48000
run_lv2file urn:brelmont:corvane:dc "$WORK/in2.wav" "$WORK/dc-set.wav" 4096 \
    -p output_positive_l:0.25 -p multiplier_l:-1.5 -p input_add_l:0.5 -p output_symmetric_r:-0.75 \
    -p input_multiply_r:0.5 -p smoothing_r:-20 -p smoothing_l:5
render dc --in "$WORK/in2.wav" --block 4096 --no-transport --set "Output Positive L=0.25" \
    --set "Multiplier L=-1.5" --set "Input Add L=0.5" --set "Output Symmetric R=-0.75" \
    --set "Input Multiply R=0.5" --set "Smoothing R=-20" --set "Smoothing L=5" --out "$WORK/dc-set-ref.wav"
"$TOOL" compare "$WORK/dc-set.wav" "$WORK/dc-set-ref.wav" || fail "dc with settings differs"

step "probe: module blocks follow bufsz:maxBlockLength up to 8192, longer host blocks are cut"
"$TOOL" signal "$WORK/in4.wav" 4 40000
run_lv2file "$PROBE_URI" "$WORK/in4.wav" "$WORK/probe-4096.wav" 4096
"$TOOL" expect-constant "$WORK/probe-4096.wav" 5 0.5 --to 36864  # 4096 / 8192, up to the last, shorter block
run_lv2file "$PROBE_URI" "$WORK/in4.wav" "$WORK/probe-16384.wav" 16384
"$TOOL" expect-constant "$WORK/probe-16384.wav" 5 1 --to 32768  # cut at 8192
"$TOOL" expect-constant "$WORK/probe-16384.wav" 4 -1  # lv2file sends no time:Position: no transport
echo "offline: all checks passed"
