#!/bin/bash
# Configures a preset in build/PRESET and builds it, or the given targets: build.sh PRESET [TARGET...]
# Shows how far it is on a terminal, and elsewhere nothing unless something fails.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
build=build/$preset
log=$build/build.log

# A build tree names its source folder everywhere, so it is of no use after a move.
configured=$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' "$build/CMakeCache.txt" 2>/dev/null || true)
if [ -n "$configured" ] && ! [ "$configured" -ef . ]; then
    echo "$build was made for $configured: building it anew." >&2
    rm -rf "$build"
fi

mkdir -p "$build"
# One build at a time: commands that build what they run may be started together.
exec {lock}<"$build"
flock "$lock"
# What was configured for the demo, where no library for tests and measurements was installed, lacks
# them.
wanted=("${@:2}")
if [ $# = 1 ]; then
    wanted=(kalvorn_tests)
    [ "$preset" != host ] || wanted+=(kalvorn_soak)
fi
lacks_wanted() {
    local target
    for target in "${wanted[@]}"; do grep -q "^build $target:" "$build/build.ninja" || return 0; done
    return 1
}
if [ ! -f "$build/build.ninja" ] || [ CMakePresets.json -nt "$build/build.ninja" ] || lacks_wanted; then
    cmake --preset "$preset" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
fi
# How far ninja is, on one line; nothing when there is nothing to build.
show_progress() {
    local line
    while IFS= read -r line; do
        case $line in
            'ninja: Entering '* | 'ninja: no work '* | *'Re-checking globbed directories...') ;;
            '['*) printf '\r\033[K%.79s' "$line" ;;
            *) printf '\r\033[K%s\n' "$line" ;;
        esac
    done
    printf '\r\033[K'
}

if [ -t 1 ]; then
    ninja -C "$build" "${@:2}" | show_progress
else
    ninja -C "$build" "${@:2}" >"$log" 2>&1 || { grep -vE '^\[|^ninja: Entering' "$log" >&2; exit 1; }
fi
