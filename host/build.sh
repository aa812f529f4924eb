#!/bin/bash
# Configures and builds a preset into build/<preset>; quiet unless something fails.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
mkdir -p "build/$preset"
log=build/$preset/build.log
if [ ! -f "build/$preset/build.ninja" ]; then
    cmake --preset "$preset" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
fi
ninja -C "build/$preset" >"$log" 2>&1 || { grep -vE '^\[|^ninja: Entering' "$log" >&2; exit 1; }
