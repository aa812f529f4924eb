#!/bin/bash
# What the stripped 32-bit ARM library is made of, and whether it keeps to its limit on disk.
set -euo pipefail
cd "$(dirname "$0")/../.."
limit=$((128 * 1024))

stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT
arm-linux-gnueabihf-strip -o "$stripped" build/arm/lib_kalvorn.so

# Sections that are loaded, by what they are for; .bss takes no room on disk.
arm-linux-gnueabihf-size -A "$stripped" | awk '
    function row(name, bytes) { printf "  %-38s %7d\n", name, bytes }
    /^\.(text|init|fini|plt) / {code += $2; next}
    /^\.rodata / {constants += $2; next}
    /^\.ARM\.ex|^\.eh_frame/ {unwinding += $2; next}
    /^\.rel\./ {relocations += $2; next}
    /^\.(dyn|gnu|hash)/ {linking += $2; next}
    /^\.(data|got|init_array|fini_array)/ {data += $2; next}
    /^\.bss / {bss = $2; next}
    END {
        print "lib_kalvorn.so for 32-bit ARM, stripped, in bytes:"
        row("text: code", code)
        row("text: constants", constants)
        row("text: unwind tables", unwinding)
        row("text: dynamic symbols", linking)
        row("data", data)
        row("data: zero, not on disk", bss)
        row("relocations", relocations)
    }'
size=$(stat -c %s "$stripped")
printf '  %-38s %7d of at most %d\n' "on disk" "$size" "$limit"
[ "$size" -le "$limit" ] || { echo "sizes: lib_kalvorn.so is too large" >&2; exit 1; }
