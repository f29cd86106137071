#!/usr/bin/env bash
# Takes the README's screenshots of the dashboard from the real app on a virtual X display.
#
#   scripts/dashboard-screenshots.sh [OUTPUT_DIR] [PROGRAM]
#
# Starts Xvfb, then PROGRAM (the built zelvar2 by default) with `--dashboard` and a throw-away
# HOME whose configuration holds two limits and a whitelisted name, so that the strip, the
# chips and the badges have something to show. It waits for a few monitoring cycles, opens
# the first process's subtree, and saves with ImageMagick's `import`, into OUTPUT_DIR
# (docs/screenshots by default):
#   ram-tab.png         the RAM tab, with the tree opened below its first root
#   add-limit-sheet.png the "Limit" button's sheet
#   settings.png        the gear's Settings sheet
#   ram-filter.png      the RAM tab filtered by "bash", as a flat list
#   disk-tab.png        the Disk tab, over an example of the daemon's disk I/O log
#   network-tab.png     the Network tab after a few samples of this machine's interfaces
#   power-overview.png  the Power tab's Overview, Battery and Timeline subtabs, over a fixture
#   power-battery.png   battery (a charging ThinkPad's power_supply tree, by
#   power-timeline.png  ZELVAR2_POWER_SUPPLY_DIR) and an example history of the last two days
#                       (scripts/example-power-history.py: a journal of logind, systemd-sleep
#                       and kernel lines, by ZELVAR2_JOURNAL_FILES, and the daemon's samples)
#   audio-tab.png       the Audio tab while paplay plays into a private PulseAudio server (a
#                       null sink on a socket of its own, which the app is pointed at by
#                       PULSE_SERVER), so that the Speaker card is active
#   focus-tab.png       the Focus tab after openbox has been started and xdotool has moved the
#                       focus between a few small X clients (xmessage, ImageMagick's display)
#                       and the dashboard, quickly once, so that the theft warning shows too
# Clicks and keys go through xdotool, at places measured from the window's top left corner.
# SCREENSHOT_DISPLAY chooses the first display number to try (90 by default).
# Everything it started is stopped on exit, the daemon that the app starts detached included.
set -euo pipefail
cd "$(dirname "$0")/.."

output=${1:-docs/screenshots}
program=${2:-build/release/src/app/zelvar2}

for tool in Xvfb import xdotool display xmessage xwininfo openbox pulseaudio paplay python3; do
    if ! command -v "$tool" >/dev/null 2>&1; then
        echo "error: $tool is missing (packages xvfb, imagemagick, xdotool, x11-utils, openbox, pulseaudio, pulseaudio-utils, python3; see scripts/install-deps.sh)" >&2
        exit 1
    fi
done
if [ ! -x "$program" ]; then
    echo "error: $program is not built (make build)" >&2
    exit 1
fi
mkdir -p "$output"

# The first free display number from :90 (or SCREENSHOT_DISPLAY) on.
display=${SCREENSHOT_DISPLAY:-90}
while [ -e "/tmp/.X11-unix/X$display" ] || [ -e "/tmp/.X$display-lock" ]; do
    display=$((display + 1))
done
export DISPLAY=":$display"

