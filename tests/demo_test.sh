#!/bin/bash
# The demo on one device, at several widths: every method is called, the services are connected and
# connected again, the misc partition is written, and no line is too long. Without the misc partition it
# fails: demo_test.sh SOURCE_DIR BUILD_DIR DEVICE
set -euo pipefail
source=$1
build=$2
device=$3

# services BACKEND: how many the simulated device has over it, whatever their revisions.
services() { grep -cE 'services(, |\.emplace_back\()"[a-z_]+",' "$source/simulator/$1_services.cpp"; }
all=$(services aidl)
hidl=$(services hidl)
declare -A connected=(
    [aidl]="$all over AIDL, 0 over HIDL, 0 not connected"
    [hidl]="0 over AIDL, $hidl over HIDL, $((all - hidl)) not connected"
    [mixed]="$((all - 4)) over AIDL, 3 over HIDL, 1 not connected"
    [bare]="0 over AIDL, 0 over HIDL, $all not connected"
)
declare -A reconnections=([aidl]=2 [hidl]=2 [mixed]=3 [bare]=0)

. "$(dirname "$0")/commands.bash"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# play BUILD_DIR: into $work/shown, and as one line without line breaks into $text
play() {
    local status=0
    "$source/tools/demo/run.sh" "$1" "$device" >"$work/shown" 2>&1 || status=$?
    text=$(tr -s ' \n' ' ' <"$work/shown")
    return "$status"
}

# count TEXT: how often it occurs
count() { grep -oF -- "$1" <<<"$text" | wc -l; }

declared=$(grep -oE '\bnative [^ ]+ [A-Za-z0-9]+\(' "$source/java/com/quorvin/kalvornii/KvNativeInterface.java" |
    grep -oE '[A-Za-z0-9]+\($' | sort)
{ printf boot-recovery; head -c 499 /dev/zero; head -c 512 /dev/zero | tr '\0' '\377'; } >"$work/misc"

check_session() {
    rm -f "$build/misc"
    play "$build" || { cat "$work/shown"; exit 1; }
    grep -oE '^ +[0-9]+\.[0-9]{3}  [A-Za-z0-9]+\(' "$work/shown" | grep -oE '[A-Za-z0-9]+\(' |
        sort -u >"$work/called"
    expect "methods never called" "" "$(comm -23 <(echo "$declared") "$work/called")"
    expect "connections: ${connected[$device]}" 1 "$(count "The services: ${connected[$device]}.")"
    expect "connections again: ${connected[$device]}" "${reconnections[$device]}" \
        "$(count "connected them again: ${connected[$device]} ")"
    cmp "$work/misc" "$build/misc"
    expect "longest line" "$1" "$(wc -L <"$work/shown")"  # that of the rulers
}

unset COLUMNS
check_session 80
for columns in 60 132; do
    COLUMNS=$columns check_session "$columns"
done

if [ "$device" = bare ]; then
    mkdir "$work/tree"
    ln -s "$build"/* "$work/tree/"
    rm -f "$work"/tree/{misc,libkalvorn_misc.so}
    status=0
    play "$work/tree" || status=$?
    expect "status without the misc partition" 1 "$status"
    line=$(grep -n '^nativeWriteMiscToRecovery ' "$source/samples/methods.samples" | cut -d: -f1)
    expect "fault named, at once and at the end" 2 \
        "$(count "!! nativeWriteMiscToRecovery (samples/methods.samples:$line): expected 0, found")"
fi
