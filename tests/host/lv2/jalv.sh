#!/usr/bin/env bash
# jalv on JACK's dummy backend (no sound card, a private server): every built module, given the settings,
# input signal and MIDI notes of the table below while JACK's transport rolls, records exactly what
# "corvane render" gives with the same settings, input, notes and transport, sample for sample from
# the first; MIDI from jack_midiseq lands on its exact samples;
# JACK's transport (tempo, position, play and stop) reaches the module; a JACK period of 2048 frames,
# longer than the module's default 1024, works.
source "$(dirname "$0")/common.sh"

# Synchronous mode: each cycle waits for every client (up to 10 s) instead of going on without one
# that is late, so a loaded machine gives slow cycles rather than lost samples or positions.
start_jack() {  # PERIOD
    background jackd --no-realtime --sync --timeout 10000 -n "$JACK_DEFAULT_SERVER" -d dummy -r 48000 -p "$1" > "$WORK/jackd-$1.log" 2>&1
    jack_wait -w -t 10 > /dev/null 2>&1 || fail "jackd did not start (period $1)"
}
start_jalv() {  # NAME URI [jalv options]
    local name=$1 uri=$2
    shift 2
    background jalv -i -x -n "$name" "$@" "$uri" > "$WORK/jalv-$name.log" 2>&1
}
capture() {  # OUT FRAMES [--roll] PORT...
    local out=$1 frames=$2
    shift 2
    "$TOOL" capture --name "capture_$(basename "$out" .wav)" --out "$out" --frames "$frames" "$@" \
        || fail "capture of $* failed"
}
wait_port() {
    for _ in $(seq 200); do
        jack_lsp 2> /dev/null | grep -qx "$1" && return 0
        sleep 0.05
    done
    fail "JACK port $1 did not appear"
}
# jalv registers its ports before it starts processing: wait for the ports, then give it a second.
settle() {  # PORT...
    local port
    for port in "$@"; do wait_port "$port"; done
    sleep 1
}
outputs_of() {  # NAME COUNT: NAME:out_1 ... NAME:out_COUNT
    local k
    for ((k = 1; k <= $2; k++)); do printf '%s:out_%d ' "$1" "$k"; done
}

