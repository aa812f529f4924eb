#!/bin/bash
# Runs a program for 32-bit ARM: emulate.sh PROGRAM [ARGUMENT...]
set -euo pipefail
here=$(realpath "$(dirname "$0")")
# A death test starts its argument 0 anew, which the machine has to be able to run: so that is this
# script, and the program is known from the first time.
if [ -z "${EMULATED_PROGRAM:-}" ]; then
    export EMULATED_PROGRAM=$1
    shift
fi
exec qemu-arm-static -L "$here/../../build/arm-tree" -0 "$here/emulate.sh" "$EMULATED_PROGRAM" "$@"
