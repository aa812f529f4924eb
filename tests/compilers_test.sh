#!/bin/bash
# The device code, built with clang as C++17 and with a device's bounds-checked functions, is clean with
# g++ too, as the C++20 of later platforms, and with its own functions: compilers_test.sh BUILD_DIR
set -euo pipefail
cd "$1"
objects=$(ninja -t targets all | grep -oE '^[^ ]*/kalvorn_objects\.dir/[^ ]+\.o')

# as COMPILER STANDARD OPTION...: the build's commands, by that compiler and to no object.
as() {
    # shellcheck disable=SC2086 # one argument each
    ninja -t commands -s $objects |
        sed -nE "s,^.*clang\+\+ (.*) -std=[^ ]+ -MD .* -c ,$1 \1 -std=$2 ${*:3} ,p"
}

# g++ finds some of its warnings only on the way to code. It takes strnlen to read a short text to its bound.
own=-UKALVORN_DEVICE_BOUNDS_CHECKED
commands=$(as g++ gnu++17 -O1 -Wno-stringop-overread -S "$own" -o /dev/null; as clang++ gnu++20 -fsyntax-only "$own")
[ "$(wc -l <<<"$commands")" = $((2 * $(wc -l <<<"$objects"))) ] ||
    { printf 'These cannot be all commands:\n%s\n' "$commands"; exit 1; }
xargs -d '\n' -P "$(nproc)" -n 1 sh -c <<<"$commands"
