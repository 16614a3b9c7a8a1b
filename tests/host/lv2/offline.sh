#!/usr/bin/env bash
# lv2file renders every built module offline from a file, with the settings and in the host blocks of
# the table below (mostly 4096 and 16384 frames, longer than the module's 1024 and than the most it is
# given, 8192): the samples must be those of "corvane render" with the same settings. The probe shows how
# long the module's blocks were.
source "$(dirname "$0")/common.sh"

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

# Settings per module under which its output moves, given the input file (each channel a different
# sine, see "corvane_host_tool signal"). lv2file sends no MIDI and no transport, so what needs notes or
# a rolling transport is left to jalv.sh. "varies": every channel of the reference must hold several
# values, so the comparison cannot pass on a constant; "steady": nothing lv2file can send moves it.
# Blocks longer than the module's 1024 (up to 8192 it takes them whole, past that they are cut) are
# the usual host block sizes to compare in.
OFFLINE_TABLE='
# stem          | check  | lv2file blocks | settings ("Name=Value, ...", as "corvane params STEM" names them)
# A carrier on both channels, R unipolar between two levels
acencoder       | varies | 4096 16384     | Enable L=1, Enable R=1, Input Polarity R=1, Min Output Level R=0.1, Max Output Level R=0.9
# Level inputs on bytes 1 and 3, an input on a gate, thru "1/2" OR-ed into both words, "Cat B": the
# words must come through the host untouched
ardentcontroller | varies | 4096 16384    | Input 1=1, Input 3=3, Input Mode 3=1, Input 2 To Gate=9, Output 4=17, Interface Category=1
# Thru "3/4" lands on the gates of all six bytes; inputs set gates 1/1 and 4/6
basaltcontroller | varies | 4096 16384    | Input Thru=2, Input 1 To Gate=1, Input 4 To Gate=30, Output 5=99
# Four inputs as a Cinder lane on byte 1, one filtered, with "SMUX Proof"; thru "1/2" moves both words
cindercombiner  | varies | 4096 16384     | Filter 1=1, Offset 2=0.5, SMUX Proof=1
# The Elkhorn decoder on L (a sine it cannot lock to still moves it), a synchronous decoder on R
cvinput         | varies | 4096 16384     | Mode L=2, Mode R=0, Bipolar R=1, Scale R=-1.5, Smoothing R=2
# The audio passes through (the MIDI it makes leaves through its own device, none here)
cvtomidi        | varies | 4096 16384     | Enable CC L=1, Enable Note R=1
# The audio passes through (its values would leave as OSC, with the channels off none do)
cvtoosc         | varies | 4096 16384     | Threshold L=0.5, Max Rate R=10
dc              | varies | 4096 16384     | Output Positive L=0.25, Multiplier L=-1.5, Input Add L=0.5, Output Symmetric R=-0.75, Input Multiply R=0.5, Smoothing R=-20, Smoothing L=5
Function        | varies | 4096 16384     | Enable L=1, Function L=1, Input Scale L=1.5, Output Offset L=0.1, Enable R=1, Function R=3, Input Offset R=-0.2
# Eight inputs (inputs 9 and 10 silent) as a Dunmore lane on "Basalt" byte 1, adaptive, two filtered.
# The adaptive mode sends every channel during the first two slices of the module, so its stream depends
# on where the first blocks are cut: like corvane render, the host cuts at 1024 (or at 256).
dunmorecombiner | varies | 256 1024       | Target Hardware=1, Filter 2=1, Filter 5=1, Input 7=1
# The input sines followed: stepped pitch plus half the envelope on L, the envelope on R
follower        | varies | 4096 16384     | Output Env L=0.5, Env Attack=5, Env Release=20
# The audio passes through ("Send OSC" stays "Off": no notification leaves the test)
learner         | varies | 4096 16384     | -
# Free-running waves; the input multiplies R
lfo             | varies | 4096 16384     | Speed L=3, Sine L=1, Triangle L=-0.3, Speed R=7, Square R=0.4, Pulse Width R=30, Saw R=0.5, Input Mode R=1
# Even steps: L offset by a quarter step and slewed, R transposed and smoothed
quantizer       | varies | 4096 16384     | Enable L=1, Steps L=8, Offset L=25, Smoothing L=2, Enable R=1, Steps R=24, Transpose R=3, Smoothing R=-1
# Inputs 1 and 2 woven into output 1, 4 and 3 into output 2
smux            | varies | 4096 16384     | Flip R=1
# Free-running steps, R interpolated, with input 3 added
# No touch arrives: the offsets, and output 2 slewing from 0 to its offset
soundplane      | steady | 4096 16384     | Output 1 Offset=0.5, Output 2 Offset=-0.25, Output 2 Smoothing=20, Output 6 Offset=0.75
steplfo         | varies | 4096 16384     | Sync L=0, Speed L=7, Step 1 L=0.5, Step 2 L=-0.25, Step 5 L=1, Step 9 L=-0.75, Sync R=0, Speed R=2, Interpolation R=1, Step 3 R=0.8, Step 10 R=-0.6, Signal Input R=3
# No transport, no clock: the inputs pass through onto the clock and run levels
sync            | varies | 4096 16384     | Clock Low=0.25, Run Low=-0.5
# Rising edges of the input through 0.3 start short envelopes. The module acts on an edge at the
# start of the pass that renders up to it, so its output depends on where blocks are cut: corvane
# render cuts at 1024, and so must the host. (The input is a whole number of blocks long: lv2file
# fills a short last block with silence, whose falling edge would act early in the same way.)
trigger         | varies | 256 1024       | CV Trigger Enable=1, CV Trigger Threshold=0.3, Output Mode=2, Env 1 Time A2=0.002, Env 1 Time A3=0.001, Env 1 Time R1=0.003
# Without notes only the overrides and offsets reach the outputs
voicecontroller | steady | 4096 16384     | Override Gate=1, Gate=0.7, Output 2 Offset=-0.2, Output 6 Offset=0.3
'
read_table <<< "$OFFLINE_TABLE"

