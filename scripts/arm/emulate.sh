#!/bin/bash
# Runs a program for 32-bit ARM: emulate.sh PROGRAM [ARGUMENT...]
exec qemu-arm-static -L "$(dirname "$0")/../../build/arm-tree" "$@"
