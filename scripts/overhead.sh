#!/usr/bin/env bash
# What each resource monitor costs the machine it watches, measured side by side.
#
#   scripts/overhead.sh            (or: make overhead)
#
# Runs the tray app (under Xvfb with a tray host when both are installed, else on Qt's
# offscreen platform; with a throw-away HOME; on the user's session bus, else a private one),
# htop and btop (each in its own tmux server, in a 200x50 terminal) and `top -b -d 5`, all at
# their default refresh rates. After a warm-up it reads each one's CPU time and memory, waits
# the window, reads again and prints a table: CPU % of one core over the window (user + system
# time of the whole process tree: every live process of it, plus the children they have
# reaped), RSS and PSS (/proc/<pid>/smaps_rollup, summed over the tree) at the end of the
# window. The same is then done with extra idle processes (`sleep` children of this script).
#
# Environment:
#   OVERHEAD_SECONDS  the measured window of each round, in seconds (120)
#   OVERHEAD_WARMUP   seconds between starting the monitors and the first reading (10)
#   OVERHEAD_EXTRA    the rounds' numbers of extra idle processes ("0 1000 3000")
#   OVERHEAD_NO_DEPS  set to 1 to skip scripts/install-deps.sh (a machine without root)
#
# Everything started here is stopped on exit, also on Ctrl-C.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${OVERHEAD_SECONDS:-120}
warmup=${OVERHEAD_WARMUP:-10}
extra_rounds=${OVERHEAD_EXTRA:-0 1000 3000}
for value in "$seconds" "$warmup" $extra_rounds; do
    if ! [[ $value =~ ^[0-9]+$ ]]; then
        echo "error: '$value' is not a whole number (OVERHEAD_SECONDS, OVERHEAD_WARMUP, OVERHEAD_EXTRA)" >&2
        exit 2
    fi
done
if [ "$seconds" -lt 1 ]; then
    echo "error: OVERHEAD_SECONDS must be at least 1" >&2
    exit 2
fi

if [ "${OVERHEAD_NO_DEPS:-0}" != 1 ]; then
    scripts/install-deps.sh
fi
cmake --preset release >/dev/null
cmake --build --preset release --target zelvar2
app=$PWD/build/release/src/app/zelvar2

# ---------------------------------------------------------------------------------------------
# Everything started, stopped in reverse order on exit.

work=$(mktemp -d "${TMPDIR:-/tmp}/zelvar2-overhead.XXXXXX")
monitor_pids=()
tmux_servers=()
sleepers=()
infrastructure_pids=()

