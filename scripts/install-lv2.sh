#!/usr/bin/env bash
# Installs the built corvane.lv2 where LV2 hosts look for plug-ins: ~/.lv2 unless --dest names another
# folder (for all users, e.g. /usr/local/lib/lv2). Replaces an earlier install of the bundle whole.
#   scripts/install-lv2.sh [--build BUILD_FOLDER] [--dest FOLDER]
set -euo pipefail
cd "$(dirname "$0")/.."

build=build
dest="${HOME:?}/.lv2"
while [ $# -gt 0 ]; do
    case "$1" in
        --build) build=${2:?--build needs a folder}; shift 2 ;;
        --dest) dest=${2:?--dest needs a folder}; shift 2 ;;
        -h | --help) sed -n '2,4p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
        *) echo "install-lv2: unknown option \"$1\" (try --help)" >&2; exit 2 ;;
    esac
done

bundle=$build/host/lv2/corvane.lv2
if [ ! -f "$bundle/corvane.so" ] || [ ! -f "$bundle/manifest.ttl" ]; then
    echo "install-lv2: $bundle is not built; run: cmake --build $build --target corvane_lv2_bundle" >&2
    exit 1
fi
mkdir -p "$dest"
# Copied beside the old bundle first, then swapped in, so a host never sees half a bundle.
staging=$(mktemp -d "$dest/.corvane.lv2.XXXXXX")
cp "$bundle/corvane.so" "$bundle"/*.ttl "$staging/"
chmod 755 "$staging"
rm -rf "$dest/corvane.lv2"
mv "$staging" "$dest/corvane.lv2"
plugins=$(grep -c 'a lv2:Plugin' "$dest/corvane.lv2/manifest.ttl")
echo "installed $dest/corvane.lv2 ($plugins plug-ins)"
