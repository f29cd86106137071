#!/usr/bin/env python3
"""Writes an example power history ending now, for the dashboard's screenshots.

    scripts/example-power-history.py SAMPLES_DIR JOURNAL_EXPORT

SAMPLES_DIR (the daemon's power folder, $XDG_DATA_HOME/wattlog on Linux) gets its two sample
files, battery-samples.jsonl and correlation/samples.jsonl, one sample every five minutes over
the last two days;
JOURNAL_EXPORT gets journal entries in the export format (for systemd-journal-remote), in
the words that logind, systemd-sleep, the kernel and systemd-coredump use: two nights of lid
close and suspend, the mornings' resume, the adapter plugged and unplugged, a reboot, an
out-of-memory kill and a core dump. The battery falls on battery and rises on AC along the
same plan, so the chart, the lanes and the sessions agree.
"""
import json
import math
import os
import sys
import time

samples_dir, export_path = sys.argv[1], sys.argv[2]
os.makedirs(os.path.join(samples_dir, "correlation"), exist_ok=True)
now = time.time()
start = now - 2 * 86400
step = 300

# (hours from the start, what happens); the plan decides the power source in between.
plan = [
    (0.0, "unplug"), (3.0, "plug"), (6.5, "lid-sleep"), (14.5, "wake"), (15.0, "unplug"),
    (19.0, "plug"), (20.5, "oom"), (22.0, "reboot"), (26.0, "unplug"), (28.0, "crash"),
    (30.5, "lid-sleep"), (38.0, "wake"), (39.0, "plug"), (43.0, "unplug"),
]

entries = []
boot = ["5b2f0c1e9d8a4b7c8e6f1a2b3c4d5e6f"]


def entry(at, identifier, message):
    entries.append((int(at * 1_000_000) + len(entries), boot[0], identifier, message))


for hours, what in plan:
    at = start + hours * 3600
    if what == "unplug":
        entry(at, "kernel", "ACPI: AC: AC Adapter [ADP1] (off-line)")
    elif what == "plug":
        entry(at, "kernel", "ACPI: AC: AC Adapter [ADP1] (on-line)")
    elif what == "lid-sleep":
        entry(at, "systemd-logind", "Lid closed.")
        entry(at + 1, "systemd-logind", "Suspending...")
        entry(at + 2, "systemd-sleep", "Entering sleep state 'suspend'...")
        entry(at + 2, "kernel", "PM: suspend entry (deep)")
    elif what == "wake":
        entry(at, "kernel", "PM: suspend exit")
        entry(at + 1, "systemd-sleep", "System returned from sleep state.")
        entry(at + 1, "systemd-logind", "Lid opened.")
    elif what == "oom":
        entry(at, "kernel", "Out of memory: Killed process 15784 (python3) total-vm:11964kB, "
              "anon-rss:4288kB, file-rss:3028kB, shmem-rss:0kB")
    elif what == "crash":
        entry(at, "systemd-coredump", "Process 2410 (gnome-calculator) of user 1000 dumped core.")
    elif what == "reboot":
        boot[0] = "7c3e1d2f0a9b4c8d9f7e2b3c4d5e6f70"
        entry(at, "kernel", "Linux version 6.1.0-27-amd64 (debian-kernel@lists.debian.org)")

with open(export_path, "w") as export:
    for realtime, boot_id, identifier, message in entries:
        export.write(f"__REALTIME_TIMESTAMP={realtime}\n_BOOT_ID={boot_id}\n"
                     f"SYSLOG_IDENTIFIER={identifier}\nMESSAGE={message}\n\n")


def state_at(t):
    """(on AC, asleep) at time t along the plan."""
    on_ac, asleep = True, False
    for hours, what in plan:
        if start + hours * 3600 > t:
            break
        on_ac = {"unplug": False, "plug": True}.get(what, on_ac)
        asleep = {"lid-sleep": True, "wake": False}.get(what, asleep)
    return on_ac, asleep


percent = 100.0
with open(os.path.join(samples_dir, "battery-samples.jsonl"), "w") as battery, \
        open(os.path.join(samples_dir, "correlation", "samples.jsonl"), "w") as correlation:
    t = start
    while t <= now:
        on_ac, asleep = state_at(t)
        wave = math.sin(t / 1700.0)
        if on_ac:
            watts = 0.0 if percent >= 99.5 else 18.0 + 4 * wave
            percent = min(100.0, percent + (step / 3600) * 28)
        else:
            watts = 0.6 if asleep else 7.5 + 3.5 * wave
            percent = max(4.0, percent - (step / 3600) * (0.5 if asleep else 11))
        charging = on_ac and percent < 99.5
        current = int(watts / 11.8 * 1000) * (1 if on_ac else -1)
        if not asleep:
            battery.write(json.dumps({
                "ts": round(t, 3), "source": "AC" if on_ac else "Battery", "charging": charging,
                "current": current, "voltage": 11800, "capacity": int(percent * 52),
                "max_capacity": 5200, "design_capacity": 5700,
                "temperature_c": round(30.5 + 2 * wave, 1), "cycle_count": 412,
                "percent": int(percent), "watts": round(watts, 2)}) + "\n")
            cpu = max(2.0, min(96.0, 22 + 18 * wave + 10 * math.sin(t / 333.0)))
            correlation.write(json.dumps({
                "ts": round(t, 3), "process_count": 300 + int(40 * wave),
                "cpu_util_pct": round(cpu, 1), "ram_used_pct": round(58 + 9 * wave, 1),
                "swap_used_mb": 512, "net_in_kbps": round(120 + 90 * wave, 1),
                "net_out_kbps": round(24 + 12 * wave, 1),
                "display_brightness_pct": 70, "battery_watts": round(watts + cpu * 0.08, 2),
                "battery_percent": int(percent), "source": "AC" if on_ac else "Battery",
                "is_charging": charging}) + "\n")
        t += step
