#!/bin/bash
# ./kalvornctl from another folder: every method on two devices, each status, the texts that a shell may
# give, deaths meanwhile, a load that waits, a log that cannot be read, the device's wrapper; and the tests
# of its classes: kalvornctl_test.sh SOURCE_DIR TEST_CLASSES [CHECK...]
set -euo pipefail
source=$1
classes=$2
java=$source/build/host/java
ctl=$source/kalvornctl
calls=$source/samples/methods.samples
main=com.quorvin.kalvornii.ctl.Main
. "$(dirname "$0")/expect.sh"
cd "$work"

# holds WHAT TEXT FILE
holds() {
    [ -z "$2" ] || grep -qF -- "$2" "$3" && return 0
    printf '%s: expected in %s\n%s\nfound\n%s\n' "$1" "$3" "$2" "$(<"$3")"
    failed=1
}

# ends STATUS COMMAND...: with that status; what it writes goes to the files out and err.
ends() {
    local status=0
    timeout 60 "${@:2}" >out 2>err || status=$?
    [ "$status" = "$1" ] && return 0
    expect "status of ${*:2}" "$1" "$status"
    cat err
}

# until_in FILE TEXT [COMMAND...]: waits, and does that each time.
until_in() {
    for ((i = 0; i < 200; i++)); do
        ! grep -qF -- "$2" "$1" || return 0
        "${@:3}"
        sleep 0.1
    done
    holds "in 20 seconds" "$2" "$1"
}

check_first_use() {
    ends 0 env -i PATH="$PATH" HOME="$HOME" "$ctl" call getboardname </dev/null
    expect "a first call" "KV-MAIN-V3" "$(<out)"
    expect "beside a first call" "" "$(<err)"
    ln -s "$ctl" linked
    ends 0 ./linked call getboardname
    expect "through a link" "KV-MAIN-V3" "$(<out)"
}

check_every_method() {
    local count line
    ends 0 "$ctl" list
    expect "parts of a line of list" "3" "$(awk -F'\t' '{print NF}' out | sort -u)"
    cut -f1 out | grep -oE '\w+\(' | tr -d '(' | sort >listed
    ends 0 "$ctl" --device aidl run "$calls"
    expect "methods called" "$(<listed)" "$(cut -d' ' -f1 out | sort)"
    count=$(wc -l <listed)
    expect "summary" "kalvornctl: $count calls, $count as expected" "$(<err)"
    cp out recorded
    ends 0 "$ctl" --device aidl run <recorded  # its output is what it takes
    expect "the same again" "$(<recorded)" "$(<out)"
    ends 4 "$ctl" --device hidl run "$calls"
    line=$(grep -n '^nativeSetSimPowerState' "$calls" | cut -d: -f1)
    holds "a difference on hidl" "nativeSetSimPowerState 1 = -9999  # $calls:$line expected: 0" out
    expect "differences on hidl, all of absent services" "$(grep -c ' expected: ' out)" \
        "$(grep -cE ' = (-9999|INVALID_SERVICE)  # [^ ]* expected: ' out)"
    expect "calls on hidl" "$count" "$(wc -l <out)"
    holds "summary on hidl" "kalvornctl: $count calls, " err
}

