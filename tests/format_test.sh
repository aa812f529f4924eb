#!/bin/bash
# clang-format finds nothing to change in any C++ source.
set -euo pipefail
cd "$1"
find aidl common hidl jni platform simulator tests tools \( -name '*.cpp' -o -name '*.h' \) -print0 |
    xargs -0 clang-format --dry-run --Werror
