#!/bin/bash
# Installs and builds what a command of this project needs on this machine, and says so when that takes
# long: prepare.sh TARGET [LIST...], a target of the build, and lists of packages besides "demo".
set -euo pipefail
cd "$(dirname "$0")/.."
if [ ! -e "build/host/lib_kalvorn.so" ]; then
    echo "Installing what is missing and building; this takes a few minutes." >&2
fi
scripts/install.sh demo "${@:2}" >&2
scripts/build.sh host "$1" >&2