# Lines of: status|what standard error tells|arguments, a word each
check_statuses() {
    local status message arguments
    while IFS='|' read -r status message arguments; do
        read -ra arguments <<<"$arguments"
        ends "$status" "$ctl" "${arguments[@]}" </dev/null
        holds "${arguments[*]}" "$message" err
        [ "$status" != 2 ] || expect "output of ${arguments[*]}" "" "$(<out)"
    done <<'END'
0||call sendCmdToFingerprintHalNative -1 null
1|nativeChipTtTestCp: the satellite service is absent|call testcp x
1|the factory service is absent|--device bare call itemname a b
1|an argument is null, or the factory service is absent|call settestresult null 3
2|id: a 32-bit number|call gettestresult x
2|  String nativeGetTestResult(int id)|call gettestresult
2|one argument too many (options stand before METHOD|call getboardname --json
2|data: two hexadecimal digits a byte|call mcu 1 2 abc
2|the fields are version, commandId|call bigdataoperation x=1
2|is in the names of 3 methods|call hertz
2|no method has "nothing"|call nothing
2|a METHOD is expected|call
2|"list" has no option --json|list --json
2|no method has to do with "nothing"|list nothing
2|one word too many for "status"|status x
2|no command "frob"|frob
2|a command is expected|-v
2|no device "none"|--device none status
2|cannot read nowhere|run nowhere
2|cannot read . (|run .
END
}

# What a shell may give, as an argument and on a line, comes back as it was.
check_texts() {
    local i
    local -a texts=('' ' two  blanks ' 'a "quoted" b' "it's" '\' '#no comment' '=' '-v' '--json' \
        'Prüfstand 測試' '$HOME' '*')
    for ((i = 0; i < ${#texts[@]}; i += 2)); do
        ends 0 "$ctl" call -v setwificommand "${texts[@]:i:2}"
        holds "two texts" "setWifiCommand, testScene:${texts[i]}, cmd:${texts[i + 1]}, buf" err
    done
    ends 0 "$ctl" call -v setwificommand '\null' x
    holds "the word null" "testScene:null," err

    cat >lines <<'END'
settestresult '' 1 = 0
gettestresult 1 = ''
settestresult "a 'b' \"c\"  d" 2 = 0        # a comment
gettestresult 2 = 'a '\''b'\'' "c"  d'
settestresult 'Prüfstand # 測試' 3 = 0
gettestresult 0x3 = Prüfstand\ #\ 測試
settestresult '\null' 4 = 0
gettestresult 4 = '\null'
settestresult '=' 5 = 0
gettestresult 5 = $'\x3d'
gettestresult 99 = null
itemname a b = 0 0x0
END
    ends 0 "$ctl" run lines
    expect "summary of texts" "kalvornctl: 12 calls, 12 as expected" "$(<err)"
    holds "as it is shown" "nativeGetTestResult 2 = 'a '\\''b'\\'' \"c\"  d'" out
    printf 'settestresult \xff 1 = 0\ngettestresult 1 = \xef\xbf\xbd\n' >lines  # one of them is not UTF-8
    ends 0 "$ctl" run lines
    ends 0 "$ctl" call gettestresult 99
    expect "null" "null" "$(<out)"
    ends 0 "$ctl" call storagetestjudge read
    expect "a result and its field" $'0\ncurrentValue: 412 MB/s' "$(<out)"
}

check_lines_that_cannot_be_called() {
    printf '%s\n' getboardname 'gettestresult x' getboardname >lines
    ends 2 "$ctl" run lines
    expect "calls before the line" "nativeGetBoardName = KV-MAIN-V3" "$(<out)"
    holds "the line" "lines:2: id: a 32-bit number" err
    holds "the calls made" "kalvornctl: 1 call, 1 not made" err
    ends 2 "$ctl" run --keep-going <lines
    holds "the calls made, going on" "kalvornctl: 2 calls, 1 not made" err
    printf '%s\n' "getboardname 'x" 'getsocinfo a = b c' 'getboardname = x' 'testcp x' >lines
    ends 2 "$ctl" run --keep-going lines
    holds "an open quote" "lines:1: a quote is not closed" err
    holds "an expectation of two words" "lines:2: after = one word is expected" err
    holds "all that was not right" \
        "kalvornctl: 2 calls, 0 as expected, 1 with another result, 1 of an absent service, 2 not made" err
    printf '%s\n' 'testcp x = INVALID_SERVICE' getboardname >lines
    ends 0 "$ctl" run lines
    printf '%s\n' 'testcp x' getboardname >lines
    ends 1 "$ctl" run lines
}

# Nobody there to read from, or to write to.
check_ends_of_streams() {
    ends 0 "$ctl" run <&-
    expect "summary of nothing" "kalvornctl: 0 calls" "$(<err)"
    local status=0
    "$ctl" call getboardname >/dev/full 2>err || status=$?
    expect "status for a full disk" 3 "$status"
    holds "a full disk" "cannot write the result: No space left on device" err
    status=$(set +e; yes getboardname | timeout 60 "$ctl" run 2>/dev/null | head -1 >out; echo "${PIPESTATUS[1]}")
    expect "status when nobody reads on" 0 "$status"
}

check_json() {
    ends 0 "$ctl" call --json i2c
    expect "JSON" '{"method":"nativeI2cTest","arguments":[],"result":"pass","i2cInfo":"bus0:0x38 bus2:0x6b","milliseconds":T,"backend":"AIDL","log":["E I2cTestByAidl","I i2c test values = 0, checkResult = pass, out = bus0:0x38 bus2:0x6b","I Succeed to get i2c checking info"]}' \
        "$(sed -E 's/("milliseconds":)[0-9]+\.[0-9]+/\1T/' out)"
    ends 4 "$ctl" --device hidl run --json <<<'sendcmdtofingerprinthal 1 0aff = 1'
    expect "JSON of a run" '{"method":"sendCmdToFingerprintHalNative","arguments":[1,"0aff"],"result":0,"milliseconds":T,"backend":"HIDL","log":["I SendCmdToFingerprintHalByHidl","E cmd = 1","E SendCmdToFingerprintHal rawDataLength: 2","E SetCmdToFingerprintHal before","E SetCmdToFingerprintHal ret = 0"],"expected":1}' \
        "$(sed -E 's/("milliseconds":)[0-9]+\.[0-9]+/\1T/' out)"
}

# What other threads log during a call is not of the call.
check_other_threads() {
    cat >Noise.java <<'END'
public class Noise {
    public static void main(String[] arguments) {
        Thread noise = new Thread(() -> {
            for (;;) {
                android.util.Log.i("KalvornNative", "noise");
                java.util.concurrent.locks.LockSupport.parkNanos(1_000_000);
            }
        });
        noise.setDaemon(true);
        noise.start();
        com.quorvin.kalvornii.ctl.Main.main(new String[] {"call", "-v", "getboardname"});
    }
}
END
    ends 0 env CLASSPATH="$java/ctl" "$source/simulate" --log noisy java Noise.java
    expect "the log of a call beside another thread" \
        "E GetBoardNameByAidl I Get version name = KV-MAIN-V3" "$(sed '$d' err | xargs)"
    holds "what the other thread logged" "KalvornNative: noise" noisy
}

check_status() {
    local device all
    all="factory display touch sensors power light camera radio display_factory fingerprint chip sim satellite"
    while read -r device backends; do
        ends 0 "$ctl" --device "$device" status
        expect "services of $device" "$all" "$(awk '{print $1}' out | xargs)"
        expect "status of $device" "$backends" "$(awk '{print substr($2, 1, 1)}' out | xargs)"
    done <<'END'
aidl A A A A A A A A A A A A A
hidl H H H H H H H H H H H n n
mixed A A H H A H A A A A A A n
bare n n n n n n n n n n n n n
END
    # A service that the device declares, and starts only later.
    cat >Late.java <<'END'
import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.AIDL;

import com.quorvin.kalvornii.simulated.SimulatedDevice;

public class Late {
    public static void main(String[] arguments) {
        SimulatedDevice.declare(AIDL, "satellite");
        new Thread(() -> {
            try {
                Thread.sleep(4500);
            } catch (InterruptedException e) {
                throw new IllegalStateException(e);
            }
            SimulatedDevice.restart(AIDL, "satellite");
        }).start();
        com.quorvin.kalvornii.ctl.Main.main(new String[] {"status"});
    }
}
END
    ends 0 env CLASSPATH="$java/ctl" "$source/simulate" java Late.java
    expect "a load that waits" "kalvornctl: the load waits for vendor.zantor.hardware.ztchipsrvsat.IZtChipSrvSat/ztchipsrv_sat, which is declared and has not started" "$(<err)"
    expect "after it" "AIDL" "$(awk '$1 == "satellite" {print $2}' out)"
}

# A service dies in the middle of a run, comes back, and dies again before the end.
check_death() {
    mkfifo lines_in events_in
    exec 3<>lines_in 4<>events_in
    : >run_out
    "$ctl" --events events_in run lines_in >>run_out 2>run_err 3>&- 4>&- &
    local run=$! status=0
    echo getboardname >&3
    until_in run_out "KV-MAIN-V3"
    echo 'kill AIDL factory' >&4
    until_in run_out "= INVALID_SERVICE" eval 'echo getboardname >&3'
    echo 'settestresult lost 1 = -9999' >&3
    until_in run_out "nativeSetTestResult lost 1 = -9999"
    echo 'restart AIDL factory' >&4
    until_in run_out "nativeSetTestResult kept 1 = 0" eval 'echo settestresult kept 1 >&3'
    echo 'gettestresult 1 = kept' >&3
    until_in run_out "nativeGetTestResult 1 = kept"
    echo 'kill AIDL factory' >&4
    : >run_out
    until_in run_out "nativeGetBoardName = INVALID_SERVICE" eval 'echo getboardname >&3'
    exec 3>&- 4>&-
    timeout 20 tail --pid="$run" -f /dev/null || kill "$run"
    wait "$run" || status=$?
    expect "status of a run with deaths" 1 "$status"
    holds "its summary" ", 2 as expected, " run_err
}

check_watch() {
    printf '%s\n' 'wait 2' 'kill AIDL sim' 'wait 0.3' 'restart AIDL sim' 'wait 0.3' \
        'kill-process light' 'wait 0.3' 'restart-process light' >events
    mkdir tmp; : >watched
    TMPDIR=$work/tmp "$ctl" --events events watch >>watched 2>watch_err &
    local watch=$! i
    for ((i = 0; i < 100; i++)); do
        [ "$(awk '$2 == "light"' watched | wc -l)" -lt 3 ] || break
        sleep 0.1
    done
    grep -qlsaF -- "$work/tmp/" /proc/[0-9]*/cmdline || expect "readers of the log" some none
    kill "$watch"
    expect "a death and its end" "AIDL none AIDL" "$(awk '$2 == "sim" {print $3}' watched | xargs)"
    expect "those of HIDL" "HIDL none HIDL" "$(awk '$2 == "light" {print $3}' watched | xargs)"
    expect "an AIDL service that lives" "AIDL none AIDL" "$(awk '$2 == "power" {print $3}' watched | xargs)"
    holds "the notice over AIDL" "  serviceDied, remote hal service died" watched
    holds "the notice over HIDL" "  enter into ProcessServiceDied, cookie is:6" watched
    expect "what each line begins with" "" "$(grep -vE '^[0-9]{2}:[0-9]{2}:[0-9]{2}\.[0-9]{3}  ' watched)"
    for ((i = 0; i < 50; i++)); do  # what reads the log ends with it
        grep -lsaF -- "$work/tmp/" /proc/[0-9]*/cmdline >left || break
        sleep 0.1
    done
    expect "processes left behind" "" "$(<left)"
}

# on_terminal COLUMNS COMMAND...: what the command writes on a terminal, without carriage returns.
on_terminal() {
    local columns=$1 command
    printf -v command '%q ' "${@:2}"
    script -qec "stty cols $columns; $command" /dev/null </dev/null | tr -d '\r' | sed 's/\x1b\[K//g'
}

check_terminal() {
    on_terminal 80 "$ctl" list >out
    expect "lines too long for 80 columns" "" "$(awk 'length > 80' out)"
    holds "a method" "int[] nativeSetTestItemName(String mainItemName, String subItemName)" out
    holds "its service and what it does" "    factory: Tells the names of the current test items" out
    on_terminal 100 timeout 8 "$ctl" --events <(echo 'wait 1'; echo 'kill AIDL sim') watch >out || true
    holds "a table" $'\033[H\033[J' out
    holds "a row" "power            AIDL  g_aidlPower linkToDeath" out
    holds "a row in place" "power            none  ExitKvManager by aidl" out
    expect "lines too long for 100 columns" "" "$(awk 'length > 106' out)"
}

# What stands between the command and the device, taken away one by one.
check_without() {
    mkdir -p libraries tools
    export CLASSPATH=$java/ctl
    local simulate=$source/simulate
    ln -s "$source"/build/host/*.so libraries/
    rm libraries/lib_kalvorn.so
    # shellcheck disable=SC2016
    ends 3 "$simulate" bash -c 'LD_LIBRARY_PATH=$1 exec java $2 call getboardname' - "$work/libraries" "$main"
    holds "without the library" "the library did not load: no _kalvorn in java.library.path" err
    holds "where it is looked for" "lib_kalvorn.so is looked for in: $work/libraries" err

    # It must not get what is preloaded here, which on a device is for 32 bits.
    printf '#!/bin/sh\necho "${LD_PRELOAD}${LD_LIBRARY_PATH}no permission" >&2; exit 1\n' >tools/logcat
    chmod +x tools/logcat
    without_log=("$simulate" bash -c 'PATH=$1:$PATH exec java "${@:2}"' - "$work/tools" "$main")
    ends 3 "${without_log[@]}" status
    holds "status without the log" "cannot be read: logcat: no permission" err
    ends 0 "${without_log[@]}" call -v getboardname
    holds "a call without the log" "(the log cannot be read: logcat: no permission)" err
    ends 0 "${without_log[@]}" call --json getboardname
    holds "JSON without the log" '"backend":null,"log":null}' out

    # Without a simulated device, as on a real one that has no services. What is denied has its own line.
    real=("$simulate" env -u KALVORN_DEVICE)
    ends 2 "${real[@]}" java "$main" call misctorecovery </dev/null
    holds "what it writes" "so that the next boot is one into recovery. --yes permits it." err
    ends 0 "${real[@]}" java "$main" --yes call misctorecovery
    expect "written" 0 "$(<out)"
    ends 0 "${real[@]}" KALVORN_ASK=1 java "$main" call misctorecovery <<<y
    ends 2 "${real[@]}" KALVORN_ASK=1 java "$main" call misctorecovery <<<''
    holds "an answer other than yes" "nothing was written" err
    ends 2 "${real[@]}" java "$main" run <<<'misctorecovery'
    ends 1 "${real[@]}" java "$main" call getboardname
    holds "absent on a device" "started from a shell this is not the application" err
    # shellcheck disable=SC2016
    ends 1 "${real[@]}" bash -c 'echo "01-01 00:00:00.000   1   1 E SELinux : avc:  denied  { find } for pid=$$ uid=0 name=vendor.zantor.hardware.power.IQXPower/default permissive=0" >>"$KALVORN_LOG"
        exec java "$@"' - "$main" call getpowerstate x
    holds "a denial" "SELinux denies this process: power." err
    unset CLASSPATH
}

# The stand-in for logcat shows what it is asked for, and refuses what it does not know.
check_logcat() {
    local logcat=$source/platform/android/logcat
    cat >log <<'END'
01-01 00:00:00.000    11    12 D KalvornNative: debug
01-01 00:00:00.000   111    12 I KalvornNative: of another process
01-01 00:00:00.000    11    12 D Other   : too low
01-01 00:00:00.000    11    12 W Other   : warning
01-01 00:00:00.000    11    12 E Another : error
END
    export KALVORN_LOG=$work/log
    ends 0 "$logcat" -d -b all -v threadtime --pid=11 -s KalvornNative Other:W
    expect "logcat" "debug warning" "$(awk '{print $NF}' out | xargs)"
    ends 0 "$logcat" -d -s Nothing:V
    ends 1 "$logcat" -d KalvornNative
    ends 1 "$logcat" -d -s -v brief KalvornNative
    ends 1 "$logcat" -d -s --format KalvornNative
    KALVORN_LOG=/dev/null ends 1 "$logcat" -d -s KalvornNative
}

# The wrapper with what stands for a device's app_process32, in the two places that its parts may have.
check_wrapper() {
    mkdir -p device/bin device/framework device/lib pushed tools
    printf '#!/bin/sh\necho "$CLASSPATH $LD_PRELOAD $KALVORN_ASK|$KALVORN_COLUMNS|$*"\n' >tools/app_process32
    chmod +x tools/app_process32
    cp "$source/ctl/kalvornctl" device/bin/
    cp "$source/ctl/kalvornctl" pushed/
    wrapped() { ends "$1" env PATH="$work/tools:$PATH" LC_ALL=C sh "$2" call x 'a b' </dev/null; }
    wrapped 3 device/bin/kalvornctl
    holds "no jar" "no kalvornctl.jar in $work/device/bin or $work/device/framework" err
    touch device/framework/kalvornctl.jar pushed/{kalvornctl.jar,lib_kalvorn.so}
    wrapped 3 device/bin/kalvornctl
    holds "no library" "no lib_kalvorn.so in $work/device/bin, $work/device/lib, /system_ext/lib" err
    touch device/lib/lib_kalvorn.so
    wrapped 0 device/bin/kalvornctl
    expect "installed" "$work/device/framework/kalvornctl.jar $work/device/lib/lib_kalvorn.so ||/system/bin $main call x a b" \
        "$(grep -v '^ERROR: ld.so' out)"
    wrapped 0 pushed/kalvornctl
    expect "pushed" "$work/pushed/kalvornctl.jar $work/pushed/lib_kalvorn.so ||/system/bin $main call x a b" \
        "$(<out)"
}

check_classes() {
    local junit=/usr/share/java/junit-platform-console-standalone.jar
    java -Dkalvorn.source="$source" -cp "$junit:$classes:$java/classes:$java/ctl:$java/android" \
        org.junit.platform.console.ConsoleLauncher --disable-banner \
        --select-package com.quorvin.kalvornii.ctl >report 2>&1 || { cat report; failed=1; }
    grep -qE '\[ +[1-9][0-9]* tests successful' report || { cat report; failed=1; }
}

checks=(first_use classes every_method statuses texts lines_that_cannot_be_called ends_of_streams json
    other_threads status death watch terminal without logcat wrapper)
[ $# -eq 2 ] || checks=("${@:3}")
for check in "${checks[@]}"; do "check_$check"; done
exit "$failed"
