#!/bin/bash
# Plays the session of a built tree: run.sh BUILD_DIR DEVICE
# From inside the tree and by relative names, because what has to be preloaded, searched and passed
# through the emulator is split at blanks, colons and commas.
set -euo pipefail
. "$(dirname "$0")/../../scripts/common.sh"
describe "$2"
cd "$1"
mapfile -t java <demo_command
export "${java[0]}"
export KALVORN_MISC=misc LD_LIBRARY_PATH=interpolation
export LC_ALL=C.UTF-8  # else Java finds nothing at a path with letters beyond ASCII
if [ -t 1 ] && [ -z "${NO_COLOR:-}" ]; then export KALVORN_COLOUR=1; fi
exec "${java[@]:1}" -Djava.library.path=. -cp java/classes:java/samples:java/simulated:java/demo \
    com.quorvin.kalvornii.demo.RunningTest "$2" "$text"