home=$(mktemp -d)
pids=()
# The last started goes first, so that the display outlives its clients.
cleanup() {
    for ((i = ${#pids[@]} - 1; i >= 0; i--)); do
        kill "${pids[i]}" 2>/dev/null || true
        wait "${pids[i]}" 2>/dev/null || true
    done
    # Without a user service manager the app starts its daemon detached; its lock names it.
    local lock="$home/runtime/zelvar2/daemon.lock"
    if [ -f "$lock" ]; then
        kill "$(head -n 1 "$lock")" 2>/dev/null || true
    fi
    rm -rf "$home"
}
trap cleanup EXIT

# A limit that the app itself exceeds (no auto-kill: it would end the app), one far above
# anything running, and the display server whitelisted.
cat >"$home/.zel_var_2_config.json" <<'JSON'
{
  "check_interval": 3,
  "enable_sound": false,
  "enable_notifications": false,
  "launch_at_login": false,
  "swap_threshold": 100,
  "limits": [
    {"id": "6F1C2B0E-4D43-4C7A-9E55-0B7E6B1A2C01", "process_name": "zelvar2",
     "limit_mb": 40, "auto_kill_enabled": false, "created_at": "2026-01-15T12:00:00Z"},
    {"id": "6F1C2B0E-4D43-4C7A-9E55-0B7E6B1A2C02", "process_name": "bash",
     "limit_mb": 1500.7, "auto_kill_enabled": true, "created_at": "2026-01-15T12:00:00Z"}
  ],
  "whitelist": ["Xvfb"]
}
JSON

# The daemon doesn't run here, so the Disk tab reads an example of its log: a summary with
# two windows and a few bursts, stamped now.
state="$home/.local/state/zelvar2"
mkdir -p "$state"
now=$(date -u +%Y-%m-%dT%H:%M:%SZ)
cat >"$state/diskio.jsonl" <<JSON
{"type":"diskio_burst","timestamp":"$now","source":"process","process":"cc1plus","pid":4242,"written_mb":212.4,"window_s":30}
{"type":"diskio_burst","timestamp":"$now","source":"directory","path":"/home/ada/.cache/ccache","written_mb":96,"window_s":30}
{"type":"diskio_burst","timestamp":"$now","source":"file","path":"/var/log/syslog","written_mb":12.5,"window_s":30}
{"type":"diskio_summary","timestamp":"$now","rusage_interval_s":30,"rusage_overhead_pct":0.12,"windows":[{"window":"1m","top_writers":[{"name":"cc1plus","pid":4242,"written_mb":212.4,"read_mb":40}]},{"window":"5m","top_writers":[{"name":"cc1plus","pid":4242,"written_mb":1433.0,"read_mb":310.2},{"name":"ld","pid":4250,"written_mb":402.7,"read_mb":988},{"name":"journald","pid":310,"written_mb":18.1,"read_mb":0}],"top_directories":[{"path":"/home/ada/.cache/ccache","written_mb":905.5},{"path":"/tmp","written_mb":120}],"top_files":[{"path":"/var/log/syslog","written_mb":12.5},{"path":"/home/ada/.bash_history","written_mb":0.2}]}]}
JSON

# The power history: the daemon's samples where the app reads them, and a journal file.
journal_remote=""
for candidate in /usr/lib/systemd/systemd-journal-remote /lib/systemd/systemd-journal-remote; do
    [ -x "$candidate" ] && journal_remote=$candidate && break
done
if [ -z "$journal_remote" ]; then
    echo "error: systemd-journal-remote is missing (package systemd-journal-remote)" >&2
    exit 1
fi
python3 scripts/example-power-history.py "$home/.local/share/wattlog" "$home/power.export"
"$journal_remote" -o "$home/power.journal" "$home/power.export" 2>/dev/null
battery="$PWD/tests/fixtures/power/sysfs/energy-charging"

Xvfb "$DISPLAY" -screen 0 1280x900x24 -nolisten tcp >/dev/null 2>&1 &
pids+=($!)
for _ in $(seq 50); do
    [ -e "/tmp/.X11-unix/X$display" ] && break
    sleep 0.1
done

# A sound server of our own, with one null sink: nothing of this machine's sound is touched.
mkdir -m 700 "$home/pulse-runtime"
HOME="$home" XDG_RUNTIME_DIR="$home/pulse-runtime" pulseaudio -n --daemonize=no \
    --exit-idle-time=-1 --use-pid-file=no -L "module-null-sink sink_name=screenshots" \
    -L "module-native-protocol-unix auth-anonymous=1 socket=$home/pulse-native" \
    >"$home/pulse.log" 2>&1 &
pids+=($!)
export PULSE_SERVER="unix:$home/pulse-native"
for _ in $(seq 50); do
    pactl info >/dev/null 2>&1 && break
    sleep 0.1
done

mkdir -m 700 "$home/runtime"
HOME="$home" XDG_STATE_HOME="$home/.local/state" XDG_RUNTIME_DIR="$home/runtime" \
    ZELVAR2_POWER_SUPPLY_DIR="$battery" ZELVAR2_JOURNAL_FILES="$home/power.journal" \
    QT_QPA_PLATFORM=xcb "$program" --dashboard >"$home/app.log" 2>&1 &
pids+=($!)

window=""
for _ in $(seq 100); do
    window=$(xdotool search --onlyvisible --name '^Zelvar\+$' 2>/dev/null | head -n 1 || true)
    [ -n "$window" ] && break
    sleep 0.1
done
if [ -z "$window" ]; then
    echo "error: the dashboard didn't open; the app said:" >&2
    cat "$home/app.log" >&2
    exit 1
fi
eval "$(xdotool getwindowgeometry --shell "$window")"  # X, Y, WIDTH, HEIGHT
crop="${WIDTH}x${HEIGHT}+${X}+${Y}"
echo "dashboard window at ${X},${Y}, ${WIDTH}x${HEIGHT}"

# A click at (x, y) from the window's top left corner.
click() {
    xdotool mousemove --sync $((X + $1)) $((Y + $2)) click 1
    sleep 0.5
}

# Two cycles at the three-second interval, so the CPU column has figures.
sleep 7
# The first root's row, then "*" opens its whole subtree; the pointer then moves aside.
click 300 188
xdotool key asterisk
sleep 0.5
xdotool mousemove $((X + WIDTH - 5)) $((Y + HEIGHT - 5))
sleep 3.5
import -window root -crop "$crop" +repage "$output/ram-tab.png"

click 48 151
sleep 1
import -window root -crop "$crop" +repage "$output/add-limit-sheet.png"
xdotool key Escape
sleep 0.5

click $((WIDTH - 20)) 17
sleep 1
import -window root -crop "$crop" +repage "$output/settings.png"
xdotool key Escape
sleep 0.5

# The filter turns the tree into a flat list.
click 400 109
xdotool type --delay 50 bash
sleep 1
import -window root -crop "$crop" +repage "$output/ram-filter.png"

# The focus is in the filter, inside the tabs: Ctrl+Tab moves to the next tab.
xdotool key Escape
xdotool key ctrl+Tab
sleep 1.5
xdotool mousemove $((X + WIDTH - 5)) $((Y + HEIGHT - 5))
import -window root -crop "$crop" +repage "$output/disk-tab.png"

xdotool key ctrl+Tab
sleep 4
import -window root -crop "$crop" +repage "$output/network-tab.png"

# The Power tab loads the history when it first shows; then two of its subtabs.
xdotool key ctrl+Tab
sleep 4
import -window root -crop "$crop" +repage "$output/power-overview.png"
click 135 163
sleep 1.5
import -window root -crop "$crop" +repage "$output/power-battery.png"
click 212 163
sleep 1.5
xdotool mousemove $((X + WIDTH - 5)) $((Y + HEIGHT - 5))
import -window root -crop "$crop" +repage "$output/power-timeline.png"

# Silence played without end: the speaker runs while the Audio tab is taken. The subtab
# buttons keep the keyboard focus out of the tab bar, so the tab is clicked.
paplay --raw --format=s16le --rate=44100 --channels=1 /dev/zero &
pids+=($!)
click 357 49
sleep 4
import -window root -crop "$crop" +repage "$output/audio-tab.png"

# A window manager, so that the focus has somewhere to go; the dashboard gets its frame, and
# its place is measured again. Then two small clients take the focus in turn, and finally a
# short visit of one of them before the dashboard takes it back counts as a theft.
openbox >/dev/null 2>&1 &
pids+=($!)
sleep 1.5
xmessage -geometry +40+40 "A message" >/dev/null 2>&1 &
pids+=($!)
display -geometry +80+80 -size 200x120 xc:SteelBlue >/dev/null 2>&1 &
pids+=($!)
sleep 1.5
message=$(xdotool search --onlyvisible --class Xmessage | head -n 1)
picture=$(xdotool search --onlyvisible --class Display | head -n 1)
for target in "$message" "$picture" "$window" "$message" "$picture" "$window" "$message" "$window"; do
    xdotool windowactivate --sync "$target" >/dev/null 2>&1 || true
    sleep 1.2
done
# Under the window manager xdotool reports the frame's offset; xwininfo the client's place.
X=$(xwininfo -id "$window" | awk '/Absolute upper-left X/ {print $NF}')
Y=$(xwininfo -id "$window" | awk '/Absolute upper-left Y/ {print $NF}')
crop="${WIDTH}x${HEIGHT}+${X}+${Y}"
click 437 49
sleep 1
xdotool windowraise "$window"
sleep 1
import -window root -crop "$crop" +repage "$output/focus-tab.png"

echo "Saved $output/ram-tab.png, add-limit-sheet.png, settings.png, ram-filter.png, disk-tab.png, network-tab.png, power-overview.png, power-battery.png, power-timeline.png, audio-tab.png and focus-tab.png"
