#!/usr/bin/env bash
# Installs every Debian package that building, testing and the host tests need; safe to run again.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config clang-format
    liblua5.1-0-dev liboscpack-dev libftgl-dev libfreetype-dev libglew-dev libpng-dev zlib1g-dev
    lv2-dev libsndfile1-dev libsmf-dev nlohmann-json3-dev libgtest-dev libgmock-dev libbenchmark-dev
    libx11-dev libgl-dev libfontconfig-dev libasound2-dev libjack-jackd2-dev
    sordi serdi lilv-utils jalv jackd2 xvfb liblo-tools
    libxtst-dev libgl1-mesa-dri fonts-dejavu-core fonts-liberation
    lv2file ardour lv2-examples mda-lv2
    xdotool imagemagick x11-utils
    liblilv-dev blop-lv2
    # The UI cycle host: lilv + suil embedding the editor in a GTK 3 window as jalv.gtk3 does.
    libsuil-dev libgtk-3-dev
    libcairo2-dev
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    echo "setup: all ${#packages[@]} packages present"
    exit 0
fi

sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
