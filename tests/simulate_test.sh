#!/bin/bash
# ./simulate from another folder: other people's programs on each device, their status, the log and the
# events; and the tests that stand on the simulated device: simulate_test.sh SOURCE_DIR TEST_CLASSES
set -euo pipefail
source=$1
classes=$2
junit=/usr/share/java/junit-platform-console-standalone.jar
. "$(dirname "$0")/expect.sh"
cd "$work"

cat >Program.java <<'END'
import com.quorvin.kalvornii.KvNativeInterface;

/** Prints what three services answer, after each line that it reads. */
public class Program {
    public static void main(String[] arguments) {
        KvNativeInterface kv = new KvNativeInterface();
        java.util.Scanner lines = new java.util.Scanner(System.in);
        do {
            System.out.println(kv.nativeGetBoardName() + " " + kv.nativeSetLedBrightness(1, 2)
                    + " " + kv.nativeChipTtTestCp("cp") + " " + kv.nativeWriteMiscToRecovery());
        } while (lines.hasNextLine() && !lines.nextLine().isEmpty());
        System.exit(arguments.length);
    }
}
END

# On each device, run from its source.
while read -r device answers; do
    found=$("$source/simulate" --device "$device" java Program.java </dev/null 2>&1) || true
    expect "$device" "$answers" "$found"
done <<'END'
aidl KV-MAIN-V3 0 cp ok 0
hidl KV-MAIN-V3 0 INVALID_SERVICE 0
mixed KV-MAIN-V3 0 INVALID_SERVICE 0
bare INVALID_SERVICE -9999 INVALID_SERVICE 0
END

# The status is the command's.
status=0
"$source/simulate" java Program.java a b c </dev/null >/dev/null || status=$?
expect "status of the command" 3 "$status"
status=0
"$source/simulate" --device none true 2>/dev/null || status=$?
expect "status for a device that does not exist" 2 "$status"
status=0
"$source/simulate" nosuchcommand 2>/dev/null || status=$?
expect "status for a command that cannot be run" 2 "$status"

# Through a link, for a program in another folder; with a signal to all of its process group, nothing stays.
mkdir elsewhere tmp
ln -s "$source/simulate" linked
javac -d out -cp "$source/build/host/java/classes" Program.java
# shellcheck disable=SC2016
CLASSPATH=$work/out ./linked --log relative bash -c 'cd elsewhere; java Program </dev/null' >/dev/null
[ -s relative ] || { echo "no log where it was asked for"; failed=1; }
TMPDIR=$work/tmp timeout 1 "$source/simulate" sleep 60 || true
for ((i = 0; i < 50; i++)); do
    [ -n "$(ls tmp)" ] || break
    sleep 0.1
done
expect "left behind" "" "$(ls tmp)"

# What happens to the device while the program runs, and the log of it.
mkfifo events
coproc program { "$source/simulate" --events events --log log java Program.java; }
# await PATTERN COUNT: until so many lines of the log are like it.
await() {
    for ((i = 0; i < 300; i++)); do
        [ "$(grep -cE "$1" log)" -lt "$2" ] || return 0
        sleep 0.1
    done
    echo "never logged $2 times: $1"
    failed=1
}
read -r first <&"${program[0]}"
echo "kill AIDL factory" >events
await 'InitAidlFactoryInterface' 2
expect "before the death" "KV-MAIN-V3 0 INVALID_SERVICE 0" "$first"
printf 'next\n' >&"${program[1]}"
read -r dead <&"${program[0]}"
expect "while the factory service is dead" "INVALID_SERVICE 0 INVALID_SERVICE 0" "$dead"
echo "restart AIDL factory" >events
await 'g_aidlSim linkToDeath' 2
printf 'next\n' >&"${program[1]}"
read -r back <&"${program[0]}"
expect "when it is back" "$first" "$back"
printf '\n' >&"${program[1]}"
wait "$program_PID" || true
await '^[0-9-]+ [0-9:.]+ +[0-9]+ +[0-9]+ I KalvornNative: JNI_OnLoad$' 1

# The example, compiled and run as its page says, and the tests of SimulatedDevice itself.
export CLASSPATH=$junit:$work/out:$classes
"$source/simulate" javac -d out "$source/simulator/example/BurnInTest.java"
for class in BurnInTest com.quorvin.kalvornii.simulated.SimulatedDeviceTest; do
    "$source/simulate" java org.junit.platform.console.ConsoleLauncher --disable-banner \
        --select-class "$class" >report 2>&1 || { cat report; failed=1; }
    grep -qE '\[ +[1-9][0-9]* tests successful' report || { cat report; failed=1; }
done
exit "$failed"
