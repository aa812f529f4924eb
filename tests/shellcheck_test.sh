#!/bin/bash
# Nothing is found by shellcheck in any shell script: shellcheck_test.sh SOURCE_DIR
set -euo pipefail
cd "$1"
mapfile -t scripts < <(
    grep -lIE --directories=skip '^#!.*\b(ba)?sh$' -- *
    grep -rlIE '^(#!.*\b(ba)?sh|#!.*\bbats|# shellcheck shell=.*)$' ctl platform scripts simulator tests tools)
[ "${#scripts[@]}" -gt 20 ]
shellcheck --external-sources --source-path=SCRIPTDIR "${scripts[@]}"
