#!/usr/bin/env bash
# The editor opened and closed many times in one host process, embedded as jalv.gtk3 embeds it: suil's
# X11-in-GTK3 wrapper in a GTK 3 window, the plug-in loaded by lilv and running on an audio thread of
# the host's own (jalv cannot reopen its UI within one process, so this host does what jalv does once,
# COUNT times). After every close the process must have as many threads and open files as after the
# first cycle; while the editor is open there must be more (its render thread); every tenth cycle
# (and the first and last) the editor's window must show a drawn panel; resident memory may not grow
# by 8 MB or more from cycle 10 to the last. No JACK server is involved.
# Usage: suil_ui_cycles.sh [BUILD] [COUNT]   (COUNT defaults to 100; the LV2 host tests run 12)
# CORVANE_XVFB_DISPLAY=N uses display :N instead of a free one.
source "$(dirname "$0")/common.sh"
COUNT=${2:-100}
HOSTPROG=$BUILD/tests/host/lv2/corvane_suil_ui_cycles
[ -x "$HOSTPROG" ] || fail "$HOSTPROG is missing: build the target corvane_suil_ui_cycles"
command -v Xvfb > /dev/null || fail "Xvfb is not installed (scripts/setup.sh installs it)"

step "Xvfb"
if [ -n "${CORVANE_XVFB_DISPLAY:-}" ]; then
    background Xvfb ":$CORVANE_XVFB_DISPLAY" -screen 0 1024x768x24 -nolisten tcp > "$WORK/xvfb.log" 2>&1
    echo "$CORVANE_XVFB_DISPLAY" > "$WORK/display"
else
    background Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3> "$WORK/display" > "$WORK/xvfb.log" 2>&1
fi
for _ in $(seq 100); do [ -s "$WORK/display" ] && xdpyinfo -display ":$(head -1 "$WORK/display")" > /dev/null 2>&1 && break; sleep 0.1; done
export DISPLAY=":$(head -1 "$WORK/display")"
xdpyinfo > /dev/null 2>&1 || fail "Xvfb did not start"

step "$COUNT open/close cycles of corvane's DC editor through suil"
"$HOSTPROG" "$BUNDLE" urn:brelmont:corvane:dc urn:brelmont:corvane:ui "$COUNT" > "$WORK/cycles.log" 2>&1 ||
    { cat "$WORK/cycles.log" >&2; fail "the cycles failed"; }
cat "$WORK/cycles.log"
grep -q "^suil_ui_cycles: all checks passed" "$WORK/cycles.log" || fail "the host did not finish"
