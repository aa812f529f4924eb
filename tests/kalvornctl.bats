#!/usr/bin/env bats
# ./kalvornctl from another folder, as a shell, a script and a terminal see it; what it says in each case is
# in MainTest.java.
# shellcheck disable=SC2030,SC2031  # each test is a process of its own

load commands

setup() {
    cd "$BATS_TEST_TMPDIR" || return
    source=${BATS_TEST_DIRNAME%/*}
    build=$source/build/host
    ctl=$source/kalvornctl
    samples=$source/samples/methods.samples
    main=com.quorvin.kalvornii.ctl.Main
    # The build has been made; only the first test asks for it again.
    export KALVORN_PREPARED=1
    ctl_path=$build/java/ctl:/usr/share/java/com.android.json.jar
}

teardown() {
    local left
    left="$(jobs -p) $(cat pid 2>/dev/null || true)"
    # shellcheck disable=SC2086  # several
    kill $left 2>/dev/null || true
}

@test "a first call, through a link and without an environment" {
    ln -s "$ctl" linked
    ends 0 env -i PATH="$PATH" HOME="$HOME" ./linked call getboardname </dev/null
    expect "result" "KV-MAIN-V3" "$(<out)"
    expect "beside it" "" "$(<err)"
}

@test "every method, and what it prints taken again" {
    ends 0 "$ctl" list
    expect "parts of a line of list" "3" "$(awk -F'\t' '{print NF}' out | sort -u)"
    cut -f1 out | grep -oE '\w+\(' | tr -d '(' | sort >listed
    ends 0 "$ctl" --device aidl run "$samples"
    expect "methods called" "$(<listed)" "$(cut -d' ' -f1 out | sort)"
    count=$(wc -l <listed)
    expect "summary" "kalvornctl: $count calls, $count as expected" "$(<err)"
    mv out recorded
    ends 0 "$ctl" --device aidl run <recorded
    expect "the same again" "$(<recorded)" "$(<out)"
}

@test "every method on a device without some services" {
    count=$(grep -cE '^[a-zA-Z]' "$samples")
    ends 4 "$ctl" --device hidl run "$samples"
    line=$(grep -n '^nativeSetSimPowerState' "$samples" | cut -d: -f1)
    holds "a difference" "nativeSetSimPowerState 1 = -9999  # $samples:$line expected: 0" out
    expect "differences, all of absent services" "$(grep -c ' expected: ' out)" \
        "$(grep -cE ' = (-9999|INVALID_SERVICE)  # .* expected: ' out)"
    holds "summary" "kalvornctl: $count calls, " err
}

@test "words that a shell may give" {
    texts=(' two  "blanks" ' "it's \\ # = \$HOME *" '' 'Prüfstand 測試')
    for ((i = 0; i < ${#texts[@]}; i += 2)); do
        ends 0 "$ctl" call setwificommand -v "${texts[@]:i:2}"
        holds "two texts" "setWifiCommand, testScene:${texts[i]}, cmd:${texts[i + 1]}, buf" err
    done
    ends 0 "$ctl" call -v setwificommand -- --device --json
    holds "texts that begin with a dash" "testScene:--device, cmd:--json, buf" err
}

@test "refusals before anything is called" {
    ends 2 "$ctl" --device none status
    expect "a device that there is not" 'kalvornctl: no device "none"' "$(<err)"
    ends 2 "$ctl" run --events nowhere
    expect "events that cannot be read" "kalvornctl: cannot read nowhere" "$(<err)"
    printf '%s\n' '# a comment' 'wait 0.1' '' 'kill AIDL nothing' >events
    ends 2 "$ctl" call getboardname --events events
    holds "an event that cannot happen" "$PWD/events:4: no event \"kill AIDL nothing\"" err
    expect "results" "" "$(<out)"
    ends 2 "$ctl" --events
    expect "no value" "kalvornctl: --events needs a value" "$(<err)"
}

@test "what the wrapper cannot do is one line and status 3" {
    TMPDIR=/nowhere ends 3 "$ctl" status
    expect "no folder for temporary files" "kalvornctl: cannot write to /nowhere: No such file or directory" "$(<err)"
    mkdir -p copy/scripts elsewhere
    ln -s "$source"/scripts/common.sh copy/scripts/
    cp "$ctl" copy/
    unset KALVORN_PREPARED
    echo >copy/build
    ends 3 copy/kalvornctl status
    expect "no place to build" "kalvornctl: cannot make $PWD/copy/build/host" "$(<err)"
    rm copy/build
    mkdir -p copy/build
    ln -s /proc copy/build/host
    ends 3 copy/kalvornctl status
    holds "no permission" "kalvornctl: cannot write to $PWD/copy/build/host: " err
    expect "lines" 1 "$(wc -l <err)"
}

@test "streams that are closed, full or no longer read" {
    ends 0 "$ctl" run <&-
    expect "summary of nothing" "kalvornctl: 0 calls" "$(<err)"
    local status=0
    "$ctl" call getboardname >/dev/full 2>err || status=$?
    expect "status for a full disk" 3 "$status"
    holds "a full disk" "cannot write the result: No space left on device" err
    status=$(set +e; yes getboardname | timeout 60 "$ctl" run 2>/dev/null | head -1 >out; echo "${PIPESTATUS[1]}")
    expect "status when nobody reads on" 0 "$status"
}

@test "JSON of a call, a run, the list and the status" {
    ends 0 "$ctl" call --json i2c
    expect "a call" '["nativeI2cTest",[],"pass","bus0:0x38 bus2:0x6b","number","AIDL","E I2cTestByAidl"]' \
        "$(jq -c '[.method, .arguments, .result, .i2cInfo, (.milliseconds | type), .backend, .log[0]]' out)"
    ends 4 "$ctl" --device hidl run --json <<<'sendcmdtofingerprinthal 1 0aff = 1'
    expect "a run" '[[1,"0aff"],0,1,"HIDL",5]' \
        "$(jq -c '[.arguments, .result, .expected, .backend, (.log | length)]' out)"
    ends 0 "$ctl" call --json --times 20 getboardname
    expect "calls" '[20,[{"result":"KV-MAIN-V3","count":20}],true]' \
        "$(jq -c '[.calls, .results, (.milliseconds | .min <= .p50 and .p50 <= .p99 and .p99 <= .max)]' out)"
    ends 0 "$ctl" list --json
    expect "the list" "$("$ctl" list | cut -f1 | grep -oE '\w+\(' | tr -d '(')" "$(jq -r .method out)"
    expect "a row of it" '["factory","int",["String value","int id"]]' \
        "$(jq -c 'select(.method == "nativeSetTestResult") | [.service, .result, [.parameters[] | .type + " " + .name]]' out)"
}

@test "the status of all services on each device" {
    ends 0 "$ctl" --device mixed status --json
    expect "what is not over AIDL" "touch HIDL sensors HIDL light HIDL satellite none" \
        "$(jq -r 'select(.backend != "AIDL") | .service, .backend // "none"' out | xargs)"
    ends 0 "$ctl" --device bare status --json
    expect "what is there" "" "$(jq -r 'select(.backend).service' out)"
    # instances COLUMN DEVICE: those that the table for device trees names, and those of the status.
    instances() {
        ends 0 "$ctl" --device "$2" status --json
        expect "instances of $2" "$(awk -F ' *[|] *' -v column="$1" '/^[|].*`vendor/ {print $column}' "$source/docs/device.md" | tr -d '`-')" \
            "$(jq -r 'select(.backend).instance' out)"
    }
    instances 3 aidl
    instances 4 hidl
    ends 1 "$ctl" --device bare call itemname a b
    ends 0 "$ctl" status light
    expect "of one" "light HIDL vendor.zantor.hardware.light@2.0::ILight/default aidlLight is null; g_light linkToDeath" "$(xargs <out)"
    ends 1 "$ctl" status satellite
}

@test "a load that waits, and who died meanwhile" {
    export CLASSPATH=$build/java/tests:$ctl_path
    ends 0 "$source/simulate" java com.quorvin.kalvornii.ctl.LateService status --json
    holds "what it waits for" "kalvornctl: the load waits for vendor.zantor.hardware.ztchipsrvsat.IZtChipSrvSat/ztchipsrv_sat, which is declared and has not started" err
    expect "after it" "AIDL" "$(jq -r 'select(.service == "satellite").backend' out)"
    expect "who died" "power" "$(jq -r 'select(.died).service' out)"
    ends 5 "$source/simulate" java com.quorvin.kalvornii.ctl.LateService call --timeout 0.5 getboardname
    holds "the limit" "which is declared and has not started; given up after 0.5 s" err
}

@test "waiting for a service" {
    ends 0 "$ctl" wait light
    expect "over HIDL" HIDL "$(<out)"
    ends 1 "$ctl" wait --timeout 0.3 satellite
    expect "given up" "kalvornctl: the satellite service is absent after 0.3 s" "$(<err)"
    printf '%s\n' 'wait 1' 'restart AIDL satellite' >events
    ends 0 "$ctl" --events events wait satellite --timeout 30
    expect "started late" AIDL "$(<out)"
}

@test "a call that does not answer" {
    mkfifo misc  # nobody reads it, so that writing waits
    ends 5 env CLASSPATH="$ctl_path" "$source/simulate" env KALVORN_MISC="$PWD/misc" \
        java "$main" call misctorecovery --timeout 0.5
    expect "the limit" "kalvornctl: nativeWriteMiscToRecovery: no answer after 0.5 s" "$(<err)"
    ends 5 env CLASSPATH="$ctl_path" "$source/simulate" env KALVORN_MISC="$PWD/misc" \
        java "$main" run --timeout 0.5 <<<$'getboardname\nmisctorecovery\ngetboardname'
    expect "calls before it" "nativeGetBoardName = KV-MAIN-V3" "$(<out)"
    holds "summary" "kalvornctl: 1 call" err
}

@test "what other threads log is not of a call" {
    ends 0 env CLASSPATH="$build/java/tests:$ctl_path" "$source/simulate" --log noisy java com.quorvin.kalvornii.ctl.Noise
    expect "the log of a call" "E GetBoardNameByAidl I Get version name = KV-MAIN-V3" "$(sed '$d' err | xargs)"
    holds "what the other thread logged" "KalvornNative: noise" noisy
}

@test "a service that dies in the middle of a run, and again before its end" {
    mkfifo lines_in events_in
    exec 5<>lines_in 6<>events_in
    : >run_out
    "$ctl" --events events_in run lines_in >>run_out 2>run_err 3>&- 5>&- 6>&- &
    local run=$! status=0
    until_holds run_out "KV-MAIN-V3" eval 'echo getboardname >&5'
    echo 'kill AIDL factory' >&6
    until_holds run_out "= INVALID_SERVICE" eval 'echo getboardname >&5'
    echo 'settestresult lost 1 = -9999' >&5
    until_holds run_out "nativeSetTestResult lost 1 = -9999"
    echo 'restart AIDL factory' >&6
    until_holds run_out "nativeSetTestResult kept 1 = 0" eval 'echo settestresult kept 1 >&5'
    echo 'gettestresult 1 = kept' >&5
    until_holds run_out "nativeGetTestResult 1 = kept"
    echo 'kill AIDL factory' >&6
    : >run_out
    until_holds run_out "nativeGetBoardName = INVALID_SERVICE" eval 'echo getboardname >&5'
    exec 5>&- 6>&-
    timeout 20 tail --pid="$run" -f /dev/null || kill "$run"
    wait "$run" || status=$?
    expect "status of the run" 1 "$status"
    holds "its summary" ", 2 as expected, " run_err
}

@test "watch names who died, and ends quietly" {
    mkfifo events
    mkdir tmp
    : >watched
    set -m  # so that what starts here can be interrupted
    TMPDIR=$PWD/tmp "$ctl" --events events watch >>watched 2>watch_err 3>&- &
    local watch=$! status=0
    set +m
    exec 6<>events
    until_holds watched "satellite"
    echo 'kill AIDL sim' >&6
    until_holds watched "sim              died"  # at once, and not when it is back
    printf '%s\n' 'restart AIDL sim' 'wait 0.5' 'kill-process light' 'wait 0.5' 'restart-process light' >&6
    until_holds watched "light            died"
    for ((i = 0; i < 50; i++)); do
        [ "$(awk '$2 == "light"' watched | wc -l)" -lt 4 ] || break
        sleep 0.1
    done
    kill -INT "$(pgrep -P "$watch" grep)"  # logcat may be the first to end
    sleep 0.2
    kill -INT -- "-$watch"
    wait "$watch" || status=$?
    expect "status" 130 "$status"
    expect "told on standard error" "" "$(<watch_err)"
    expect "who died" "sim light sensors touch" "$(awk '$3 == "died" {print $2}' watched | sort | xargs | awk '{print $3, $1, $2, $4}')"
    expect "a death and its end" "AIDL none AIDL" "$(awk '$2 == "sim" && $3 != "died" {print $3}' watched | xargs)"
    expect "those of HIDL" "HIDL none HIDL" "$(awk '$2 == "light" && $3 != "died" {print $3}' watched | xargs)"
    expect "an AIDL service that lives" "AIDL none AIDL" "$(awk '$2 == "power" {print $3}' watched | xargs)"
    holds "the notice over AIDL" "  serviceDied, remote hal service died" watched
    holds "the notice over HIDL" "  enter into ProcessServiceDied, cookie is:3" watched
    expect "what each line begins with" "" "$(grep -vE '^[0-9]{2}:[0-9]{2}:[0-9]{2}\.[0-9]{3}  ' watched)"
    for ((i = 0; i < 200; i++)); do  # what reads the log ends with it
        pgrep -af -- "$PWD/tmp/" >left || break
        sleep 0.1
    done
    expect "processes left behind" "" "$(<left)"
}

@test "on a terminal" {
    on_terminal "24 80" "$ctl" list >out
    expect "lines too long for 80 columns" "" "$(awk 'length > 80' out)"
    holds "a method" "int[] nativeSetTestItemName(String mainItemName, String subItemName)" out
    holds "its service and what it does" "    factory: Tells the names of the current test items" out
    on_terminal "24 80" "$ctl" status power >out
    expect "lines of a row" 2 "$(wc -l <out)"
    printf 'settestresult %s 1\n' "\$'\\x1b[31m\\n'" >lines
    on_terminal "24 80" "$ctl" run lines >out
    expect "escapes that arrive" 0 "$(grep -c $'\033' out)"
}

# watch_until "ROWS COLUMNS" TEXT: the last screen of watch on such a terminal, once that text has come.
watch_until() {
    : >out  # the last one's is not waited for
    # shellcheck disable=SC2016
    on_terminal "$1" sh -c 'echo $$ >pid; exec "$@"' - "$ctl" --events events watch >out 3>&- &
    local shown=0
    until_holds out "$2" || shown=1
    kill "$(<pid)"
    wait $! || true
    [ "$shown" = 0 ] || return 1
    awk 'BEGIN { RS = "\033\\[H\033\\[J" } END { printf "%s", $0 }' out >screen
}

@test "watch on terminals of several sizes" {
    printf '%s\n' 'wait 1' 'kill AIDL sim' >events
    watch_until "24 100" "sim              none  ExitKvManager by aidl"
    expect "lines too long" "" "$(awk 'length >= 100' screen)"
    holds "the death" "  sim              died" screen
    for size in "10 40" "4 40"; do
        watch_until "$size" "none: sim "
        expect "lines too long for $size" "" "$(awk -v most="${size#* }" 'length >= most' screen)"
        [ "$(wc -l <screen)" -lt "${size% *}" ]
    done
}

@test "without the library, the log or a simulated device" {
    mkdir libraries tools
    export CLASSPATH=$ctl_path
    simulate=$source/simulate
    ln -s "$build"/*.so libraries/
    rm libraries/lib_kalvorn.so
    # shellcheck disable=SC2016
    ends 3 "$simulate" bash -c 'LD_LIBRARY_PATH=$1 exec java $2 call getboardname' - "$PWD/libraries" "$main"
    holds "without the library" "the library did not load: no _kalvorn in java.library.path" err
    holds "where it is looked for" "lib_kalvorn.so is looked for in: $PWD/libraries" err

    # It must not get what is preloaded here, which on a device is for 32 bits.
    # shellcheck disable=SC2016
    printf '#!/bin/sh\necho "${LD_PRELOAD}${LD_LIBRARY_PATH}no permission" >&2; exit 1\n' >tools/logcat
    chmod +x tools/logcat
    # shellcheck disable=SC2016
    without_log=("$simulate" bash -c 'PATH=$1:$PATH exec java "${@:2}"' - "$PWD/tools" "$main")
    ends 3 "${without_log[@]}" status
    holds "status without the log" "cannot be read: logcat: no permission" err
    ends 0 "${without_log[@]}" run -v --json <<<getboardname
    expect "JSON without the log" '[null,null]' "$(jq -c '[.backend, .log]' out)"
    holds "a call without the log" "(the log cannot be read: logcat: no permission)" err
}

# As on a real device that has no services. What is denied has its own line.
@test "without a simulated device" {
    export CLASSPATH=$ctl_path
    real=("$source/simulate" env -u KALVORN_DEVICE)
    ends 2 "${real[@]}" java "$main" call misctorecovery </dev/null
    holds "what it writes" "so that the next boot is one into recovery. --yes permits it." err
    ends 0 "${real[@]}" java "$main" --yes call misctorecovery
    expect "written" 0 "$(<out)"
    ends 0 "${real[@]}" KALVORN_TERMINALS=0 java "$main" call misctorecovery <<<y
    ends 2 "${real[@]}" KALVORN_TERMINALS=0 java "$main" call misctorecovery <<<''
    holds "an answer other than yes" "nothing was written" err
    ends 1 "${real[@]}" java "$main" call getboardname
    holds "absent on a device" "started from a shell this is not the application" err
    # shellcheck disable=SC2016
    ends 1 "${real[@]}" bash -c 'echo "01-01 00:00:00.000   1   1 E SELinux : avc:  denied  { find } for pid=$$ uid=0 name=vendor.zantor.hardware.power.IQXPower/default permissive=0" >>"$KALVORN_LOG"
        exec java "$@"' - "$main" call getpowerstate x
    holds "a denial" "SELinux denies this process: power." err
}

@test "the stand-in for logcat shows what it is asked for, and refuses what it does not know" {
    logcat=$source/platform/android/logcat
    cat >log <<'END'
01-01 00:00:00.000    11    12 D KalvornNative: debug
01-01 00:00:00.000   111    12 I KalvornNative: of another process
01-01 00:00:00.000    11    12 D Other   : too low
01-01 00:00:00.000    11    12 W Other   : warning
01-01 00:00:00.000    11    12 E Another : error
END
    export KALVORN_LOG=$PWD/log
    ends 0 "$logcat" -d -b all -v threadtime --pid=11 -s KalvornNative Other:W
    expect "logcat" "debug warning" "$(awk '{print $NF}' out | xargs)"
    ends 0 "$logcat" -d -s Nothing:V
    ends 1 "$logcat" -d KalvornNative
    ends 1 "$logcat" -d -s -v brief KalvornNative
    ends 1 "$logcat" -d -s --format KalvornNative
    KALVORN_LOG=/dev/null ends 1 "$logcat" -d -s KalvornNative
}

# With what stands for a device's app_process32, in the two places that its parts may have.
@test "the device's wrapper" {
    mkdir -p device/bin device/framework device/lib pushed tools
    # shellcheck disable=SC2016
    printf '#!/bin/sh\necho "$CLASSPATH $LD_PRELOAD $KALVORN_TERMINALS|$KALVORN_SIZE|$*"\n' >tools/app_process32
    chmod +x tools/app_process32
    cp "$source/ctl/kalvornctl" device/bin/
    cp "$source/ctl/kalvornctl" pushed/
    wrapped() { ends "$1" env PATH="$PWD/tools:$PATH" LC_ALL=C sh "$2" call x 'a b' </dev/null; }
    wrapped 3 device/bin/kalvornctl
    holds "no jar" "no kalvornctl.jar in $PWD/device/bin or $PWD/device/framework" err
    touch device/framework/kalvornctl.jar pushed/{kalvornctl.jar,lib_kalvorn.so}
    wrapped 3 device/bin/kalvornctl
    holds "no library" "no lib_kalvorn.so in $PWD/device/bin, $PWD/device/lib, /system_ext/lib" err
    touch device/lib/lib_kalvorn.so
    wrapped 0 device/bin/kalvornctl
    expect "installed" "$PWD/device/framework/kalvornctl.jar $PWD/device/lib/lib_kalvorn.so ||/system/bin $main call x a b" \
        "$(grep -v '^ERROR: ld.so' out)"
    wrapped 0 pushed/kalvornctl
    expect "pushed" "$PWD/pushed/kalvornctl.jar $PWD/pushed/lib_kalvorn.so ||/system/bin $main call x a b" "$(<out)"
    PATH="$PWD/tools:$PATH" on_terminal "31 77" sh -c 'sh pushed/kalvornctl call x </dev/null' >out
    holds "on a terminal" " 12|31 77|/system/bin $main call x" out
}

@test "completion in bash" {
    "$ctl" completion bash >script
    # completes WORD...: what there is for the last word, in order
    completes() {
        bash -c '. ./script; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _kalvornctl; echo "${COMPREPLY[*]}"' - \
            kalvornctl "$@"
    }
    check_completions
    : >station7.device
    expect "files" "run station7.device" "run $(completes run st)"
}

@test "completion in zsh" {
    "$ctl" completion zsh >script
    completes() {
        zsh -fc 'compdef() { }; _files() { }
            compadd() {
                local -a options candidates
                zparseopts -D -a options U a
                shift $(($# > 0 && ${#${1:#--}} == 0))
                if [[ ${options[(r)-a]} == -a ]]; then candidates=(${(P)1}); print -r -- $candidates
                else print -r -- ${(M)@:#${words[CURRENT]}*}; fi
            }
            . ./script; words=("$@"); CURRENT=$#; _kalvornctl' - kalvornctl "$@" | xargs
    }
    check_completions
}

# What both shells complete.
check_completions() {
    expect "a command" "wait watch" "$(completes wa)"
    expect "a method" "nativeGetBoardName" "$(completes call getboardn)"
    expect "a method with native" "nativeGetBoardName" "$(completes call --json nativegetboardn)"
    expect "a service" "sensors" "$(completes --device hidl status se)"
    expect "a device" "aidl" "$(completes call --device ai)"
    expect "options" "--timeout --times" "$(completes call --ti)"
    expect "no more than one method" "" "$(completes call getboardname getb)"
    expect "all methods" "$("$ctl" list | cut -f1 | grep -oE '\w+\(' | tr -d '(' | sort)" \
        "$(completes call '' | tr ' ' '\n' | sort)"
}

@test "the manual page says what the help says" {
    page=$build/kalvornctl.1
    holds "a command's own text" "null for null, and \\enull for that word" "$page"
    expect "sections" "$(sed -n 's/^@ //p' "$source/ctl/com/quorvin/kalvornii/ctl/help.txt" | tr '[:lower:]' '[:upper:]')" \
        "$(sed -n 's/^\.SH //p' "$page" | grep -vE '^(NAME|SYNOPSIS|DESCRIPTION)$')"
    ends 0 "$ctl" --version
    local version
    version=$(<"$source/VERSION")
    expect "version" "kalvornctl $version lib_kalvorn.so $version" "$(xargs <out)"
    holds "its version" "kalvornctl $version" "$page"
}
