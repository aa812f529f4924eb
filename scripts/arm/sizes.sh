#!/bin/bash
# The size of the stripped 32-bit ARM library, by section; fails beyond its limit, and where it has grown by
# more than 2 % since it was recorded: sizes.sh [record]
set -euo pipefail
cd "$(dirname "$0")/../.."
limit=$((96 * 1024))
recorded=scripts/arm/size.txt

stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT
arm-linux-gnueabihf-strip -o "$stripped" build/arm/lib_kalvorn.so
size=$(stat -c %s "$stripped")
if [ "${1-}" = record ]; then echo "$size" >"$recorded"; fi

echo "lib_kalvorn.so for 32-bit ARM, stripped, in bytes:"
arm-linux-gnueabihf-size -A "$stripped" | awk '/^\./ && $2 > 0 { printf "  %-20s %7d\n", $1, $2 }'
printf '  %-20s %7d of at most %d; recorded: %d\n' "on disk" "$size" "$limit" "$(<"$recorded")"

[ "$size" -le "$limit" ] || { echo "sizes: lib_kalvorn.so is too large" >&2; exit 1; }
if [ $((100 * size)) -gt $((102 * $(<"$recorded"))) ]; then
    echo "sizes: lib_kalvorn.so has grown by more than 2 %. If it is meant to: scripts/arm/sizes.sh record" >&2
    exit 1
fi
