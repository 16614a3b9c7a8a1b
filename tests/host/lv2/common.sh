# Shared by the LV2 host test scripts: paths into a build tree, a private LV2 path holding only the
# bundles under test (and the system's, for the reference plug-ins), a private JACK server name and
# config folder, background processes that are always stopped, and loud failures.
# Usage: source this with the build folder as $1 (default: build).
set -euo pipefail

HERE=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
ROOT=$(cd "$HERE/../../.." && pwd)
BUILD=$(cd "${1:-$ROOT/build}" && pwd)
SCRIPT=$(basename "$0" .sh)
CORVANE=$BUILD/host/corvane
TOOL=$BUILD/tests/host/lv2/corvane_host_tool
BUNDLE=$BUILD/host/lv2/corvane.lv2
PROBE_BUNDLE=$BUILD/tests/host/lv2/bundles/corvane-probe.lv2
PROBE_URI=urn:brelmont:corvane-test:hostprobe

fail() {
    echo "FAIL [$SCRIPT]: $*" >&2
    exit 1
}
step() { echo "== [$SCRIPT] $*"; }

for f in "$CORVANE" "$TOOL" "$BUNDLE/corvane.so" "$BUNDLE/manifest.ttl" "$PROBE_BUNDLE/manifest.ttl"; do
    [ -e "$f" ] || fail "$f is missing: build first (cmake --build $BUILD)"
done

WORK=$(mktemp -d "${TMPDIR:-/tmp}/corvane-$SCRIPT-XXXXXX")
mkdir -p "$WORK/lv2" "$WORK/config"
ln -s "$BUNDLE" "$WORK/lv2/corvane.lv2"
ln -s "$PROBE_BUNDLE" "$WORK/lv2/corvane-probe.lv2"
export LV2_PATH="$WORK/lv2:/usr/lib/lv2"
# No user preference or host configuration of this machine reaches the tests.
export XDG_CONFIG_HOME="$WORK/config"
# One server name per script, not per run: JACK keeps eight server slots in shared memory and frees
# a dead server's slot only when a server of the same name starts, so a name per run would fill them
# after eight killed servers and every later test would fail to start one.
export JACK_DEFAULT_SERVER="corvane-$SCRIPT"
export JACK_NO_AUDIO_RESERVATION=1

BACKGROUND=()
# Runs a command in the background and remembers it for stop_all.
background() {
    "$@" &
    BACKGROUND+=($!)
}
# Stops every background process, newest first, and waits for each; one that has not ended 5 s
# after SIGTERM gets SIGKILL.
stop_all() {
    local i pid
    for ((i = ${#BACKGROUND[@]} - 1; i >= 0; i--)); do
        pid=${BACKGROUND[i]}
        kill "$pid" 2> /dev/null || true
        for _ in $(seq 100); do kill -0 "$pid" 2> /dev/null || break; sleep 0.05; done
        kill -0 "$pid" 2> /dev/null && { echo "[$SCRIPT] process $pid ignored SIGTERM; killed" >&2; kill -9 "$pid" 2> /dev/null || true; }
        wait "$pid" 2> /dev/null || true
    done
    BACKGROUND=()
}
on_exit() {
    local status=$?
    stop_all
    if [ $status -ne 0 ] || [ -n "${KEEP_WORK:-}" ]; then
        echo "[$SCRIPT] work folder kept: $WORK" >&2
    else
        rm -rf "$WORK"
    fi
    exit $status
}
trap on_exit EXIT

# The modules the build carries: "stem<TAB>inputs<TAB>outputs" per line, from "corvane list".
built_modules() { "$CORVANE" list | awk -F'\t' '{ print $2 "\t" $4 "\t" $5 }'; }

# Input audio port symbols of a plug-in, in port order, from lv2file's own listing.
input_ports() {
    lv2file -n "$1" 2> /dev/null | awk '/^==Audio Ports==/ { on = 1; next } /^==/ { on = 0 } on && NF { sub(":.*", ""); print }'
}

# The settings column of a module table, "Name=Value, Name=Value", turned into the arrays each host
# takes: RENDER_SET (corvane render --set), LV2FILE_SET (lv2file -p) and JALV_SET (jalv -c). The
# port symbol is the row name in lower case with "_" for each run of other characters; each must be
# a control port of the plug-in, so a misspelt name fails here rather than being ignored by a host.
settings_to_args() {  # STEM SETTINGS
    local stem=$1 item name value symbol
    RENDER_SET=() LV2FILE_SET=() JALV_SET=()
    [ "$2" = "-" ] && return 0
    while IFS= read -r item; do
        item=$(sed 's/^ *//; s/ *$//' <<< "$item")
        [ -n "$item" ] || continue
        name=${item%%=*} value=${item#*=}
        symbol=$(tr 'A-Z' 'a-z' <<< "$name" | sed 's/[^a-z0-9]\+/_/g; s/^_//; s/_$//')
        grep -q "lv2:symbol \"$symbol\" ;" "$BUNDLE/$stem.ttl" || fail "$stem has no control port \"$symbol\" for \"$name\""
        RENDER_SET+=(--set "$name=$value")
        LV2FILE_SET+=(-p "$symbol:$value")
        JALV_SET+=(-c "$symbol=$value")
    done < <(tr ',' '\n' <<< "$2")
}

# Reads a module table (rows "stem | column | column ...", "#" comments) from stdin into TABLE_STEMS
# and TABLE_ROWS (the rest of each row, keyed by stem), and fails unless every built module has a row.
read_table() {
    local line stem
    TABLE_STEMS=()
    declare -gA TABLE_ROWS=()
    while IFS= read -r line; do
        [[ "$line" =~ ^[[:space:]]*(#|$) ]] && continue
        stem=$(sed 's/ *|.*//; s/^ *//' <<< "$line")
        TABLE_STEMS+=("$stem")
        TABLE_ROWS[$stem]=${line#*|}
    done
    while IFS=$'\t' read -r stem _; do
        [ -n "${TABLE_ROWS[$stem]+set}" ] || fail "module $stem has no row in the table of $SCRIPT.sh"
    done < <(built_modules)
}
# Field K (from 1, after the stem) of a table row, trimmed.
field() {  # ROW K
    awk -F'|' -v k="$2" '{ v = $k; gsub(/^ +| +$/, "", v); print v }' <<< "$1"
}

# A float value as the module computes it, e.g. float32 0.3 * 1.5, is what corvane render gives:
# tests compare against its files rather than against decimal numbers.

# corvane render with its messages in a log; fails loudly.
render() {
    "$CORVANE" render "$@" > "$WORK/render.log" 2>&1 || { cat "$WORK/render.log" >&2; fail "corvane render $*"; }
}