# Per module: settings, an input signal (the "corvane_host_tool signal" sines) or none, and MIDI events
# at frames from the start of playing, chosen so that every output channel moves. All are played in
# the first second of JACK's transport rolling at 90 BPM from 0, and the render gets the same: the
# input file, the events (--event), the transport (--tempo 90, playing from 0) and blocks of 256.
JALV_TABLE='
# stem          | input  | MIDI events (FRAME:HEXBYTES ...)                                        | settings
# A carrier on both channels, R unipolar
acencoder       | signal | -                                                                       | Enable L=1, Enable R=1, Input Polarity R=1
# A note channel on output 3, a gate group with a 20 ms trigger, MIDI out of all channels and the clock
# as a serial line on gate 4/1, a level input on byte 3
ardentcontroller | signal | 1000:903C64 8000:913064 20000:803C00 30000:813000                     | MIDI Out MIDI Channel=17, MIDI Out Clock=1, MIDI Out Output=24, Gates 1 MIDI Channel=2, Trigger 1/1 Length=20, Input 3=3, Input Thru=0
# Gate group 4 on byte 4, MIDI out and the clock with song position on gate 6/1, thru "3/4"
basaltcontroller | signal | 1000:903C64 8000:903E64 20000:803C00 30000:803E00                     | MIDI Out MIDI Channel=17, MIDI Out Clock=1, Use MIDI SPP=1, MIDI Out Output=40, Gates 4 MIDI Channel=1, Gates 4 Base Note=60, Input Thru=2
# A Cinder lane on byte 1 with offsets and a filter, thru "1/2"
cindercombiner  | signal | -                                                                       | Filter 2=1, Offset 1=-1
# Rectifying decoders with a one-pole on L and a slew limit on R. (The Elkhorn loop and the carriers
# run on through the cycles before recording, so where they stand when it starts differs from a fresh render.)
cvinput         | signal | -                                                                       | Scale L=2, Smoothing L=-3, Scale R=-1.5, Smoothing R=2
# The audio passes through (the MIDI it makes leaves through its own device, none here)
cvtomidi        | signal | -                                                                       | Enable CC L=1, Enable Note R=1
# The audio passes through (its values would leave as OSC, with the channels off none do)
cvtoosc         | signal | -                                                                       | Threshold L=0.5
dc              | signal | -                                                                       | Output Positive L=0.3, Multiplier L=-1.5, Input Add L=1, Output Symmetric R=-0.45, Multiplier R=1.5, Input Multiply R=0.5
# The Dunmore stream cannot be compared here: its cycle of 24 samples does not divide a JACK period,
# and jalv runs it for an unknown time before recording. So its lane is "Target Channel" "6" of an
# "Ardent" frame, which is no lane: only the thru pair "1/2" goes out (the offline test compares the
# stream itself)
dunmorecombiner | signal | -                                                                       | Target Channel=6, Filter 1=1
# The audio passes through; the notifications it would send are off
learner         | signal | -                                                                       | -
Function        | signal | -                                                                       | Enable L=1, Function L=1, Input Scale L=1.5, Output Offset L=0.1, Enable R=1, Function R=3, Input Offset R=-0.2
# The pitch of the input sines on both outputs (see COMPARE_FROM below)
follower        | signal | -                                                                       | Output Pitch R=-0.5, Output Env R=0
# Both channels locked to the transport (a beat and half a beat); the input multiplies R
lfo             | signal | -                                                                       | Sync L=2, Beats L=1, Sine L=1, Triangle L=-0.3, Sync R=2, Beats R=2, Beat Divisor R=3, Saw R=0.5, Square R=0.3, Input Mode R=1
# Even steps of the input: L offset by a quarter step, R transposed (no smoothing: jalv runs before it records)
quantizer       | signal | -                                                                       | Enable L=1, Steps L=8, Offset L=25, Enable R=1, Steps R=24, Transpose R=3
# Inputs 2 and 1 woven into output 1, 3 and 4 into output 2
smux            | signal | -                                                                       | Flip L=1
# No touch arrives: only the offsets reach the outputs
soundplane      | -      | -                                                                       | Output 1 Offset=0.5, Output 3 Offset=-0.25, Output 6 Offset=0.75
# Steps on the transport (by default), R interpolated, inputs 1 and 4 added
steplfo         | signal | -                                                                       | Step 1 L=0.5, Step 2 L=-0.25, Step 5 L=1, Step 6 L=-0.75, Step 2 R=0.8, Step 4 R=-0.6, Interpolation R=1, Signal Input R=4
# A 24 PPQN clock from the transport, a run pulse at its start
sync            | -      | -                                                                       | DINsync Type=1, Clock High=0.8, Run Low=-0.5, Run Signal Type=2
# Envelopes of note 60 at three velocities; note 61 is not the trigger note
trigger         | -      | 1000:903C64 12000:803C40 20000:903C30 30000:803C00 36000:903D7F 38000:903C7F | Output Mode=2, Env 1 Sustain=0.6, Env 1 Velocity Depth=0.5
# Newest-note priority over two notes, then a third; gate, three envelopes, velocity and trigger routed out
voicecontroller | -      | 1000:903C64 8000:904340 16000:804300 24000:803C00 32000:90477F 40000:804700 | Output 1 Gate=0.25, Output 3 Env1=1, Output 4 Env2=0.5, Env 2 Time A2=0.3, Output 5 Env3=-1, Env 3 Time A3=0.05, Output 6 Velocity=1, Output 6 Trigger=0.5
'
read_table <<< "$JALV_TABLE"
PLAYED=48000
# Frames left out of the comparison, per module. The Follower measures its silent input every 2047
# frames until a sound comes, so the frames jalv ran before the transport rolled shift its first
# measurements; from the second rising crossing of the input on it is locked to the crossings and
# must match sample for sample (its envelope would only converge, so the row leaves it out).
declare -A COMPARE_FROM=([follower]=4096)
# Modules whose outputs nothing jalv sends can move, compared as steady values: Soundplane follows
# touches that arrive only over OSC.
declare -A STEADY=([soundplane]=1)

