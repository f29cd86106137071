#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing need, and only the
# ones that are missing. Safe to run again; never prompts.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config clang-format
    clang libclang-rt-14-dev
    qt6-base-dev qt6-base-dev-tools libgl-dev libicu-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    procps lsof dbus dbus-x11 xvfb python3
    iproute2 fonts-dejavu-core trayer imagemagick
    xdotool fonts-noto-color-emoji  # dashboard screenshots: clicks, and the origin chips' emoji
    x11-utils  # dashboard screenshots: xmessage windows for the Focus tab to follow
    libcanberra-dev
    libsystemd-dev systemd-journal-remote  # the power history's journal reader, and its test journals
    libxcb1-dev libxcb-ewmh-dev openbox  # focus tracking over EWMH; a window manager for trying it
    pulseaudio pulseaudio-utils  # audio: pactl for device state and clients; a private server in the live test
    adwaita-icon-theme libqt6svg6  # the dashboard's symbols: a theme and the SVG icon engine
    htop btop tmux
)

missing=()
for pkg in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q '^install ok installed$'; then
        missing+=("$pkg")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "Installing missing packages: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
    if command -v sudo >/dev/null 2>&1; then
        sudo_cmd=(sudo)
    else
        echo "error: need root or sudo to install: ${missing[*]}" >&2
        exit 1
    fi
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
