#!/usr/bin/env bash
# lv2_validate over the generated bundles (and proof that it catches an error), serdi for syntax,
# and lilv's view: one plug-in per built module with the ports the tables give.
source "$(dirname "$0")/common.sh"

validate() {  # lv2_validate counts errors but exits 0 for syntax errors and folders: check both.
    local log=$1
    shift
    for ttl in "$@"; do
        serdi -q "$ttl" > /dev/null || fail "serdi: $ttl is not valid Turtle"
    done
    lv2_validate "$@" > "$log" 2>&1 || true
    grep -q "^Found 0 errors" "$log"
}

step "lv2_validate corvane.lv2 and corvane-probe.lv2"
validate "$WORK/validate.log" "$BUNDLE"/*.ttl "$PROBE_BUNDLE"/*.ttl \
    || { cat "$WORK/validate.log" >&2; fail "lv2_validate reported errors"; }
grep "^Found" "$WORK/validate.log"

step "lv2_validate catches a bad symbol and a bad index in a copy"
cp -r "$PROBE_BUNDLE" "$WORK/broken.lv2"
sed -i 's/lv2:symbol "level" ;/lv2:symbol "1level" ;/; s/lv2:index 3 ;/lv2:index "three" ;/' "$WORK/broken.lv2/hostprobe.ttl"
if validate "$WORK/broken.log" "$WORK/broken.lv2"/*.ttl; then fail "lv2_validate passed a broken bundle"; fi
grep "^Found" "$WORK/broken.log"

step "lilv lists one plug-in per built module"
expected=$(built_modules | cut -f1 | sed 's/^/urn:brelmont:corvane:/' | sort)
listed=$(lv2ls | grep '^urn:brelmont:corvane:' | sort)
[ "$expected" = "$listed" ] || fail "lv2ls lists [$listed], the build carries [$expected]"
echo "$listed" | tr '\n' ' '; echo

while IFS=$'\t' read -r stem inputs outputs; do
    info=$(lv2info "urn:brelmont:corvane:$stem")
    # One "Port N:" block per port; its Type lines name the classes.
    count() {
        awk -v a="$1" -v b="$2" '/^\tPort [0-9]+:/ { if (x && y) n++; x = y = 0 }
            index($0, a) { x = 1 } index($0, b) { y = 1 } END { if (x && y) n++; print n + 0 }' <<< "$info"
    }
    ins=$(count "lv2core#AudioPort" "lv2core#InputPort")
    outs=$(count "lv2core#AudioPort" "lv2core#OutputPort")
    controls=$(count "lv2core#ControlPort" "lv2core#InputPort")
    [ "$ins" = "$inputs" ] && [ "$outs" = "$outputs" ] \
        || fail "$stem: lv2info shows $ins audio inputs and $outs outputs, the module has $inputs and $outputs"
    rows=$("$CORVANE" params "$stem" | wc -l)
    [ "$controls" = $((rows + 1)) ] || fail "$stem: $controls control ports for $rows rows and Enabled"
    echo "$stem: $ins audio in, $outs audio out, $controls controls"
done < <(built_modules)
step "every plug-in offers the X11 editor UI of ui.ttl"
while IFS=$'\t' read -r stem _; do
    lv2info "urn:brelmont:corvane:$stem" | grep -A1 -x $'\t\turn:brelmont:corvane:ui' | grep -q 'ui#X11UI' \
        || fail "$stem: lv2info shows no X11 UI urn:brelmont:corvane:ui"
done < <(built_modules)
grep -q "lv2:requiredFeature ui:idleInterface , ui:parent , <http://lv2plug.in/ns/ext/instance-access>" "$BUNDLE/ui.ttl" \
    || fail "ui.ttl does not require the idle interface, the parent window and instance-access"
echo "all $(built_modules | wc -l) plug-ins name urn:brelmont:corvane:ui, an X11 UI"

step "scripts/install-lv2.sh puts the bundle where hosts find it"
bash "$ROOT/scripts/install-lv2.sh" --build "$BUILD" --dest "$WORK/installed/lv2"
bash "$ROOT/scripts/install-lv2.sh" --build "$BUILD" --dest "$WORK/installed/lv2" > /dev/null  # again, over it
installed=$(LV2_PATH="$WORK/installed/lv2" lv2ls | sort)
[ "$installed" = "$expected" ] || fail "after install lv2ls lists [$installed], expected [$expected]"
cmp "$BUNDLE/corvane.so" "$WORK/installed/lv2/corvane.lv2/corvane.so" || fail "installed corvane.so differs"
if bash "$ROOT/scripts/install-lv2.sh" --build "$WORK/nowhere" --dest "$WORK/installed/lv2" 2> "$WORK/install.err"; then
    fail "install-lv2.sh succeeded without a build"
fi
grep -q "is not built" "$WORK/install.err" || fail "install-lv2.sh without a build says: $(cat "$WORK/install.err")"
echo "validate: all checks passed"