stop_pids() {
    [ $# -eq 0 ] && return 0
    kill "$@" 2>/dev/null || true
    # A monitor that ignores SIGTERM for two seconds gets SIGKILL.
    for _ in $(seq 20); do
        kill -0 "$@" 2>/dev/null || break
        sleep 0.1
    done
    kill -KILL "$@" 2>/dev/null || true
    wait "$@" 2>/dev/null || true
}

stop_monitors() {
    for server in ${tmux_servers[@]+"${tmux_servers[@]}"}; do
        tmux -L "$server" kill-server 2>/dev/null || true
    done
    tmux_servers=()
    stop_pids ${monitor_pids[@]+"${monitor_pids[@]}"}
    monitor_pids=()
}

stop_sleepers() {
    stop_pids ${sleepers[@]+"${sleepers[@]}"}
    sleepers=()
}

# A sleep in the background that `wait` waits for: unlike a sleep in the foreground, a signal
# to this script interrupts it at once.
pause_pid=
pause_for() {
    sleep "$1" &
    pause_pid=$!
    wait "$pause_pid"
    pause_pid=
}

cleanup() {
    if [ -n "$pause_pid" ]; then
        stop_pids "$pause_pid"
    fi
    stop_monitors
    stop_sleepers
    for ((i = ${#infrastructure_pids[@]} - 1; i >= 0; i--)); do
        stop_pids "${infrastructure_pids[i]}"
    done
    rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# ---------------------------------------------------------------------------------------------
# The tools. A missing monitor is left out of the tables with a note; a missing tool that the
# run can't do without stops it.

for tool in tmux top awk getconf; do
    if ! command -v "$tool" >/dev/null 2>&1; then
        echo "error: $tool is missing; run scripts/install-deps.sh" >&2
        exit 1
    fi
done
notes=()
available=(zelvar2)
for tool in htop btop; do
    if command -v "$tool" >/dev/null 2>&1; then
        available+=("$tool")
    else
        notes+=("$tool is missing (package $tool): left out")
    fi
done
available+=(top)

# The tray app's desktop: a virtual X display with a tray on it, when there are both.
display_mode=offscreen
if command -v Xvfb >/dev/null 2>&1 && command -v trayer >/dev/null 2>&1; then
    display=90
    while [ -e "/tmp/.X11-unix/X$display" ] || [ -e "/tmp/.X$display-lock" ]; do
        display=$((display + 1))
    done
    Xvfb ":$display" -screen 0 800x120x24 -nolisten tcp >/dev/null 2>&1 &
    infrastructure_pids+=($!)
    for _ in $(seq 50); do
        [ -e "/tmp/.X11-unix/X$display" ] && break
        sleep 0.1
    done
    if [ -e "/tmp/.X11-unix/X$display" ]; then
        DISPLAY=":$display" trayer --edge top --align left --widthtype pixel --width 240 \
            --heighttype pixel --height 32 --SetDockType true >/dev/null 2>&1 &
        infrastructure_pids+=($!)
        display_mode="Xvfb :$display with trayer"
    else
        notes+=("Xvfb did not start: the tray app runs offscreen")
    fi
else
    notes+=("Xvfb or trayer is missing (packages xvfb, trayer): the tray app runs offscreen")
fi

# The session bus it would have on a desktop: the user's, where the user's service manager and
# notification server are. Without one, a private bus, so that nothing is autolaunched on the
# display and left behind.
session_bus=${DBUS_SESSION_BUS_ADDRESS:-}
bus_mode="the session bus"
if [ -z "$session_bus" ] && [ -n "${XDG_RUNTIME_DIR:-}" ] && [ -S "$XDG_RUNTIME_DIR/bus" ]; then
    session_bus="unix:path=$XDG_RUNTIME_DIR/bus"
fi
if [ -z "$session_bus" ] && command -v dbus-daemon >/dev/null 2>&1; then
    dbus-daemon --session --nofork --print-address=3 3>"$work/bus-address" >/dev/null 2>&1 &
    infrastructure_pids+=($!)
    for _ in $(seq 50); do
        [ -s "$work/bus-address" ] && break
        sleep 0.1
    done
    session_bus=$(head -n 1 "$work/bus-address" 2>/dev/null || true)
    bus_mode="a private session bus"
fi
if [ -z "$session_bus" ]; then
    bus_mode="no session bus"
fi

app_home="$work/home"
mkdir -p "$app_home"
runtime_dir=${XDG_RUNTIME_DIR:-$work/runtime}
mkdir -p "$runtime_dir"
chmod 700 "$runtime_dir"

# Starts one monitor and sets `started` to the pid at the root of its process tree.
started=
start_monitor() {
    local name=$1
    case $name in
        zelvar2)
            # env takes every -u before the first assignment.
            local unset=(-u XDG_CONFIG_HOME -u XDG_DATA_HOME -u XDG_STATE_HOME)
            local assign=(HOME="$app_home" XDG_RUNTIME_DIR="$runtime_dir")
            if [ -n "$session_bus" ]; then
                assign+=(DBUS_SESSION_BUS_ADDRESS="$session_bus")
            else
                unset+=(-u DBUS_SESSION_BUS_ADDRESS)
            fi
            if [ "$display_mode" = offscreen ]; then
                unset+=(-u DISPLAY)
                assign+=(QT_QPA_PLATFORM=offscreen)
            else
                assign+=(DISPLAY=":$display" QT_QPA_PLATFORM=xcb)
            fi
            env "${unset[@]}" "${assign[@]}" "$app" >>"$work/zelvar2.log" 2>&1 &
            started=$!
            monitor_pids+=("$started")
            ;;
        htop | btop)
            local server="zelvar2-overhead-$name-$$"
            # HOME keeps each tool's configuration out of the user's own; btop refuses to draw
            # without a UTF-8 locale.
            env HOME="$app_home" LANG=C.UTF-8 LC_ALL=C.UTF-8 TERM=xterm-256color \
                tmux -L "$server" -f /dev/null new-session -d -s "$name" -x 200 -y 50 "exec $name"
            tmux_servers+=("$server")
            started=$(tmux -L "$server" display-message -p -t "$name" '#{pane_pid}')
            ;;
        top)
            top -b -d 5 >/dev/null &
            started=$!
            monitor_pids+=("$started")
            ;;
    esac
}

# ---------------------------------------------------------------------------------------------
# Measurement.

ticks_per_second=$(getconf CLK_TCK)

# One line a root pid given: "root ticks pid pid ...", with ticks = utime + stime + cutime +
# cstime summed over the root and every live descendant, which are listed after it. The command
# name in /proc/<pid>/stat may hold spaces and parentheses, so fields are counted from the last
# ')'.
tree_snapshot() {
    find /proc -maxdepth 2 -path '/proc/[0-9]*/stat' -exec cat {} + 2>/dev/null |
        awk -v roots="$*" '
            {
                close_paren = 0
                for (i = length($0); i > 0; i--) if (substr($0, i, 1) == ")") { close_paren = i; break }
                if (!close_paren) next
                pid = $1 + 0
                n = split(substr($0, close_paren + 2), f, " ")
                if (n < 15) next
                ticks[pid] = f[12] + f[13] + f[14] + f[15]
                children[f[2] + 0] = children[f[2] + 0] " " pid
            }
            END {
                n = split(roots, r, " ")
                for (k = 1; k <= n; k++) {
                    total = 0; members = ""
                    queue = r[k]
                    while (queue != "") {
                        m = split(queue, q, " "); queue = ""
                        for (j = 1; j <= m; j++) {
                            p = q[j] + 0
                            if (!(p in ticks)) continue
                            total += ticks[p]; members = members " " p
                            queue = queue children[p]
                        }
                    }
                    print r[k], total members
                }
            }'
}

# "rss_kib pss_kib" summed over the pids given.
memory_of() {
    local pid rss=0 pss=0 r p
    for pid in "$@"; do
        read -r r p < <(awk '/^Rss:/ { r = $2 } /^Pss:/ { p = $2 } END { print r + 0, p + 0 }' \
            "/proc/$pid/smaps_rollup" 2>/dev/null || echo "0 0")
        rss=$((rss + r))
        pss=$((pss + p))
    done
    echo "$rss $pss"
}

process_count() {
    # shellcheck disable=SC2010  # the count as `ls /proc | grep -c` gives it by hand
    ls /proc | grep -c '^[0-9]'
}

now_ns() {
    date +%s%N
}

run_round() {
    local extra=$1
    stop_sleepers
    for ((i = 0; i < extra; i++)); do
        sleep 100000 &
        sleepers+=($!)
    done

    local names=() roots=()
    for name in "${available[@]}"; do
        start_monitor "$name"
        names+=("$name")
        roots+=("$started")
    done
    pause_for "$warmup"

    local processes start end root ticks members
    processes=$(process_count)
    declare -A start_ticks=() end_ticks=() tree=()
    start=$(now_ns)
    while read -r root ticks members; do
        start_ticks[$root]=$ticks
    done < <(tree_snapshot "${roots[@]}")
    pause_for "$seconds"
    while read -r root ticks members; do
        end_ticks[$root]=$ticks
        tree[$root]=$members
    done < <(tree_snapshot "${roots[@]}")
    end=$(now_ns)

    echo
    echo "== $processes processes ($extra extra idle), ${seconds} s window, $(nproc) cores =="
    printf '%-10s %14s %10s %10s\n' monitor "CPU % of core" "RSS MiB" "PSS MiB"
    for i in "${!names[@]}"; do
        root=${roots[i]}
        if [ -z "${tree[$root]:-}" ]; then
            printf '%-10s %14s\n' "${names[i]}" "exited early"
            if [ "${names[i]}" = zelvar2 ]; then
                tail -n 5 "$work/zelvar2.log" | sed 's/^/    /'
            fi
            continue
        fi
        # shellcheck disable=SC2086  # a list of pids
        read -r rss pss < <(memory_of ${tree[$root]})
        awk -v name="${names[i]}" -v a="${start_ticks[$root]:-0}" -v b="${end_ticks[$root]}" \
            -v hz="$ticks_per_second" -v ns=$((end - start)) -v rss="$rss" -v pss="$pss" \
            'BEGIN { printf "%-10s %14.2f %10.1f %10.1f\n", name, (b - a) / hz / (ns / 1e9) * 100,
                     rss / 1024, pss / 1024 }'
    done
    stop_monitors
}

echo "Overhead of each monitor: ${warmup} s warm-up, then a ${seconds} s window a round."
echo "zelvar2: $display_mode, $bus_mode, HOME=$app_home"
for note in ${notes[@]+"${notes[@]}"}; do
    echo "note: $note"
done
for extra in $extra_rounds; do
    run_round "$extra"
done
