#!/usr/bin/env bash
# Runs the libFuzzer targets of build/fuzz/bin one after the other, each for <seconds>:
#     scripts/fuzz.sh <seconds> [target...]     (every target when none is named)
# Each target keeps a corpus in build/fuzz/corpus/<target>, seeded from the matching files of
# tests/fixtures/ and fuzz/seeds/<target>/ (copied in, so the fuzzer's additions stay out of the
# source tree), and writes what it finds to build/fuzz/artifacts/<target>/. Fails when any
# target finds a crash, a leak, a time-out or a sanitizer report, naming the target and the
# input; ends with each target's number of executions.
set -uo pipefail
cd "$(dirname "$0")/.."

if [ $# -lt 1 ]; then
    echo "usage: $0 <seconds> [target...]" >&2
    exit 2
fi
seconds=$1
shift
build=build/fuzz
if [ $# -gt 0 ]; then
    targets=("$@")
else
    mapfile -t targets < <(cd "$build/bin" && ls)
fi

# The fixtures of tests/ that hold what a target reads.
fixtures_of() {
    case $1 in
        SocketStatisticsParser) echo tests/fixtures/network/ss-* ;;
        NetworkNameSsid) echo tests/fixtures/network/networksetup-* ;;
        LaunchctlList) echo tests/fixtures/launchctl/* ;;
        SystemdShow) echo tests/fixtures/systemd/* ;;
        PsFallbackMap) echo tests/fixtures/ps/* ;;
        LsofWriters) echo tests/fixtures/disk/*lsof* ;;
    esac
}

failed=()
summary=()
for target in "${targets[@]}"; do
    binary=$build/bin/$target
    if [ ! -x "$binary" ]; then
        echo "fuzz: no target $target in $build/bin" >&2
        failed+=("$target: no such target")
        continue
    fi
    corpus=$build/corpus/$target
    artifacts=$build/artifacts/$target
    log=$build/logs/$target.log
    mkdir -p "$corpus" "$artifacts" "$(dirname "$log")"
    for seed in $(fixtures_of "$target") fuzz/seeds/"$target"/*; do
        if [ -f "$seed" ]; then
            cp "$seed" "$corpus/"
        fi
    done

    echo "fuzz: $target for ${seconds}s"
    # -timeout: one input that takes this long counts as a hang.
    "$binary" -max_total_time="$seconds" -timeout=10 -print_final_stats=1 \
        -artifact_prefix="$artifacts/" "$corpus" >"$log" 2>&1
    status=$?
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
    if [ $status -ne 0 ]; then
        artifact=$(sed -n 's/.*Test unit written to \(.*\)$/\1/p' "$log" | tail -1)
        echo "fuzz: $target FAILED (exit $status), input: ${artifact:-none written}, log: $log" >&2
        grep -m1 -E '^(==[0-9]+==ERROR|SUMMARY|.*runtime error|fuzz check failed|.*qFatal)' "$log" >&2
        failed+=("$target: ${artifact:-see $log}")
    fi
    summary+=("$(printf '%-24s %12s executions%s' "$target" "${runs:-?}" \
        "$([ $status -ne 0 ] && echo ', FAILED')")")
done

echo "fuzz: executions per target (${seconds}s each)"
printf '  %s\n' "${summary[@]}"
if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzz: ${#failed[@]} target(s) failed:" >&2
    printf '  %s\n' "${failed[@]}" >&2
    exit 1
fi
