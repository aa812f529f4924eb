#!/usr/bin/env bats
# ./soak in short: its status, its reports, and what it judges.
bats_require_minimum_version 1.5.0

load commands

setup_file() {
    export SOURCE=$BATS_TEST_DIRNAME/..
    cd "$BATS_FILE_TMPDIR" || return
    "$SOURCE/soak" --calls 6000 --deaths 40 --report short >short.out 2>&1 || echo $? >short.status
    "$SOURCE/soak" --calls 6000 --deaths 12 --device mixed --plant setWifiCommand --report wrong >wrong.out 2>&1 ||
        echo $? >wrong.status
}

setup() {
    cd "$BATS_FILE_TMPDIR" || return
}

# is FILE FILTER EXPECTED: what jq finds in a report.
is() {
    local found
    found=$(jq -r "$2" "$1")
    [ "$found" = "$3" ] || { printf '%s is %s, not %s\n' "$2" "$found" "$3"; return 1; }
}

# judge RESIDENT GROWN LINKS: the report of a run at whose end they are so, and 1000, 0 and 1 before.
judge() {
    local sample='{"device":"aidl","sample":{"calls":%s,"resident":%s,"liveServices":1,"deathLinks":%s}}\n'
    # shellcheck disable=SC2059
    printf "$sample" 1 1000 1 2 1000 "$3" 3 "$1" "$3" >events
    printf '{"device":"aidl","grown":{"what":"calls","typicalBytesEach":%s}}\n' "$2" >>events
    jq -nR --arg date '' --arg version '' --arg commandLine '' --arg machine '' --arg seconds 1 --arg seed 1 \
        --arg interrupted '' -f "$SOURCE/tools/soak/report.jq" events >judged
}

@test "a run makes all calls and deaths, and every answer is right" {
    cat short.out
    [ ! -e short.status ]
    is short/soak.json '[."end", .calls, .deaths, .wrongAnswers, (.devices | length)] | join(" ")' 'done 6000 40 0 4'
    is short/soak.json '.referencesLeft, (.keepsUnexpectedly | length)' $'0\n0'
}

@test "every method is measured, its time and what it keeps" {
    methods=$(grep -oE '\bnative [^ ]+ [A-Za-z0-9]+\(' "$SOURCE/java/com/quorvin/kalvornii/KvNativeInterface.java" |
        sed -E 's/\($//; s/.* //' | sort)
    is short/soak.json '[.kept[].method] | unique[]' "$methods"
    is short/soak.json '[.latencies[].method] | unique[]' "$methods"
    is short/soak.json '[.kept[] | select(.onPurpose) | .method] | unique | length' 9
}

@test "too few calls are not judged, and say so" {
    is short/soak.json '[.doesNotGrow, .growthPerMillionCalls, .isFlat | tostring] | join(" ")' 'null null null'
    grep -F 'Every answer was right; too short to judge memory' short.out
    [ "$(grep -c 'moved by: too short to judge\|million calls: too short to judge' short.out)" = 2 ]
}

@test "enough calls are judged" {
    "$SOURCE/soak" --calls 50000 --deaths 0 --device bare --report bare
    is bare/soak.json '.verdict, .doesNotGrow, .isFlat' $'Passed\ntrue\ntrue'
}

@test "what grows, moves or is left fails" {
    while read -r resident grown links verdict; do
        judge "$resident" "$grown" "$links"
        is judged .verdict "$verdict"
    done <<'END'
1000 0 1 Passed
1009 0.01 1 Passed
1000 0.03 1 Failed: memory grows
1020 0 1 Failed: the resident size moves
1020 null 1 Every answer was right; too short to judge memory
1000 0 2 Failed: deaths left references
END
}

@test "the report tells its command, date and version" {
    is short/soak.json .commandLine './soak --calls 6000 --deaths 40 --report short'
    is short/soak.json '.date[:10]' "$(date -I)"
    is short/soak.json .version "$(cat "$SOURCE/VERSION" 2>/dev/null || true)"
}

@test "the page holds the report, and needs nothing else" {
    sed -n 's/^<script type="application\/json" id="report">\(.*\)<\/script>$/\1/p' short/soak.html >inside
    [ -s inside ]
    diff <(jq -S . inside) <(jq -S . short/soak.json)
    run ! grep -qE '<(script|img|link|iframe)[^>]* (src|href)=|@import|/\*(CHARTS|REPORT)\*/' short/soak.html
    grep -q 'Chart.js v' short/soak.html
}

@test "the page asks only for what the report has" {
    names=$(jq -r '[.. | objects | keys[]] | unique[]' short/soak.json)
    asked=$(grep -oE '\b(report|device|sample|times|grown|call|all|restart)\.[a-zA-Z]+\b' "$SOURCE/tools/soak/page.html" |
        sed 's/.*\.//' | sort -u | grep -vxE 'filter|map|flatMap|length')
    [ "$(wc -w <<<"$asked")" -gt 30 ]
    diff /dev/null <(comm -23 <(echo "$asked") <(sort <<<"$names"))
}

@test "a wrong answer ends it, with the last lines of the log" {
    [ "$(cat wrong.status)" = 1 ]
    is wrong/soak.json '[."end", .wrongAnswers, .devices[0].wrong[0].method, (.devices[0].log | length)] | join(" ")' \
        'wrong answer 1 nativeSetWifiCommand 100'
    for what in 'nativeSetWifiCommand answered' 'right is "wlan0 up"' 'The last 100 lines of the log:' \
        'KalvornNative: SetWifiCommand' 'Failed: a wrong answer'; do
        grep -F "$what" wrong.out
    done
}

@test "a process that ends too early is told, and what it said last" {
    "$SOURCE/soak" --calls 1000000000 --device aidl --report crash >crash.out 2>&1 &
    soak=$!
    await grep -qE '[0-9]{4} calls' crash.out
    pkill -KILL -P "$soak" java
    status=0
    wait "$soak" || status=$?
    [ "$status" = 1 ]
    is crash/soak.json '."end", (.devices[0].log | length > 90)' $'its process ended with status 137\ntrue'
    grep -F 'Failed: the device aidl failed' crash.out
}

@test "the time limit ends it early, with a report" {
    run -0 "$SOURCE/soak" --calls 1000000000 --time 3 --device bare --report late
    is late/soak.json '."end", .wrongAnswers, .calls > 0' $'time limit\n0\ntrue'
}

@test "an interrupt ends it early, with a report" {
    # As at a terminal, where all processes of a group hear of the interrupt.
    setsid env --default-signal=INT "$SOURCE/soak" --calls 1000000000 --deaths 10 --device aidl --report early >early.out 2>&1 &
    soak=$!
    await grep -qE '[0-9]{4} calls' early.out
    kill -INT -- "-$soak"
    status=0
    wait "$soak" || status=$?
    [ "$status" = 130 ]
    is early/soak.json '."end", .wrongAnswers, .calls > 0' $'interrupted\n0\ntrue'
}

@test "a full disk ends it with one line and a status of its own" {
    mkdir full
    ln -s /dev/full full/soak.html
    run -3 --separate-stderr "$SOURCE/soak" --calls 600 --deaths 0 --device bare --report full
    # shellcheck disable=SC2154  # set by run
    [ "$stderr" = "soak: cannot write to $PWD/full: No space left on device" ]
    [ -z "$(ls full)" ]
}

@test "a wrong option is refused before anything is built" {
    while read -ra options; do
        run -2 "$SOURCE/soak" "${options[@]}"
        [[ $output = soak:*Usage:* ]]
    done <<'END'
--calls many
--device none
--plant noSuchMethod
--unknown
END
}