DC_SETTINGS=(-c output_positive_l=0.3 -c multiplier_l=-1.5 -c output_symmetric_r=-0.45 -c multiplier_r=1.5)
DC_RENDER=(--set "Output Positive L=0.3" --set "Multiplier L=-1.5" --set "Output Symmetric R=-0.45" --set "Multiplier R=1.5")

wait_line() {  # FILE TEXT
    for _ in $(seq 200); do grep -q "$2" "$1" && return 0; sleep 0.05; done
    fail "\"$2\" did not appear in $1"
}

step "JACK dummy backend, period 256; transport master at 90 BPM, stopped at 0"
start_jack 256
# Every jalv below starts with the transport stopped at frame 0 and JACK's tempo 90 BPM: jalv tells
# its plug-in so, and the renders below use the same (--stopped --tempo 90).
background "$TOOL" transport --tempo 90 --roll 2 > "$WORK/transport.log" 2>&1
TRANSPORT=${BACKGROUND[-1]}
wait_line "$WORK/transport.log" ready
while IFS=$'\t' read -r stem inputs outputs; do
    settings_to_args "$stem" "$(field "${TABLE_ROWS[$stem]}" 3)"
    start_jalv "$stem" "urn:brelmont:corvane:$stem" "${JALV_SET[@]}"
done < <(built_modules)
start_jalv dcset urn:brelmont:corvane:dc "${DC_SETTINGS[@]}"
start_jalv probe "$PROBE_URI" -c level=0.5
# A loop of 4801 frames: note 60 on at frame 0 for 1234 frames.
background jack_midiseq seq 4801 0 60 1234 > "$WORK/midiseq.log" 2>&1
settle $(built_modules | cut -f1 | sed 's/$/:out_1/') dcset:out_1 probe:out_1 seq:out
# jalv tells its plug-in of JACK's transport only when it changes, and on a loaded machine may run
# cycles before it starts processing, whose news it drops: the transport master now moves the tempo
# and back, which every jalv, processing by now, passes on.
kill -USR2 "$TRANSPORT"
wait_line "$WORK/transport.log" announced

step "dc with settings from jalv -c against corvane render"
capture "$WORK/dcset.wav" 24000 dcset:out_1 dcset:out_2
render dc --seconds 1 --stopped --tempo 90 "${DC_RENDER[@]}" --out "$WORK/dcset-ref.wav"
"$TOOL" compare "$WORK/dcset.wav" "$WORK/dcset-ref.wav" || fail "dc with settings differs"

step "MIDI from jack_midiseq lands on its samples"
jack_connect seq:out probe:midi_in
sleep 0.2
capture "$WORK/midi.wav" 48000 probe:out_1 probe:out_2 probe:out_3 probe:out_4
# Gates exactly 4801 frames apart and 1234 high: any rounding to a block of 256 would break both.
"$TOOL" expect-gate "$WORK/midi.wav" 1 --period 4801 --width 1234 --level 0.5 --min-edges 9 || fail "MIDI timing"
# The transport the renders above assume: stopped at position 0, 90 BPM.
"$TOOL" expect-constant "$WORK/midi.wav" 2 0 || fail "the position before rolling is not 0"
"$TOOL" expect-constant "$WORK/midi.wav" 3 0.09 || fail "the tempo before rolling is not 90"
"$TOOL" expect-constant "$WORK/midi.wav" 4 0 || fail "the transport is not stopped before rolling"

step "every module: settings, input and MIDI of its row played from the transport's start"
declare -A DRIVE=()
while IFS=$'\t' read -r stem inputs outputs; do
    row=${TABLE_ROWS[$stem]}
    # The MIDI port is connected even without events: it puts the player before the plug-in.
    play=(--midi-to "$stem:midi_in")
    if [ "$(field "$row" 1)" = signal ]; then
        "$TOOL" signal "$WORK/in-$stem.wav" "$inputs" $PLAYED
        play+=(--in "$WORK/in-$stem.wav")
        while read -r port; do play+=(--to "$stem:$port"); done < <(input_ports "urn:brelmont:corvane:$stem")
    fi
    events=$(field "$row" 2)
    if [ "$events" != - ]; then for e in $events; do play+=(--event "$e"); done; fi
    # shellcheck disable=SC2046
    background "$TOOL" drive --name "drive_$stem" --roll --out "$WORK/$stem.wav" --frames $PLAYED "${play[@]}" \
        $(outputs_of "$stem" "$outputs") > "$WORK/drive-$stem.log" 2>&1
    DRIVE[$stem]=${BACKGROUND[-1]}
