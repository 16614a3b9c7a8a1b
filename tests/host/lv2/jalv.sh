#!/usr/bin/env bash
# jalv on JACK's dummy backend (no sound card, a private server): every built module's recorded output
# equals "corvane render" with the same settings; MIDI from jack_midiseq lands on its exact samples;
# JACK's transport (tempo, position, play and stop) reaches the module; a JACK period of 2048 frames,
# longer than the module's default 1024, works.
source "$(dirname "$0")/common.sh"

start_jack() {  # PERIOD
    background jackd --no-realtime -n "$JACK_DEFAULT_SERVER" -d dummy -r 48000 -p "$1" > "$WORK/jackd-$1.log" 2>&1
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

DC_SETTINGS=(-c output_positive_l=0.3 -c multiplier_l=-1.5 -c output_symmetric_r=-0.45 -c multiplier_r=1.5)
DC_RENDER=(--set "Output Positive L=0.3" --set "Multiplier L=-1.5" --set "Output Symmetric R=-0.45" --set "Multiplier R=1.5")

wait_line() {  # FILE TEXT
    for _ in $(seq 200); do grep -q "$2" "$1" && return 0; sleep 0.05; done
    fail "\"$2\" did not appear in $1"
}

step "JACK dummy backend, period 256; transport master at 90 BPM, stopped at 0"
start_jack 256
# Every jalv below starts with the transport stopped at frame 0 and JACK's tempo 90 BPM: jalv tells
# its plug-in so in the first cycle, and the renders below use the same (--stopped --tempo 90).
background "$TOOL" transport --tempo 90 --roll 2 > "$WORK/transport.log" 2>&1
TRANSPORT=${BACKGROUND[-1]}
wait_line "$WORK/transport.log" ready
while IFS=$'\t' read -r stem inputs outputs; do
    start_jalv "$stem" "urn:brelmont:corvane:$stem"
done < <(built_modules)
start_jalv dcset urn:brelmont:corvane:dc "${DC_SETTINGS[@]}"
start_jalv probe "$PROBE_URI" -c level=0.5
# A loop of 4801 frames: note 60 on at frame 0 for 1234 frames.
background jack_midiseq seq 4801 0 60 1234 > "$WORK/midiseq.log" 2>&1
settle $(built_modules | cut -f1 | sed 's/$/:out_1/') dcset:out_1 probe:out_1 seq:out

while IFS=$'\t' read -r stem inputs outputs; do
    step "$stem: recorded output against corvane render (defaults)"
    # shellcheck disable=SC2046
    capture "$WORK/$stem.wav" 24000 $(outputs_of "$stem" "$outputs")
    render "$stem" --seconds 40 --stopped --tempo 90 --out "$WORK/$stem-ref.wav"
    # The plug-in ran for a while before recording began: find where.
    "$TOOL" compare "$WORK/$stem.wav" "$WORK/$stem-ref.wav" --align || fail "$stem in jalv differs from corvane render"
done < <(built_modules)

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
