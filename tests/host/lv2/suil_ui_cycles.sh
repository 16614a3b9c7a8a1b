#!/usr/bin/env bash
# The editor opened and closed many times in one host process, embedded as jalv.gtk3 embeds it: suil's
# X11-in-GTK3 wrapper in a GTK 3 window, the plug-in loaded by lilv and running on an audio thread of
# the host's own (jalv cannot reopen its UI within one process, so this host does what jalv does once,
# COUNT times). After every close the process must have as many threads and open files as after the
# first cycle; while the editor is open there must be more (its render thread); every tenth cycle
# (and the first and last) the editor's window must show a drawn panel; resident memory may not grow
# by 8 MB or more from cycle 10 to the last. No JACK server is involved.
# On a sanitizer tree (-DCORVANE_SANITIZE=ON) the leak checker runs at the host's exit too, and any
# leaked block with a frame of the plug-in (its library or its sources) on its stack fails the run; blocks that only the
# system's GL, X and font libraries keep (the suppressions of the editor's tests) and those of GTK's
# and GLib's own start-up, with no frame of ours, are not counted.
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

SANITIZED=
if grep -q "^CORVANE_SANITIZE:BOOL=ON" "$BUILD/CMakeCache.txt" 2> /dev/null; then
    SANITIZED=1
    # The leak report goes to a file; the host's own status tells the cycles' checks.
    # The fast unwinder: its stacks stop at the first system library built without frame pointers,
    # so a block is seen as the plug-in's when the plug-in itself allocated it (the slow unwinder,
    # which would see further, deadlocks against the GL driver's threads).
    export ASAN_OPTIONS="detect_leaks=1:log_path=$WORK/asan"
    export LSAN_OPTIONS="exitcode=0"
fi

step "$COUNT open/close cycles of corvane's DC editor through suil${SANITIZED:+ (leak checker on)}"
"$HOSTPROG" "$BUNDLE" urn:brelmont:corvane:dc urn:brelmont:corvane:ui "$COUNT" > "$WORK/cycles.log" 2>&1 ||
    { cat "$WORK/cycles.log" "$WORK"/asan.* >&2 2> /dev/null; fail "the cycles failed"; }
cat "$WORK/cycles.log"
grep -q "^suil_ui_cycles: all checks passed" "$WORK/cycles.log" || fail "the host did not finish"
if [ -n "$SANITIZED" ]; then
    # Each leak report block runs from "Direct/Indirect leak of" to a blank line.
    cat "$WORK"/asan.* > "$WORK/leaks.txt" 2> /dev/null || true
    awk -v root="$ROOT/" '
        BEGIN { split("editor host framework modules remote", dirs, " ") }
        /^(Direct|Indirect) leak of/ { block = $0 "\n"; on = 1; next }
        on && NF == 0 { judge(); on = 0; next }
        on { block = block $0 "\n" }
        END { if (on) judge(); printf "leaked blocks: %d in all, %d with a frame of ours\n", all, ours; exit ours > 0 }
        function judge() {
            all++
            # A frame of the plug-in: its library, or a source of its folders (not those of the host).
            # Sources are named relative to the build tree ("../editor/Manager.cpp") or in full.
            ours_frame = block ~ /corvane\.so|[ ]\.\.\/(editor|host|framework|modules|remote)\//
            for (d = 1; d <= 5 && !ours_frame; d++) ours_frame = index(block, root dirs[d] "/") > 0
            if (!ours_frame) return
            if (block ~ /libGLX_mesa|swrast_dri|libLLVM|libX11\.so|libfontconfig|libglapi|libdrm/) return
            ours++
            printf "%s\n", block
        }' "$WORK/leaks.txt" || fail "the editor leaked (the blocks above)"
fi
