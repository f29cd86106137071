#!/usr/bin/env bash
# Shows the tray icon on a virtual X display and takes a screenshot of it.
#
#   scripts/tray-screenshot.sh [OUTPUT.png] [SECONDS] [-- COMMAND ARGS...]
#
# Starts Xvfb, the `trayer` system tray along the top edge, then COMMAND (the built zelvar2
# by default) with the xcb platform, waits SECONDS (7 by default, so a few rate samples have
# been drawn) and saves the whole screen with ImageMagick's `import`. Everything it started
# is stopped on exit.
set -euo pipefail
cd "$(dirname "$0")/.."

output=${1:-tray-screenshot.png}
seconds=${2:-7}
shift $(( $# < 2 ? $# : 2 ))
if [ "${1:-}" = "--" ]; then
    shift
fi
command=("$@")
if [ ${#command[@]} -eq 0 ]; then
    command=(build/release/src/app/zelvar2)
fi

for tool in Xvfb trayer import; do
    if ! command -v "$tool" >/dev/null 2>&1; then
        echo "error: $tool is missing (packages xvfb, trayer, imagemagick)" >&2
        exit 1
    fi
done

# The first free display number from :90 on.
display=90
while [ -e "/tmp/.X11-unix/X$display" ] || [ -e "/tmp/.X$display-lock" ]; do
    display=$((display + 1))
done
export DISPLAY=":$display"

pids=()
# The last started goes first, so that the display outlives its clients.
cleanup() {
    for ((i = ${#pids[@]} - 1; i >= 0; i--)); do
        kill "${pids[i]}" 2>/dev/null || true
        wait "${pids[i]}" 2>/dev/null || true
    done
}
trap cleanup EXIT

Xvfb "$DISPLAY" -screen 0 480x120x24 -nolisten tcp >/dev/null 2>&1 &
pids+=($!)
for _ in $(seq 50); do
    [ -e "/tmp/.X11-unix/X$display" ] && break
    sleep 0.1
done

# A light panel, 32 pixels high, so that dark text on it can be read.
trayer --edge top --align left --widthtype pixel --width 240 --heighttype pixel --height 32 \
    --transparent true --alpha 0 --tint 0xe0e0e0 --expand true --SetDockType true \
    >/dev/null 2>&1 &
pids+=($!)
sleep 1

QT_QPA_PLATFORM=xcb "${command[@]}" &
pids+=($!)
sleep "$seconds"

import -window root "$output"
echo "saved $output (display $DISPLAY)"
