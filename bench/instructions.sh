#!/bin/bash
# Counts the instructions that the library's own code, and the floor's, needs for a call: with callgrind,
# or where the program is for 32-bit ARM with the emulator, which steps through it.
#   instructions.sh BUILD_DIR print     prints them beside the floor's
#   instructions.sh BUILD_DIR check     fails where one is not within 2 % of what instructions.txt has
#   instructions.sh BUILD_DIR record    writes instructions.txt
set -euo pipefail
here=$(dirname "$(realpath "$0")")
cd "$1"
recorded=$here/instructions.txt
export LC_ALL=C
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
program=$PWD/kalvorn_instructions

# Each prints a line for each that was called: FILE BACKEND METHOD INSTRUCTIONS

# Callgrind cannot read what clang writes for debuggers. A dump is written, and the counts begin anew, at each mark; every other dump is of the calls.
count_with_callgrind() {
    local file
    for file in kalvorn_instructions *.so; do strip -g -o "$work/$file" "$file"; done
    valgrind --tool=callgrind --callgrind-out-file="$work/out" --dump-before=Mark \
        --compress-strings=no --compress-pos=no "$work/kalvorn_instructions" >"$work/said" 2>"$work/log" ||
        { cat "$work/log" >&2; return 1; }
    local dump=0 calls backend method
    while read -r _ calls file backend method; do
        dump=$((dump + 2))
        # What stands after a line of calls is the called function's.
        awk -v calls="$calls" -v what="$file $backend $method" -v end="/$file" '
            /^ob=/ { own = substr($0, length($0) - length(end) + 1) == end; next }
            /^calls=/ { getline; next }
            own && /^[0-9]/ { sum += $2 }
            END { print what, sum / calls }' "$work/out.$dump"
    done < <(grep '^calls ' "$work/said")
}

# The emulator tells each instruction within the ranges as a line; where it loads what does not change.
count_with_emulator() {
    local emulate=("$here/../host/arm/emulate.sh") ranges
    "${emulate[@]}" "$program" where >"$work/ranges"
    ranges=$(awk '{ printf "%s%s", comma, $3; comma = "," }' "$work/ranges")
    mkfifo "$work/trace"
    awk -F '[][/]' '
        BEGIN {
            while ((getline line < RANGES) > 0) {
                split(line, word, " ")
                split(word[3], range, "[+]")
                first[word[2]] = number(range[1])
                last[word[2]] = first[word[2]] + number(range[2])
            }
        }
        function number(hex,  i, n) {
            for (i = 1; i <= length(hex); i++) n = 16 * n + index("123456789abcdef", substr(hex, i, 1))
            return n
        }
        {
            pc = number($3)
            if (pc >= first["mark"] && pc < last["mark"]) {
                if (++marks % 2 == 0) print counts["lib_kalvorn.so"] + 0, counts["libkalvorn_floor.so"] + 0
                delete counts
                next
            }
            for (name in first) if (pc >= first[name] && pc < last[name]) counts[name]++
        }' RANGES="$work/ranges" "$work/trace" >"$work/counts" &
    local counting=$!
    "${emulate[@]}" "$program" >/dev/null
    wait "$counting"
}

if [ -f demo_command ] && grep -q QEMU demo_command; then
    counts=$(count_with_emulator)
else
    counts=$(count_with_callgrind)
fi
[ "$(wc -l <<<"$counts")" -gt 100 ] || { echo "instructions: too little was counted" >&2; exit 1; }

# BACKEND METHOD LIBRARY FLOOR, in the order of the calls; without a floor "-".
table=$(awk '
    $1 == "lib_kalvorn.so" { row[++rows] = $2 " " $3; library[$2 " " $3] = $4 }
    $1 == "libkalvorn_floor.so" { floor[$2 " " $3] = $4 }
    END { for (i = 1; i <= rows; i++) print row[i], library[row[i]], (row[i] in floor ? floor[row[i]] : "-") }
    ' <<<"$counts")

case $2 in
    record) echo "$table" >"$recorded" ;;
    *) echo "$table" ;;
esac
