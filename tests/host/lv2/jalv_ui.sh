#!/usr/bin/env bash
# The bundle's editor in jalv's GTK front end under Xvfb, on JACK's dummy backend: suil embeds the X11
# UI in jalv's window, the panel is drawn (a screenshot of jalv's window shows it), and a knob turned
# by synthetic input (xdotool) changes the plug-in's control port as jalv reports it: jalv's own saved
# state ("Save", Control+S: jalv's record of every control port, the values it hands the plug-in) holds
# 0.5 for the knob's port and 0 for its neighbour, and the DC output that follows the port moves from 0
# to 0.5. (jalv prints no input control port: its --print-controls prints output ports only, and
# jalv.gtk3 reads no commands.) Then jalv closes its window, and nothing is left running.
# CORVANE_XVFB_DISPLAY=N uses display :N instead of a free one; CORVANE_UPDATE_SCREENSHOTS=1 writes the
# picture to docs/editor/jalv-gtk3-dc.png.
source "$(dirname "$0")/common.sh"
for tool in jalv.gtk3 Xvfb xdotool xwininfo import identify; do
    command -v "$tool" > /dev/null || fail "$tool is not installed (scripts/setup.sh installs it)"
done

step "Xvfb, jackd (dummy backend) and jalv.gtk3 with corvane's DC"
if [ -n "${CORVANE_XVFB_DISPLAY:-}" ]; then
    background Xvfb ":$CORVANE_XVFB_DISPLAY" -screen 0 1024x768x24 -nolisten tcp > "$WORK/xvfb.log" 2>&1
    echo "$CORVANE_XVFB_DISPLAY" > "$WORK/display"
else
    background Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3> "$WORK/display" > "$WORK/xvfb.log" 2>&1
fi
for _ in $(seq 100); do [ -s "$WORK/display" ] && xdpyinfo -display ":$(head -1 "$WORK/display")" > /dev/null 2>&1 && break; sleep 0.1; done
export DISPLAY=":$(head -1 "$WORK/display")"
xdpyinfo > /dev/null 2>&1 || fail "Xvfb did not start"
background jackd --no-realtime -n "$JACK_DEFAULT_SERVER" -d dummy -r 48000 -p 256 > "$WORK/jackd.log" 2>&1
jack_wait -w -t 10 > /dev/null 2>&1 || fail "jackd did not start"
# A home of its own: the file dialog of "Save" keeps its recent files there.
mkdir -p "$WORK/home"
background env HOME="$WORK/home" jalv.gtk3 --jack-name dcui -x urn:brelmont:corvane:dc > "$WORK/jalv.log" 2>&1
JALV=${BACKGROUND[-1]}

# The editor's window is the child of 510 by 220 named after the module; jalv's own window holds it.
CHILD=
for _ in $(seq 100); do
    for w in $(xdotool search --name '^Corvane DC$' 2> /dev/null); do
        size=$(xwininfo -id "$w" 2> /dev/null | awk '/^  Width:/ { w = $2 } /^  Height:/ { h = $2 } END { print w "x" h }')
        [ "$size" = 510x220 ] && CHILD=$w
    done
    [ -n "$CHILD" ] && break
    sleep 0.1
done
[ -n "$CHILD" ] || { cat "$WORK/jalv.log" >&2; fail "no editor window of 510 by 220 appeared in jalv"; }
sleep 1  # suil reparents it into jalv's window
# Its place on the screen, and the top-level window of jalv that holds it (the root's child above it).
CX=$(xwininfo -id "$CHILD" | awk '/Absolute upper-left X:/ { print $4 }')
CY=$(xwininfo -id "$CHILD" | awk '/Absolute upper-left Y:/ { print $4 }')
ROOTWIN=$(xwininfo -root | awk '/Window id:/ { print $4 }')
TOP=$CHILD
while :; do
    up=$(xwininfo -tree -id "$TOP" | awk '/Parent window id:/ { print $4 }')
    [ -z "$up" ] || [ "$((up))" = "$((ROOTWIN))" ] && break
    TOP=$up
done
# Room above it for a drag of 100 px.
xdotool windowmove "$TOP" 100 200
sleep 0.5
CX=$(xwininfo -id "$CHILD" | awk '/Absolute upper-left X:/ { print $4 }')
CY=$(xwininfo -id "$CHILD" | awk '/Absolute upper-left Y:/ { print $4 }')
grep -q "^UI: *urn:brelmont:corvane:ui" "$WORK/jalv.log" || { cat "$WORK/jalv.log" >&2; fail "jalv did not choose corvane's UI"; }
for _ in $(seq 50); do jack_lsp 2> /dev/null | grep -qx "dcui:out_1" && break; sleep 0.1; done
sleep 1
echo "editor window $CHILD at $CX,$CY inside jalv's window $TOP"

