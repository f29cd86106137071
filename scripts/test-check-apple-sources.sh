#!/usr/bin/env bash
# Shows that check-apple-sources.sh finds each kind of fault: on copies of the CMake files and
# sources, each broken in one way, the check must fail, and on an unbroken copy pass.
#     scripts/test-check-apple-sources.sh [SOURCE_ROOT]
set -uo pipefail
root=${1:-$(cd "$(dirname "$0")/.." && pwd)}
check="$root/scripts/check-apple-sources.sh"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

# try <expected status> <description> <command that breaks the copy in $copy>
try() {
    local expected=$1 description=$2
    copy="$work/copy"
    rm -rf "$copy" && mkdir -p "$copy"
    cp -r "$root/CMakeLists.txt" "$root/src" "$root/tests" "$root/bench" "$copy/"
    (cd "$copy" && eval "$3")
    "$check" "$copy" >/dev/null 2>&1
    local status=$?
    if [ "$status" -ne "$expected" ]; then
        echo "FAIL: $description: the check exited $status, not $expected" >&2
        failures=$((failures + 1))
    fi
}

try 0 "the sources as they are" ":"
try 1 "a macOS adapter missing from the Apple branch" \
    "sed -i '/^ *macos\/MacDesktop\.mm\$/d' src/platform/CMakeLists.txt"
try 1 "a new macOS adapter not listed" "touch src/platform/macos/MacSomethingNew.mm"
try 1 "a listed macOS file that doesn't exist" "rm src/platform/macos/MacVolumeSource.cpp"
try 1 "a Linux adapter in the Apple branch" \
    "sed -i 's|^\( *\)macos/MacDesktop\.mm\$|&\n\1linux/ProcStat.cpp|' src/platform/CMakeLists.txt"
try 1 "a Linux-only test built on every system" \
    "sed -i 's|^zelvar_add_test(alerts \${alerts_tests}|& linux/FreedesktopDeliveryTest.cpp|' tests/alerts/CMakeLists.txt"
try 1 "D-Bus asked for on every system" \
    "sed -i 's|COMPONENTS Core Gui Widgets)|COMPONENTS Core Gui Widgets DBus)|' CMakeLists.txt"
try 1 "a shared source including a Linux adapter" \
    "sed -i '1i #include \"platform/linux/ProcStat.h\"' src/platform/portable/MachTimebase.cpp"

[ "$failures" -eq 0 ] && echo "check-apple-sources.sh finds every fault tried"
exit $((failures > 0))
