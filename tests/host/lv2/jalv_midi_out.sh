#!/usr/bin/env bash
# CV To MIDI's MIDI on JACK's dummy backend (a private server): in jalv, a ramp and a gate played into
# the plug-in give at its MIDI output port, as jack_midi_dump receives them, the messages that
# "corvane render --midi-out" writes for the same input, each on the same frame; "corvane midi-ports"
# lists JACK's MIDI input ports; a real-time render with property 64100 naming jack_midi_dump's port
# delivers the same messages there, in order and at real-time pace; names that match no port exactly
# (a prefix, another case) deliver nothing and say nothing; rendering with a JACK device open
# allocates nothing (the host test binary's JACK case, run here with a server).
source "$(dirname "$0")/common.sh"
HOST_TESTS=$BUILD/tests/host_tests
[ -x "$HOST_TESTS" ] || fail "$HOST_TESTS is missing: build first"

# "Note On Mode L" 1 is "Gate Only" (jalv -c takes numbers only).
SETTINGS="Enable CC L=1, Send CC L=7, Enable Note L=1, Note On Mode L=1, Enable R=0"
settings_to_args cvtomidi "$SETTINGS"
FRAMES=48000

wait_port() {
    for _ in $(seq 200); do
        jack_lsp 2> /dev/null | grep -qx "$1" && return 0
        sleep 0.05
    done
    fail "JACK port $1 did not appear"
}
wait_line() {  # FILE TEXT
    for _ in $(seq 200); do grep -q "$2" "$1" && return 0; sleep 0.05; done
    fail "\"$2\" did not appear in $1"
}
# jack_midi_dump's lines "TIME: HEX HEX HEX ..." as "TIME: hex hex hex", lower case, nothing else.
dumped() { sed -n 's/^ *\([0-9]\+\): \(\([0-9a-fA-F]\{2\} \?\)\{3\}\).*/\1: \2/p' "$1" | sed 's/ *$//' | tr 'A-F' 'a-f'; }
# "TIME: bytes" lines with times made relative to the first line's.
relative() { awk -F': ' 'NR == 1 { t0 = $1 } { print $1 - t0 ": " $2 }'; }
# The dumped lines after the first N.
dumped_after() { dumped "$WORK/dump.log" | tail -n "+$(($1 + 1))"; }

step "the reference: corvane render --midi-out of a ramp and a gate"
"$TOOL" ramp-gate "$WORK/in.wav" $FRAMES 4800 2400
render cvtomidi --block 256 --in "$WORK/in.wav" "${RENDER_SET[@]}" --out "$WORK/ref.wav" --midi-out "$WORK/ref.mid"
"$TOOL" midi-frames "$WORK/ref.mid" 48000 > "$WORK/ref.txt"
[ "$(wc -l < "$WORK/ref.txt")" -gt 100 ] || fail "the reference holds $(wc -l < "$WORK/ref.txt") messages"
head -1 "$WORK/ref.txt" | grep -qx "0: 90 00 40" || fail "the reference does not begin with note 0 at frame 0"

step "JACK dummy backend, period 256"
background jackd --no-realtime --sync --timeout 10000 -n "$JACK_DEFAULT_SERVER" -d dummy -r 48000 -p 256 > "$WORK/jackd.log" 2>&1
jack_wait -w -t 10 > /dev/null 2>&1 || fail "jackd did not start"

step "jalv: the plug-in's MIDI output port into jack_midi_dump"
# One monitor for the whole run: a JACK client killed while the server runs in synchronous mode
# stalls its cycles until the server gives up on it.
background jack_midi_dump -a > "$WORK/dump.log" 2>&1
background jalv -i -x -n cvtomidi "${JALV_SET[@]}" urn:brelmont:corvane:cvtomidi > "$WORK/jalv.log" 2>&1
wait_port midi-monitor:input
wait_port cvtomidi:midi_out
sleep 1
jack_connect cvtomidi:midi_out midi-monitor:input
sleep 0.3
"$TOOL" drive --name drive --out "$WORK/jalv.wav" --frames $FRAMES --in "$WORK/in.wav" --to cvtomidi:in_1 \
    --to cvtomidi:in_2 cvtomidi:out_1 cvtomidi:out_2 > "$WORK/drive.log" 2>&1 \
    || { cat "$WORK/drive.log" >&2; fail "driving jalv failed"; }
"$TOOL" compare "$WORK/jalv.wav" "$WORK/in.wav" || fail "the audio does not pass through unchanged"
sleep 0.5
jack_disconnect cvtomidi:midi_out midi-monitor:input
sleep 0.3
# Before the drive, jalv's silent inputs gave at most a controller; the played part starts with the
# note on of frame 0. After it, the inputs fall silent: what comes then is left out.
dumped_after 0 | sed -n '/: 90 00 40$/,$p' | relative | awk -F': ' -v n=$FRAMES '$1 < n' > "$WORK/jalv.txt"
if ! diff "$WORK/ref.txt" "$WORK/jalv.txt" > "$WORK/jalv.diff"; then
    head -20 "$WORK/jalv.diff" >&2
    fail "jack_midi_dump did not receive the rendered messages on the rendered frames"
