#!/usr/bin/env bash
# Checks the per-system file lists of the CMake files, which no build here can try for macOS:
#     scripts/check-apple-sources.sh [SOURCE_ROOT]      (the repository by default)
#
#  1. Every .mm and .cpp of src/platform/macos/ is listed in the Apple branch of
#     src/platform/CMakeLists.txt, except plain-data files built on every system (they include
#     no Apple-only header); every file the Apple branch lists exists there.
#  2. Every .cpp of src/platform/linux/ is listed in the Linux branch or, as plain data, on
#     every system; every file the Linux branch lists exists.
#  3. Nothing under linux/ is listed outside a Linux branch, and nothing under macos/ in a
#     Linux branch.
#  4. No source that macOS compiles (the Apple branch, or lists outside any system branch,
#     in src/, tests/ and bench/) includes a Linux-only header (platform/linux/, D-Bus, the
#     private session bus of the tests).
#  5. D-Bus and pkg-config are asked for only inside a branch that macOS doesn't take.
# Prints each fault and exits 1 when there is one.
set -uo pipefail
root=${1:-$(cd "$(dirname "$0")/.." && pwd)}
faults=0
fault() {
    echo "check-apple-sources: $*" >&2
    faults=$((faults + 1))
}

# Each line of a CMake file, prefixed with the kind of branch it sits in: A (Apple), L (Linux,
# or the else of an Apple test), N (another branch of a Linux test) or C (every system).
classify() {
    awk '
    function kind(line, parent) {
        if (line ~ /NOT[ \t]+APPLE/) return "L"
        if (line ~ /APPLE/) return "A"
        if (line ~ /CMAKE_SYSTEM_NAME STREQUAL "Linux"/) return "L"
        return parent
    }
    {
        line = $0
        sub(/#.*/, "", line)
        if (line ~ /^[ \t]*if[ \t]*\(/) {
            parent = depth > 0 ? stack[depth] : "C"
            depth++; stack[depth] = kind(line, parent)
            first[depth] = stack[depth]; linux[depth] = stack[depth] == "L"
        } else if (line ~ /^[ \t]*elseif[ \t]*\(/) {
            parent = depth > 1 ? stack[depth - 1] : "C"
            stack[depth] = kind(line, parent)
            if (stack[depth] == "L") linux[depth] = 1
        } else if (line ~ /^[ \t]*else[ \t]*\(/) {
            parent = depth > 1 ? stack[depth - 1] : "C"
            if (linux[depth]) stack[depth] = "N"
            else if (first[depth] == "A") stack[depth] = "L"
            else stack[depth] = parent
        } else if (line ~ /^[ \t]*endif[ \t]*\(/) {
            depth--
        }
        print (depth > 0 ? stack[depth] : "C") "\t" line
    }' "$1"
}

# The source files a classified CMake file names in branches of the given kinds, leaving out
# those that a line only gives properties to.
listed() {
    classify "$1" | awk -F'\t' -v kinds="$2" 'index(kinds, $1) && $2 !~ /set_source_files_properties/ { print $2 }' |
        grep -oE '[A-Za-z0-9_./+-]+\.(cpp|mm|h)' | sort -u
}

apple_only_header='^[[:space:]]*#[[:space:]]*(include|import)[[:space:]]*<(libproc|mach/|sys/sysctl|sys/proc_info|net/if_var|(Foundation|CoreFoundation|AppKit|Cocoa|IOKit|UserNotifications|AVFoundation)/)'
linux_only_header='^[[:space:]]*#[[:space:]]*include[[:space:]]*["<](platform/linux/|support/SessionBus\.h|QDBus|QtDBus/|linux/|sys/prctl|systemd/|canberra)'

platform="$root/src/platform"
platform_cmake="$platform/CMakeLists.txt"
[ -f "$platform_cmake" ] || { echo "check-apple-sources: no $platform_cmake" >&2; exit 1; }
apple=$(listed "$platform_cmake" A)
linux=$(listed "$platform_cmake" L)
everywhere=$(listed "$platform_cmake" C)

# 1 and 2: each system's folder against its branch.
for file in "$platform"/macos/*.mm "$platform"/macos/*.cpp; do
    [ -e "$file" ] || continue
    name=macos/$(basename "$file")
    if grep -qxF "$name" <<<"$apple"; then continue; fi
    if grep -qxF "$name" <<<"$everywhere" && ! grep -qE "$apple_only_header" "$file"; then
        continue
    fi
    fault "$name is not in the Apple branch of src/platform/CMakeLists.txt"
done
for file in "$platform"/linux/*.cpp; do
    [ -e "$file" ] || continue
    name=linux/$(basename "$file")
    grep -qxF "$name" <<<"$linux
$everywhere" ||
        fault "$name is not in the Linux branch of src/platform/CMakeLists.txt"
done
for name in $apple $linux; do
    [ -e "$platform/$name" ] || fault "src/platform/CMakeLists.txt lists $name, which doesn't exist"
done

# 3: folders in the wrong branch.
for name in $apple; do
    case $name in linux/*) fault "the Apple branch lists the Linux file $name" ;; esac
done
for name in $linux; do
    case $name in macos/*) fault "the Linux branch lists the macOS file $name" ;; esac
done
for name in $everywhere; do
    case $name in
    linux/*) grep -qE "$linux_only_header" "$platform/$name" &&
        fault "$name includes Linux-only headers but is built on every system" ;;
    esac
done

# 4 and 5: every CMake file of src/, tests/ and bench/.
while IFS= read -r cmake; do
    dir=$(dirname "$cmake")
    relative=${cmake#"$root"/}
    for name in $(listed "$cmake" AC); do
        source="$dir/$name"
        [ -f "$source" ] || continue
        grep -qE "$linux_only_header" "$source" &&
            fault "${source#"$root"/} includes a Linux-only header but macOS builds it ($relative)"
    done
    asks=$(classify "$cmake" | awk -F'\t' '$1 ~ /[AC]/ && $2 ~ /DBus|PkgConfig|pkg_check_modules/ { print $2 }')
    [ -z "$asks" ] || fault "$relative asks for D-Bus or pkg-config on macOS:$(printf '\n%s' "$asks")"
done < <(find "$root/CMakeLists.txt" "$root/src" "$root/tests" "$root/bench" -name CMakeLists.txt 2>/dev/null)

if [ "$faults" -gt 0 ]; then
    echo "check-apple-sources: $faults fault(s)" >&2
    exit 1
fi
echo "check-apple-sources: the Apple and Linux lists agree with the sources"