step "the panel is drawn"
import -window "$CHILD" "$WORK/panel.png"
mean=$(identify -format '%[fx:mean]' "$WORK/panel.png")
awk -v m="$mean" 'BEGIN { exit !(m > 0.25) }' || fail "the editor window is dark (mean $mean): nothing drawn"
echo "mean grey of the editor window: $mean"

step "a knob turned by xdotool moves the control port"
"$TOOL" capture --name capture_before --out "$WORK/before.wav" --frames 4800 dcui:out_1 > /dev/null || fail "capture"
"$TOOL" expect-constant "$WORK/before.wav" 1 0 || fail "the DC output is not 0 before the knob turns"
# The left "Out 0->1" knob, dragged 100 px up: half of its range from 0 to 1.
xdotool mousemove $((CX + 38)) $((CY + 62)) sleep 0.2 mousedown 1 sleep 0.2 \
    mousemove $((CX + 38)) $((CY + 22)) sleep 0.2 mousemove $((CX + 38)) $((CY - 38)) sleep 0.2 mouseup 1
sleep 1
"$TOOL" capture --name capture_after --out "$WORK/after.wav" --frames 4800 dcui:out_1 > /dev/null || fail "capture"
"$TOOL" expect-constant "$WORK/after.wav" 1 0.5 || fail "the knob's port write did not reach the plug-in"
echo "DC output after the drag: 0.5"

step "jalv reports the control port: its saved state holds what the knob wrote"
xdotool windowfocus "$TOP"
sleep 0.3
xdotool key ctrl+s
SAVE=
for _ in $(seq 50); do
    SAVE=$(xdotool search --name '^Save State$' 2> /dev/null | head -1 || true)
    [ -n "$SAVE" ] && break
    sleep 0.1
done
[ -n "$SAVE" ] || { cat "$WORK/jalv.log" >&2; fail "jalv's \"Save State\" dialog did not open on Control+S"; }
sleep 0.5
xdotool windowfocus "$SAVE"
sleep 0.3
xdotool type --delay 20 "$WORK/saved"
sleep 0.3
xdotool key Return
for _ in $(seq 100); do [ -s "$WORK/saved/state.ttl" ] && break; sleep 0.1; done
[ -s "$WORK/saved/state.ttl" ] || fail "jalv wrote no state to $WORK/saved"
port_value() { awk -v s="lv2:symbol \"$1\"" 'index($0, s) { getline; print $2; exit }' "$WORK/saved/state.ttl"; }
left=$(port_value output_positive_l)
right=$(port_value output_positive_r)
awk -v v="$left" 'BEGIN { exit !(v != "" && v + 0 == 0.5) }' ||
    fail "jalv reports output_positive_l = '$left', not 0.5"
awk -v v="$right" 'BEGIN { exit !(v != "" && v + 0 == 0) }' ||
    fail "jalv reports output_positive_r = '$right', not 0"
echo "jalv's saved state: output_positive_l = $left, output_positive_r = $right"
# The dialog overlaps jalv's window until it is gone (there is no window manager).
for _ in $(seq 50); do xdotool search --name '^Save State$' > /dev/null 2>&1 || break; sleep 0.1; done
import -window "$TOP" "$WORK/jalv.png"
if [ -n "${CORVANE_UPDATE_SCREENSHOTS:-}" ]; then cp "$WORK/jalv.png" "$ROOT/docs/editor/jalv-gtk3-dc.png"; fi

step "jalv closes its window with the editor in it"
xdotool windowclose "$TOP" 2> /dev/null || kill "$JALV"
for _ in $(seq 100); do kill -0 "$JALV" 2> /dev/null || break; sleep 0.1; done
if kill -0 "$JALV" 2> /dev/null; then fail "jalv did not end when its window closed"; fi
wait "$JALV" 2> /dev/null && status=0 || status=$?
grep -q "Segmentation\|Abort\|double free" "$WORK/jalv.log" && { cat "$WORK/jalv.log" >&2; fail "jalv crashed"; }
echo "jalv ended with status $status"
echo "jalv_ui: all checks passed"
