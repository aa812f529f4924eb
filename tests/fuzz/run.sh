#!/bin/bash
# Builds the fuzzers with clang and the address and undefined-behaviour sanitizers, and runs each
# from its seeds for a while: run.sh [SECONDS_EACH]
# What is new stays under build/fuzz/corpus/. An input that shows a fault is named; once it is mended,
# the input belongs among the seeds.
set -euo pipefail
cd "$(dirname "$0")/../.."
seconds=${1:-30}
library_path=$(dirname "$(clang++ -print-file-name=android/liblog.so)")

for fuzzer in text hex; do
    program=build/fuzz/${fuzzer}_fuzzer
    log=$program.log
    mkdir -p "build/fuzz/corpus/$fuzzer"
    clang++ -std=c++17 -O1 -g -fsanitize=fuzzer,address,undefined -fno-sanitize-recover=all \
        -Wall -Wextra -Werror -I. -Itests -isystem /usr/include/android \
        "tests/fuzz/${fuzzer}_fuzzer.cpp" tests/fuzz/properties.cpp common/hex.cpp \
        common/modified_utf8.cpp -L"$library_path" -Wl,-rpath,"$library_path" -llog -o "$program"
    echo "Fuzzing $fuzzer for $seconds seconds"
    if ! "$program" -max_total_time="$seconds" -max_len=128 -artifact_prefix="build/fuzz/$fuzzer-" \
        "build/fuzz/corpus/$fuzzer" "tests/fuzz/seeds/$fuzzer" >"$log" 2>&1; then
        grep -v '^#' "$log" >&2
        exit 1
    fi
    tail -n 1 "$log"
done
