#!/usr/bin/env bats
# ./simulate, from another folder: other people's programs on each device, their status, the log and the
# events; and the tests that stand on the simulated device.
bats_require_minimum_version 1.5.0

load commands

setup() {
    cd "$BATS_TEST_TMPDIR" || return
    source=$BATS_TEST_DIRNAME/..
    simulate=$source/simulate
    package=com.quorvin.kalvornii.simulated
    sources=$source/tests/java/${package//.//}
    # All but the first run take what that has prepared.
    [ "$BATS_TEST_NUMBER" = 1 ] || export KALVORN_PREPARED=1
    export CLASSPATH=$source/build/host/java/tests
}

logged() { [ "$(grep -cE "$1" log)" -ge "$2" ]; }

program() { run -"$1" "$simulate" "${@:2}" </dev/null; }

@test "a program runs from its source, on the device that has all but the satellite chip" {
    program 0 java "$sources/Program.java"
    [ "$output" = "KV-MAIN-V3 0 INVALID_SERVICE 0" ]
}

@test "each device has its services" {
    while read -r device answers; do
        program 0 --device "$device" java "$package.Program"
        [ "$output" = "$answers" ]
    done <<'END'
aidl KV-MAIN-V3 0 cp ok 0
hidl KV-MAIN-V3 0 INVALID_SERVICE 0
bare INVALID_SERVICE -9999 INVALID_SERVICE 0
END
}

@test "the status is the command's, or 2" {
    program 3 java "$package.Program" a b c
    program 2 --device none true
    [[ $output = *'no device "none"'* ]]
    program 2 nosuchcommand
    [[ $output = *'cannot run "nosuchcommand"'* ]]
}

@test "through a link, the command may go to another folder" {
    mkdir elsewhere
    ln -s "$simulate" linked
    ./linked --log log bash -c "cd elsewhere; java $package.Program </dev/null"
    logged '^[0-9-]+ [0-9:.]+ +[0-9]+ +[0-9]+ I KalvornNative: JNI_OnLoad$' 1
}

@test "a signal to the whole process group leaves nothing behind" {
    mkdir tmp
    TMPDIR=$PWD/tmp run -124 timeout 1 "$simulate" sleep 60
    await rmdir tmp
}

# The reader of the log is away, so a thread keeps the logger's lock for good.
@test "a program ends while threads go on logging" {
    mkfifo full lines
    exec 5<>full 6<>lines
    timeout -s KILL 60 "$simulate" --log full java "$package.Logging" <lines >said &
    await grep logging said
    echo >&6
    status=0
    wait $! || status=$?
    [ "$status" = 7 ]
}

@test "a signal ends a program whose threads go on logging" {
    mkfifo full lines
    exec 5<>full 6<>lines
    timeout -s KILL 60 "$simulate" --log full sh -c "echo \$\$ >id; exec java $package.Logging" <lines >said &
    await grep logging said
    kill -TERM "$(cat id)"
    status=0
    wait $! || status=$?
    [ "$status" = 143 ]
}

@test "events let services die and come back while the program runs" {
    mkfifo events
    coproc program { "$simulate" --events events --log log java "$package.Program"; }
    read -r first <&"${program[0]}"
    [ "$first" = "KV-MAIN-V3 0 INVALID_SERVICE 0" ]
    echo "kill AIDL factory" >events
    await logged InitAidlFactoryInterface 2
    echo next >&"${program[1]}"
    read -r dead <&"${program[0]}"
    [ "$dead" = "INVALID_SERVICE 0 INVALID_SERVICE 0" ]
    echo "restart AIDL factory" >events
    await logged 'g_aidlSim linkToDeath' 2
    echo next >&"${program[1]}"
    read -r back <&"${program[0]}"
    [ "$back" = "$first" ]
    echo >&"${program[1]}"
}

# junit CLASS: in CLASSPATH
junit() {
    CLASSPATH=/usr/share/java/junit-platform-console-standalone.jar:$CLASSPATH \
        "$simulate" java org.junit.platform.console.ConsoleLauncher --disable-banner --select-class "$1" >report 2>&1 ||
        { cat report; return 1; }
    grep -E '\[ +[1-9][0-9]* tests successful' report
}

# Maven finds its plugins where Debian has them.
@test "the package goes into a Maven repository, and the example passes with it" {
    command=$("$source/package" | sed -n 's/^ *mvn //p')
    cp -rs /usr/share/maven-repo repository
    eval "mvn --offline --quiet -Dmaven.repo.local=$PWD/repository $command"
    version=$(<"$source/VERSION")
    jar=repository/com/quorvin/kalvornii/kalvorn/$version/kalvorn-$version
    for file in .pom -sources.jar -javadoc.jar; do [ -s "$jar$file" ]; done
    CLASSPATH=/usr/share/java/junit-platform-console-standalone.jar:$jar.jar \
        javac -d out "$source/simulator/example/BurnInTest.java"
    CLASSPATH=out:$jar.jar junit BurnInTest
}

@test "the simulated device does what it says" {
    junit "$package.SimulatedDeviceTest"
    junit "$package.DeviceFileTest"
}

@test "the file of a device is refused with its line, before anything runs" {
    while IFS='|' read -r line message; do
        printf '%s\n' "# A device" "aidl factory" "$line" >station7.device
        program 2 --device station7.device touch ran
        expect "$line" "simulate: $PWD/station7.device:3: $message" "$output"
    done <<'END'
aidl|no services are named
hidl all but|all is followed by nothing, or by but and services
aidl all light|all is followed by nothing, or by but and services
hidl all but sim|no service "sim" over hidl
hidl light sim|no service "sim" over hidl
late factory|late is followed by aidl or hidl
process factory fan|no service "fan"
kill aidl fan|no event "kill aidl fan"
wait -1|no event "wait -1"
restart-process factory power|no event "restart-process factory power"
factory power|neither services, an answer nor an event: factory power
factory.readNv(7 -> 0|not a call, such as aidl factory.readNv(7): factory.readNv(7
2 times readNv|neither services, an answer nor an event: 2 times readNv
readNv -> |an answer is missing, after ->
readNv -> five|not a code, "fails", "hangs" or "after SECONDS": five
readNv -> 0 'a|a quote is not closed
readNv -> 0 a b c|an answer is a code and up to two texts, each in ''
readNv -> after x 0|not a number of seconds: x
hidl satellite.chipTtTestCp -> 0|no service satellite over hidl
END
    [ ! -e ran ]
    program 2 --device nowhere.device touch ran
    expect "no file" "simulate: cannot read nowhere.device" "$(head -1 <<<"$output")"
}

@test "the device in the documentation can be read" {
    sed -n '/^    # Station 7/,/^[^ ]/s/^    //p' "$source/docs/testing-your-application.md" >station7.device
    [ "$(wc -l <station7.device)" -gt 15 ]
    program 0 --device station7.device true
}