done < <(built_modules)
for stem in "${!DRIVE[@]}"; do wait_line "$WORK/drive-$stem.log" armed; done

step "JACK transport rolls from 0 at 90 BPM for 2 s, then stops"
kill -USR1 "$TRANSPORT"
capture "$WORK/transport.wav" 48000 --roll probe:out_2 probe:out_3 probe:out_4 | tee "$WORK/capture.log"
start=$(sed -n 's/.* from transport frame \([0-9]*\)$/\1/p' "$WORK/capture.log")
[ -n "$start" ] || fail "no transport frame in the capture's report"
phase=$(awk -v f="$start" 'BEGIN { q = f * 90 / 60 / 48000; printf "%.9f", q - int(q) }')
"$TOOL" expect-ramp "$WORK/transport.wav" 1 --step 3.125e-5 --start "$phase" --tolerance 2e-6 \
    || fail "the beat position does not follow JACK's transport"
"$TOOL" expect-constant "$WORK/transport.wav" 2 0.09 || fail "the tempo is not JACK's"
"$TOOL" expect-constant "$WORK/transport.wav" 3 1 || fail "the module does not see the transport rolling"
while IFS=$'\t' read -r stem inputs outputs; do
    step "$stem: recorded output against corvane render, from the first sample played"
    wait "${DRIVE[$stem]}" || { cat "$WORK/drive-$stem.log" >&2; fail "driving $stem in jalv failed"; }
    grep -qx "drove $PLAYED frames .* from transport frame 0" "$WORK/drive-$stem.log" \
        || { cat "$WORK/drive-$stem.log" >&2; fail "$stem was not played from the transport's start"; }
    row=${TABLE_ROWS[$stem]}
    settings_to_args "$stem" "$(field "$row" 3)"
    given=()
    if [ "$(field "$row" 1)" = signal ]; then given+=(--in "$WORK/in-$stem.wav"); fi
    events=$(field "$row" 2)
    if [ "$events" != - ]; then for e in $events; do given+=(--event "$e"); done; fi
    render "$stem" --block 256 --tempo 90 --frames $PLAYED "${given[@]}" "${RENDER_SET[@]}" --out "$WORK/$stem-ref.wav"
    if [ -z "${STEADY[$stem]:-}" ]; then
        "$TOOL" expect-varying "$WORK/$stem-ref.wav" || fail "$stem: the reference does not move"
    fi
    "$TOOL" compare "$WORK/$stem.wav" "$WORK/$stem-ref.wav" --from "${COMPARE_FROM[$stem]:-0}" \
        || fail "$stem in jalv differs from corvane render"
done < <(built_modules)

wait_line "$WORK/transport.log" stopped
sleep 0.2
capture "$WORK/stopped.wav" 4800 probe:out_2 probe:out_4
"$TOOL" expect-constant "$WORK/stopped.wav" 2 0 || fail "the module does not see the transport stop"
"$TOOL" expect-ramp "$WORK/stopped.wav" 1 --step 0 --tolerance 0 || fail "the position moves while stopped"
stop_all

step "JACK dummy backend, period 2048"
start_jack 2048
start_jalv probe "$PROBE_URI"
start_jalv dcset urn:brelmont:corvane:dc "${DC_SETTINGS[@]}"
settle probe:out_5 dcset:out_1
capture "$WORK/long.wav" 16384 probe:out_5
# jalv passes the period as bufsz:maxBlockLength: the module runs whole blocks of 2048.
"$TOOL" expect-constant "$WORK/long.wav" 1 0.25 || fail "the module did not get blocks of 2048"
capture "$WORK/dcset-long.wav" 24000 dcset:out_1 dcset:out_2
render dc --seconds 1 --block 2048 --stopped "${DC_RENDER[@]}" --out "$WORK/dcset-long-ref.wav"
"$TOOL" compare "$WORK/dcset-long.wav" "$WORK/dcset-long-ref.wav" || fail "dc in blocks of 2048 differs"
stop_all
echo "jalv: all checks passed"
