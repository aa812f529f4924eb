#!/bin/bash
# Builds and plays the demo, and runs the tests that need little more, in a copy of the project as a
# stranger may have it: at a path with blanks, a comma and letters beyond ASCII, moved there after it was
# configured, and with no locale set.
set -euo pipefail
cd "$(dirname "$0")/.."

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
first="$work/first"
strange="$work/my Prüfstand, 測試"
as_stranger() { env -i PATH="$PATH" HOME="$HOME" "$@"; }

mkdir "$first"
tar -c --exclude=./build --exclude=./.git . | tar -x -C "$first"
(cd "$first" && as_stranger cmake --preset host >/dev/null)
mv "$first" "$strange"
cd "$strange"

as_stranger ./demo mixed >"$work/shown" 2>"$work/said" || { cat "$work/shown" "$work/said"; exit 1; }
grep -qF "build/host was made for $first: building it anew." "$work/said" ||
    { cat "$work/said"; echo "The move went unnoticed."; exit 1; }
as_stranger scripts/build.sh host kalvorn_tests_java kalvorn_library_tests simulate
tests=('demo_.*' end_to_end unload simulate soak 'kalvornctl.*' exported_symbols format device_build)
for test in "${tests[@]}"; do
    as_stranger ctest --preset host -N -R "^$test\$" | grep '^  Test ' >"$work/there" || { echo "No test is called $test."; exit 1; }
done
as_stranger ctest --preset host -R "^($(IFS='|'; echo "${tests[*]}"))\$"