fi
echo "jalv: $(wc -l < "$WORK/jalv.txt") messages on their frames"
before=$(dumped_after 0 | wc -l)

step "corvane midi-ports lists JACK's MIDI input ports"
"$CORVANE" midi-ports > "$WORK/ports.txt" 2> "$WORK/ports.err" || fail "midi-ports failed"
grep -qx "jack	midi-monitor:input" "$WORK/ports.txt" || { cat "$WORK/ports.txt" >&2; fail "midi-monitor:input is not listed"; }
grep -qx "jack	cvtomidi:midi_in" "$WORK/ports.txt" || fail "jalv's MIDI input is not listed"
if grep -q "midi_out" "$WORK/ports.txt"; then fail "an output port is listed as a device"; fi
cat "$WORK/ports.txt"

step "corvane render --realtime with property 64100 naming jack_midi_dump's port"
start=$(date +%s.%N)
"$CORVANE" render cvtomidi --realtime --block 256 --in "$WORK/in.wav" "${RENDER_SET[@]}" \
    --property 64100=midi-monitor:input --out "$WORK/rt.wav" --midi-out "$WORK/rt.mid" > "$WORK/rt.log" 2>&1 \
    || { cat "$WORK/rt.log" >&2; fail "the real-time render failed"; }
seconds=$(awk -v s="$start" -v e="$(date +%s.%N)" 'BEGIN { printf "%.2f", e - s }')
sleep 0.3
cmp "$WORK/rt.mid" "$WORK/ref.mid" || fail "the real-time render's file differs from the offline one"
dumped_after "$before" > "$WORK/rt.txt"
cut -d' ' -f2- "$WORK/ref.txt" > "$WORK/ref.bytes"
cut -d' ' -f2- "$WORK/rt.txt" > "$WORK/rt.bytes"
diff "$WORK/ref.bytes" "$WORK/rt.bytes" > /dev/null \
    || { diff "$WORK/ref.bytes" "$WORK/rt.bytes" | head >&2; fail "the device did not receive the messages in order"; }
# Sent as the render runs, not all at once: they arrive spread over many JACK cycles. (Their JACK
# frames do not measure the render's pace: a loaded machine runs the dummy backend's cycles late.)
cycles=$(cut -d: -f1 "$WORK/rt.txt" | sort -u | wc -l)
[ "$cycles" -ge 100 ] || fail "the messages arrived in $cycles JACK cycles, as if sent at once"
awk -v s="$seconds" 'BEGIN { exit !(s >= 0.95) }' || fail "the real-time render took $seconds s for 1 s"
echo "realtime: $(wc -l < "$WORK/rt.txt") messages in order, in $cycles JACK cycles, during a render of $seconds s"
before=$(dumped_after 0 | wc -l)

step "names that are no exact match deliver nothing and say nothing"
for name in midi-monitor:inpu Midi-monitor:input "midi-monitor:input " midi-monitor; do
    "$CORVANE" render cvtomidi --realtime --seconds 0.3 --in "$WORK/in.wav" "${RENDER_SET[@]}" \
        --property "64100=$name" --out "$WORK/none.wav" > "$WORK/none.log" 2>&1 || fail "render with \"$name\" failed"
    [ "$(grep -vc '^corvane: wrote' "$WORK/none.log")" = 0 ] || { cat "$WORK/none.log" >&2; fail "\"$name\" gave messages"; }
done
sleep 0.3
[ "$(dumped_after 0 | wc -l)" = "$before" ] || fail "a name that matches no port delivered messages"

step "rendering with a JACK device open allocates nothing (host_tests, JACK case)"
CORVANE_TEST_JACK_PORT=midi-monitor:input "$HOST_TESTS" --gtest_filter='MidiDevicesJack.*' > "$WORK/gtest.log" 2>&1 \
    || { cat "$WORK/gtest.log" >&2; fail "the JACK device case failed"; }
grep -q "^\[  PASSED  \] 1 test" "$WORK/gtest.log" || { cat "$WORK/gtest.log" >&2; fail "the JACK device case did not run"; }
sleep 0.3
got=$(dumped_after "$before" | grep -c ': b0 15 ' || true)
[ "$got" = 200 ] || fail "the device delivered $got of the 200 controllers"
echo "jack device: 200 controllers delivered, no allocation while rendering"
stop_all
echo "jalv_midi_out: all checks passed"