while IFS=$'\t' read -r stem inputs outputs; do
    row=${TABLE_ROWS[$stem]}
    check=$(field "$row" 1)
    blocks=$(field "$row" 2)
    settings_to_args "$stem" "$(field "$row" 3)"
    step "$stem: lv2file in blocks of ${blocks// / and } against corvane render ($check)"
    "$TOOL" signal "$WORK/in-$stem.wav" "$inputs" 49152
    for block in $blocks; do
        run_lv2file "urn:brelmont:corvane:$stem" "$WORK/in-$stem.wav" "$WORK/$stem-$block.wav" $block "${LV2FILE_SET[@]}"
        render "$stem" --in "$WORK/in-$stem.wav" --block $block --no-transport "${RENDER_SET[@]}" --out "$WORK/$stem-$block-ref.wav"
        case $check in
            varies) "$TOOL" expect-varying "$WORK/$stem-$block-ref.wav" --min-distinct 3 || fail "$stem: the reference does not move" ;;
            steady) ;;
            *) fail "$stem: unknown check \"$check\"" ;;
        esac
        "$TOOL" compare "$WORK/$stem-$block.wav" "$WORK/$stem-$block-ref.wav" || fail "$stem differs in blocks of $block"
    done
done < <(built_modules)

step "probe: module blocks follow bufsz:maxBlockLength up to 8192, longer host blocks are cut"
"$TOOL" signal "$WORK/in4.wav" 4 40000
run_lv2file "$PROBE_URI" "$WORK/in4.wav" "$WORK/probe-4096.wav" 4096
"$TOOL" expect-constant "$WORK/probe-4096.wav" 5 0.5 --to 36864  # 4096 / 8192, up to the last, shorter block
run_lv2file "$PROBE_URI" "$WORK/in4.wav" "$WORK/probe-16384.wav" 16384
"$TOOL" expect-constant "$WORK/probe-16384.wav" 5 1 --to 32768  # cut at 8192
"$TOOL" expect-constant "$WORK/probe-16384.wav" 4 -1  # lv2file sends no time:Position: no transport
echo "offline: all checks passed"
