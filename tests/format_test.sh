#!/bin/bash
# clang-format finds nothing to change in any C++ or Java source: format_test.sh SOURCE_DIR
set -euo pipefail
cd "$1"
find aidl common ctl hidl java jni platform samples simulator tests tools \
    \( -name '*.cpp' -o -name '*.h' -o -name '*.java' \) -print0 | xargs -0 clang-format --dry-run --Werror
