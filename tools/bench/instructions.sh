#!/bin/bash
# Counts instructions and requests to the heap for a call of the library, and of its floor: with callgrind,
# or where the program is for 32-bit ARM with the emulator, which steps through the own code.
#   instructions.sh BUILD_DIR print [METHOD]   prints them beside the floor's
#   instructions.sh BUILD_DIR record           writes those of the own code to instructions.txt
#   instructions.sh BUILD_DIR check            fails where they are not what stands there, within 2 % and the
#                                              heap exactly, or where a whole call misses its goal
set -euo pipefail
here=$(dirname "$(realpath "$0")")
cd "$1"
recorded=$here/instructions.txt
export LC_ALL=C
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Both print a line for each method called: FILE BACKEND METHOD OWN [HEAP WHOLE]

# Callgrind cannot read what clang writes for debuggers. It writes a dump, and begins anew, at each mark;
# every other dump is of the calls. What stands after a line "calls" is the called function's.
count_with_callgrind() {
    local file dump=0 calls backend method
    for file in kalvorn_instructions *.so; do strip -g -o "$work/$file" "$file"; done
    valgrind --tool=callgrind --callgrind-out-file="$work/out" --dump-before=Mark \
        --compress-strings=no --compress-pos=no "$work/kalvorn_instructions" >"$work/said" 2>"$work/log" ||
        { cat "$work/log" >&2; return 1; }
    while read -r _ calls file backend method; do
        dump=$((dump + 2))
        awk -v calls="$calls" -v what="$file $backend $method" -v end="/$file" '
            /^ob=/ { own = substr($0, length($0) - length(end) + 1) == end }
            /^cfn=/ { asks = /^cfn=(malloc|calloc|realloc|memalign|aligned_alloc|posix_memalign)$/ }
            /^calls=/ { if (asks) heap += substr($1, 7); getline; next }
            /^[0-9]/ { whole += $2; if (own) sum += $2 }
            END { print what, sum / calls, heap / calls, whole / calls }' "$work/out.$dump"
    done < <(grep '^calls ' "$work/said")
}

# The emulator tells of each instruction within the ranges, a line each. It loads everything at the same
# places each time; the second run says its ranges too.
count_with_emulator() {
    local emulate=$here/../../scripts/arm/emulate.sh ranges counting
    "$emulate" ./kalvorn_instructions where >"$work/ranges"
    ranges=$(awk '{ printf "%s%s", comma, $3; comma = "," }' "$work/ranges")
    mkfifo "$work/trace"
    awk -F '[][/]' -v mark="$(sed -n 's/^range mark 0x//; s/+0x1$//p' "$work/ranges")" '
        $3 != mark { count++; next }
        ++marks % 2 == 0 { print count }
        { count = 0 }' "$work/trace" >"$work/counts" &
    counting=$!
    "$emulate" -singlestep -d exec,nochain -dfilter "$ranges" -D "$work/trace" \
        ./kalvorn_instructions >"$work/said"
    wait "$counting"
    diff "$work/ranges" <(grep '^range ' "$work/said") >&2 || { echo "instructions: the ranges moved" >&2; return 1; }
    paste -d ' ' <(grep '^calls ' "$work/said") "$work/counts" | awk '{ print $3, $4, $5, $6 / $2 }'
}

if grep -q QEMU demo_command; then
    counts=$(count_with_emulator)
else
    counts=$(count_with_callgrind)
fi
[ "$(wc -l <<<"$counts")" -gt 100 ] || { echo "instructions: too little was counted" >&2; exit 1; }

# BACKEND METHOD OWN HEAP WHOLE, and the floor's three, in the order of the calls; what was not counted is "-".
table=$(awk '
    function three() { return $4 " " ($5 == "" ? "-" : $5) " " ($6 == "" ? "-" : $6) }
    $1 == "lib_kalvorn.so" { row[++rows] = $2 " " $3; library[rows] = three() }
    $1 == "libkalvorn_floor.so" { floor[$2 " " $3] = three() }
    END { for (i = 1; i <= rows; i++) print row[i], library[i], (row[i] in floor ? floor[row[i]] : "- - -") }
    ' <<<"$counts")

# What a whole call may be more than 1.02 times the floor's for. A simulated HIDL service is a plain call,
# so that little is much there.
# shellcheck disable=SC2016  # awk's own $
goal='
    BEGIN {
        why["hidl nativeEmmcTest"] = "three texts, each by shared functions"
        why["hidl nativeWriteNvValue"] = "a text by shared functions"
        why["hidl nativeGetVerifySignatureResult"] = "bytes and hexadecimal text by shared functions"
        why["hidl nativeSendBigDataOperation"] = "looks class and fields up each time"
        why["hidl nativeSetTestItemName"] = "asks for revision 1.1 each time"
    }
    function ratio() { return $8 == "-" ? "-" : sprintf("%.3f", $5 / $8) }
    function misses() { return $8 != "-" && $5 > 1.02 * $8 }'

case $2 in
    print)
        awk -v wanted="${3-}" "$goal"'
            BEGIN {
                format = "%-4s %-32s %7s %7s  %6s %6s  %8s %8s %7s"
                printf format "\n", "", "", "own", "floor", "heap", "floor", "whole", "floor", "x floor"
            }
            wanted == "" || index(tolower($2), tolower(wanted)) {
                printf format, $1, $2, $3, $6, $4, $7, $5, $8, ratio()
                print misses() ? "  above 1.02: " why[$1 " " $2] : ""
            }
            END {
                print "\nown: instructions of the library itself, a call; heap: requests to it, of whatever is called"
                print "whole: instructions of all that is executed in the call, but for the virtual machine"
            }' <<<"$table"
        ;;
    record)
        cut -d ' ' -f 1-4,6-7 <<<"$table" >"$recorded"
        ;;
    check)
        awk "$goal"'
            FNR == NR { then[$1 " " $2] = $0; next }
            function off(now, then) { return now != then && (now - then > 0.02 * then || then - now > 0.02 * then) }
            function fail(what) { print $1, $2 ": " what; failed = 1 }
            !($1 " " $2 in then) { fail("not recorded"); next }
            {
                split(then[$1 " " $2], was, " ")
                delete then[$1 " " $2]
                if (off($3, was[3])) fail($3 " instructions, recorded are " was[3])
                if ($4 != was[4]) fail($4 " requests to the heap, recorded are " was[4])
                if (off($6, was[5])) fail("its floor has " $6 " instructions, recorded are " was[5])
                if ($7 != was[6]) fail("its floor has " $7 " requests to the heap, recorded are " was[6])
                if (misses() && !($1 " " $2 in why)) fail(ratio() " times its floor; 1.02 is the goal of a whole call")
            }
            END {
                for (what in then) { print what ": recorded, but not called"; failed = 1 }
                if (failed) print "What is meant to be so is recorded by ./bench --instructions --record"
                exit failed
            }' "$recorded" <(echo "$table")
        ;;
esac
