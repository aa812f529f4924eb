#!/bin/bash
# Counts the instructions that the library's own code, and the floor's, needs for a call: with callgrind,
# or where the program is for 32-bit ARM with the emulator, which steps through it.
#   instructions.sh BUILD_DIR print [METHOD]   prints them beside the floor's
#   instructions.sh BUILD_DIR record           writes them to instructions.txt
#   instructions.sh BUILD_DIR check            fails where one is not within 2 % of what stands there
set -euo pipefail
here=$(dirname "$(realpath "$0")")
cd "$1"
recorded=$here/instructions.txt
export LC_ALL=C
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Both print a line for each method called: FILE BACKEND METHOD INSTRUCTIONS, with callgrind besides how
# many of them are of the choice of a backend, the reference to the service, the conversions and the rest.

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
            /^fn=(auto \(anonymous|native_aidl::Is)/ { part = "choice"; next }
            /^fn=.*::(Hold|HeldFactory|Held<.*>|CastTo<.*>)\(/ { part = "reference"; next }
            /^fn=.*kalvorn::[A-Za-z0-9:]+\(/ { part = "conversions"; next }
            /^fn=/ { part = "rest" }
            /^calls=/ { getline; next }
            own && /^[0-9]/ { sum[part] += $2 }
            END {
                all = sum["choice"] + sum["reference"] + sum["conversions"] + sum["rest"]
                print what, all / calls, sum["choice"] / calls, sum["reference"] / calls, \
                    sum["conversions"] / calls, sum["rest"] / calls
            }' "$work/out.$dump"
    done < <(grep '^calls ' "$work/said")
}

# The emulator tells of each instruction within the ranges, a line each. It loads everything at the same
# places each time; the second run says its ranges too.
count_with_emulator() {
    local emulate=$here/../../scripts/arm/emulate.sh ranges counting
    "$emulate" ./kalvorn_instructions where >"$work/ranges"
    ranges=$(awk '{ printf "%s%s", comma, $3; comma = "," }' "$work/ranges")
    mkfifo "$work/trace"
    awk -F '[][/]' -v ranges="$work/ranges" '
        function number(hex,  i, n) {
            for (i = 1; i <= length(hex); i++) n = 16 * n + index("123456789abcdef", substr(hex, i, 1))
            return n
        }
        BEGIN {
            while ((getline line < ranges) > 0) {
                split(line, word, " ")
                split(word[3], range, "[+]")
                first[word[2]] = number(substr(range[1], 3))
                last[word[2]] = first[word[2]] + number(substr(range[2], 3))
            }
        }
        {
            if (!($3 in place)) {
                pc = number($3)
                place[$3] = "elsewhere"
                for (name in first) if (pc >= first[name] && pc < last[name]) place[$3] = name
            }
            if (place[$3] != "mark") { count++; next }
            if (++marks % 2 == 0) print count
            count = 0
        }' "$work/trace" >"$work/counts" &
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

# BACKEND METHOD LIBRARY FLOOR [PARTS...], in the order of the calls; without a floor "-".
table=$(awk '
    $1 == "lib_kalvorn.so" { row[++rows] = $2 " " $3; library[rows] = $4; parts[rows] = $5 " " $6 " " $7 " " $8 }
    $1 == "libkalvorn_floor.so" { floor[$2 " " $3] = $4 }
    END { for (i = 1; i <= rows; i++) print row[i], library[i], (row[i] in floor ? floor[row[i]] : "-"), parts[i] }
    ' <<<"$counts")

case $2 in
    print)
        awk -v wanted="${3-}" '
            # The goal is 1.02 times the floor. What the library does more, it does on purpose.
            BEGIN {
                why["nativeEmmcTest"] = "three texts, each by shared functions"
                why["nativeWriteNvValue"] = "a text by shared functions"
                why["nativeSendBigDataOperation"] = "looks class and fields up each time"
                why["nativeSetTestItemName"] = "two texts, elements and lines by shared functions"
                why["hidl nativeSetTestItemName"] = "texts likewise; asks for revision 1.1 each time"
                format = "%-4s %-32s %7s %7s %7s"
                partsFormat = " %7s %9s %11s %6s"
            }
            function reason() {
                if ($4 == "-" || $3 <= 1.02 * $4) return ""
                if ($1 " " $2 in why) return "above 1.02: " why[$1 " " $2]
                return "above 1.02: choice, reference" ($2 in why ? ", " why[$2] : "")
            }
            NR == 1 {
                printf format, "over", "method", "library", "floor", "x floor"
                if (NF > 4) printf partsFormat, "choice", "reference", "conversions", "rest"
                print ""
            }
            wanted == "" || index(tolower($2), tolower(wanted)) {
                printf format, $1, $2, $3, $4, ($4 == "-" ? "-" : sprintf("%.2f", $3 / $4))
                if (NF > 4) printf partsFormat, $5, $6, $7, $8
                print "  " reason()
            }
            END {
                if (NF <= 4) exit
                print "\nchoice: which backend holds the service now, and its line; the floor has the line only"
                print "reference: counted beside a mark, so that no death on another thread frees the service"
                print "conversions: functions that all methods share, where the floor has its own in place"
            }' <<<"$table"
        ;;
    record)
        cut -d ' ' -f 1-4 <<<"$table" >"$recorded"
        ;;
    check)
        awk '
            FNR == NR { library[$1 " " $2] = $3; floor[$1 " " $2] = $4; next }
            function off(now, then) { return now != then && (now - then > 0.02 * then || then - now > 0.02 * then) }
            { what = $1 " " $2 }
            !(what in library) { print what ": not recorded"; failed = 1; next }
            off($3, library[what]) { print what ": " $3 " instructions, recorded are " library[what]; failed = 1 }
            off($4, floor[what]) { print what ": its floor has " $4 ", recorded are " floor[what]; failed = 1 }
            { delete library[what] }
            END {
                for (what in library) { print what ": recorded, but not called"; failed = 1 }
                if (failed) print "What is meant to be so is recorded by ./bench --instructions --record"
                exit failed
            }' "$recorded" <(echo "$table")
        ;;
esac
