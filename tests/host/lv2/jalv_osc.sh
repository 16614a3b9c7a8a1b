#!/usr/bin/env bash
# jalv on JACK's dummy backend hosts an LFO whose "OSC Port Offset" is 5: its server listens on
# the preference "OSC Base Port" + 5, and an oscsend /set of "Speed L" from 5 Hz to 20 Hz changes
# the recorded output's speed from that moment on.
source "$(dirname "$0")/common.sh"

BASE=17700
PORT=$((BASE + 5))
mkdir -p "$XDG_CONFIG_HOME/Brelmont"
printf 'OSC Base Port=%d\n' "$BASE" > "$XDG_CONFIG_HOME/Brelmont/com.brelmont.Corvane2.conf"

step "JACK dummy backend, period 256; jalv hosts lfo with OSC Port Offset 5"
background jackd --no-realtime --sync --timeout 10000 -n "$JACK_DEFAULT_SERVER" -d dummy -r 48000 -p 256 > "$WORK/jackd.log" 2>&1
jack_wait -w -t 10 > /dev/null 2>&1 || fail "jackd did not start"
background jalv -i -x -n lfo -c osc_port_offset=5 -c sine_l=1 urn:brelmont:corvane:lfo > "$WORK/jalv.log" 2>&1
for _ in $(seq 200); do jack_lsp 2> /dev/null | grep -qx lfo:out_1 && break; sleep 0.05; done
jack_lsp 2> /dev/null | grep -qx lfo:out_1 || fail "jalv did not register lfo:out_1"

step "the server answers /ping on port $PORT"
background oscdump -L $((BASE + 100)) > "$WORK/dump.log" 2>&1
sleep 0.3
for _ in $(seq 50); do
    oscsend localhost "$PORT" /ping ss "osc.udp://127.0.0.1:$((BASE + 100))" /pong
    sleep 0.1
    grep -q "/pong" "$WORK/dump.log" && break
done
grep -q "/pong ss \"osc.udp://127.0.0.1:$PORT\" \"Corvane LFO 2.6.1\"" "$WORK/dump.log" \
    || { cat "$WORK/dump.log" >&2; fail "no /ping reply from port $PORT"; }

step "record 3 s; /set \"Speed L\" (id 1) to 20 Hz after about 1 s"
"$TOOL" capture --name capture_lfo --out "$WORK/lfo.wav" --frames 144000 lfo:out_1 > "$WORK/capture.log" 2>&1 &
CAPTURE=$!
sleep 1.2
oscsend localhost "$PORT" /set if 1 20
wait "$CAPTURE" || { cat "$WORK/capture.log" >&2; fail "capture failed"; }

"$TOOL" crossings "$WORK/lfo.wav" 1 > "$WORK/crossings.txt"
# Periods between upward crossings: 9600 frames at 5 Hz, then 2400 at 20 Hz, with one period in
# between that holds the change; never back to the slow speed.
awk '
    NR > 1 { d = $1 - last; n++
             if (d > 9590 && d < 9610) { if (fast) bad = "slow after fast at " $1; slow++ }
             else if (d > 2390 && d < 2410) { if (!fast) change = last; fast++ }
             else if (odd++ > 0) bad = "second odd period " d " at " $1 }
    { last = $1 }
    END { if (bad) { print "FAIL " bad; exit 1 }
          if (slow < 3 || fast < 20) { print "FAIL slow " slow " fast " fast; exit 1 }
          printf "slow periods %d, fast periods %d, change near frame %d\n", slow, fast, change }
' "$WORK/crossings.txt" || fail "the LFO did not change from 5 Hz to 20 Hz once"
stop_all
echo "jalv_osc: all checks passed"
