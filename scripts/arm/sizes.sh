#!/bin/bash
# What the stripped 32-bit ARM library is made of, and whether it keeps to its limit and to the size that
# was recorded: sizes.sh [record]
set -euo pipefail
cd "$(dirname "$0")/../.."
limit=$((96 * 1024))
recorded=scripts/arm/size.txt

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
stripped=$work/stripped
arm-linux-gnueabihf-strip -o "$stripped" build/arm/lib_kalvorn.so

# The linker's map has a line for each function: its place twice, its size, alignment, object and
# section. What a header of the platform or of an interface gives is nobody's own, whichever object
# it came in with; the two files of one name in aidl/ and hidl/ stand together where they connect.
echo "lib_kalvorn.so for 32-bit ARM, stripped, in bytes:"
awk '
    function row(name, bytes) { printf "    %-36s %7d\n", name, bytes }
    function hex(digits,  i, n) {
        for (i = 1; i <= length(digits); i++) n = 16 * n + index("123456789abcdef", substr(digits, i, 1))
        return n
    }
    $6 == "" && $5 ~ /^\.(text|init|fini|plt)$/ { section = $5; all += hex($3); next }
    $6 == "" && $5 ~ /^\./ { section = ""; next }
    section == "" || !match($0, /[^ ]+\.dir\/[a-z]+\/[a-z0-9_]+\.cpp\.o:\(\.text[^)]*\)$/) { next }
    {
        place = substr($0, RSTART)
        sub(/.*\.dir\//, "", place)
        symbol = place
        sub(/.*\(\.text\.?/, "", symbol)
        bytes = hex($3)
        named += bytes
    }
    symbol ~ /^_Z(T[a-z0-9_]*)?N?[KrV]*(S[tabsiod]|7android|6vendor|4aidl|9__gnu_cxx)/ &&
        symbol !~ /7android8HidlUtil/ { inlines += bytes; next }
    symbol ~ /^_ZN?K?7kalvorn/ || place ~ /^common/ { common += bytes; next }
    place ~ /^(aidl|hidl)\/(connections|death|hidl_util|services)/ { connecting += bytes; next }
    place ~ /^aidl/ { aidl += bytes; next }
    place ~ /^hidl/ { hidl += bytes; next }
    { jni += bytes }
    END {
        printf "  %-38s %7d\n", "text: code", all
        row("connectors and teardown", connecting)
        row("AIDL operations", aidl)
        row("HIDL operations", hidl)
        row("dispatch, entry, local methods", jni)
        row("common", common)
        row("inlines of other headers", inlines)
        row("stubs of imports, start-up, padding", all - named)
    }' build/arm/lib_kalvorn.so.map

# Sections that are loaded, by what they are for; .bss takes no room on disk.
arm-linux-gnueabihf-size -A "$stripped" | awk '
    function row(name, bytes) { printf "  %-38s %7d\n", name, bytes }
    /^\.rodata / {constants += $2; next}
    /^\.ARM\.ex|^\.eh_frame/ {unwinding += $2; next}
    /^\.relr?\./ {relocations += $2; next}
    /^\.(dyn|gnu|hash)/ {linking += $2; next}
    /^\.(data|got|init_array|fini_array)/ {data += $2; next}
    /^\.bss / {bss = $2; next}
    END {
        row("text: constants", constants)
        row("text: unwind tables", unwinding)
        row("text: dynamic symbols", linking)
        row("data", data)
        row("data: zero, not on disk", bss)
        row("relocations", relocations)
    }'
size=$(stat -c %s "$stripped")
printf '  %-38s %7d of at most %d, recorded are %d\n' "on disk" "$size" "$limit" "$(<"$recorded")"

# What the platform keeps beside it for backtraces: the names of the functions and their frames, packed.
mini=$work/mini_debug_info
arm-linux-gnueabihf-nm --format=posix --defined-only build/arm/lib_kalvorn.so |
    awk '$2 ~ /[TtD]/ { print $1 }' >"$work/functions"
arm-linux-gnueabihf-objcopy --only-keep-debug build/arm/lib_kalvorn.so "$work/debug"
arm-linux-gnueabihf-objcopy --strip-all --remove-section=.comment --keep-section=.debug_frame \
    --keep-symbols="$work/functions" "$work/debug" "$mini"
xz --block-size=64k "$mini"
printf '  %-38s %7d\n' "mini debug info, on a device's disk" "$(stat -c %s "$mini.xz")"

[ "$size" -le "$limit" ] || { echo "sizes: lib_kalvorn.so is too large" >&2; exit 1; }
if [ "${1-}" = record ]; then
    echo "$size" >"$recorded"
elif [ $((100 * size)) -gt $((102 * $(<"$recorded"))) ]; then
    echo "sizes: lib_kalvorn.so has grown by more than 2 %. If it is meant to: scripts/arm/sizes.sh record" >&2
    exit 1
fi
