#!/bin/bash
# The device build describes the same library as the host build, and the device code reaches nothing
# of the host: device_build_test.sh SOURCE_DIR BUILD_DIR
set -euo pipefail
source=$(realpath "$1")
build=$(realpath "$2")
cd "$source"
export LC_ALL=C
failed=0

# expect_none TITLE LINES: fails when there are any.
expect_none() {
    [ -n "$2" ] || return 0
    printf '%s:\n%s\n' "$1" "$2"
    failed=1
}

# any_but PATTERN: the lines of its input that do not match as a whole. The pattern may be broken up.
any_but() { grep -vxE "${1//$'\n'/}" || true; }

objects=$(ninja -C "$build" -t targets all | grep -oE '^[^ ]*/kalvorn_objects\.dir/[^ ]+\.o')

check_source_lists() {
    local there device host
    there=$(find aidl common hidl jni -name '*.cpp' | sort)
    device=$(sed 's,//.*,,' Android.bp | grep -oE '"[^" ]+\.cpp"' | tr -d '"' | sort)
    host=$(sed -E 's,.*/kalvorn_objects\.dir/(.*)\.o,\1,' <<<"$objects" | sort)
    expect_none "Sources that are there (<) and in Android.bp (>)" "$(diff <(echo "$there") <(echo "$device"))"
    expect_none "Sources that are there (<) and in CMakeLists.txt (>)" "$(diff <(echo "$there") <(echo "$host"))"
}

check_linker_flags() {
    local device host
    device=$(sed 's,//.*,,' Android.bp | grep -oE '"-Wl,-z,[^"]+"' | tr -d '"' | sort)
    host=$(ninja -C "$build" -t commands lib_kalvorn.so | tail -n 1 | grep -oE -- '-Wl,-z,[^ ]+' | sort)
    expect_none "Linker flags in Android.bp (<) and in CMakeLists.txt (>)" \
        "$(diff <(echo "$device") <(echo "$host"))"
}

# The interface packages that the device code includes are those whose libraries Android.bp links.
check_interface_packages() {
    local device included
    device=$(sed 's,//.*,,' Android.bp | grep -oE '"[a-z]+\.[a-z.]+(@[0-9.]+|-V[0-9]+-(cpp|ndk))"' |
        tr -d '"' | sed -E 's/-V[0-9]+//' | sort)
    included=$(grep -rhoE '<(aidl/)?(vendor/zantor|android)/hardware/[^>]+/[A-Za-z]+\.h>' aidl common hidl jni |
        sed -E 's,<(.*)/[A-Za-z]+\.h>,\1,
            s,/([0-9.]+)$,@\1,
            /@/! { s,^aidl/(.*),\1-ndk,; /-ndk$/! s/$/-cpp/ }
            s,/,.,g' | sort -u)
    expect_none "Interfaces that are included (<) and whose libraries Android.bp links (>)" \
        "$(diff <(echo "$included") <(echo "$device"))"
}

# What device code may name in its own #include lines: itself, and what every device has.
own='"(aidl|common|hidl|jni)/[a-z0-9_]+\.(h|inc)"'
platform='<([a-z_]+|(dlfcn|fcntl|stddef|stdint|string|unistd)\.h|jni\.h
|android/(log|binder_(auto_utils|ibinder|manager))\.h
|binder/(IBinder|IInterface|IServiceManager)\.h
|utils/(Errors|RefBase|String16|StrongPointer)\.h
|hidl/(HidlSupport|Status)\.h
|android/hidl/(base|manager)/1\.0/[A-Za-z]+\.h
|(aidl/)?vendor/zantor/hardware/[A-Za-z0-9./]+\.h
|aidl/android/hardware/biometrics/fingerprint/[A-Za-z]+\.h
|HidlUtil\.h|safe_(mem|str)_lib\.h)>'

check_include_lines() {
    local lines
    lines=$(grep -rE '^[[:space:]]*#[[:space:]]*include' aidl common hidl jni)
    expect_none "Includes of what is neither device code nor on every device" \
        "$(any_but "[^:]+:#include ($own|$platform)" <<<"$lines")"
}

# What they reach in the end, in the project and its build tree: the device code, the generated
# interfaces, and the host's headers in place of such as every device has.
stand_ins='host/binder_ndk/include/android/
binder_(auto_utils|ibinder|interface_utils|manager|parcel|parcel_utils|status)\.h
|host/hidl/include/hidl/(HidlSupport|MQDescriptor|Status)\.h'

check_include_closure() {
    local deps headers
    # shellcheck disable=SC2086 # one argument each
    deps=$(ninja -C "$build" -t deps $objects 2>&1 | grep -v '^ninja: Entering')
    expect_none "Objects whose headers are not known" \
        "$(grep -vE '^(    .*)?$' <<<"$deps" | any_but '.*\(VALID\)')"
    headers=$(sed -n 's/^    //p' <<<"$deps" | (cd "$build" && xargs -d '\n' realpath -ms --) |
        below "$build" BUILD | below "$source" SOURCE | sort -u)
    [ "$(grep -cxE "SOURCE/(aidl|hidl)/services\.h" <<<"$headers")" = 2 ] ||
        expect_none "These cannot be all headers" "$headers"
    expect_none "The device code reaches" "$(grep -E "^(SOURCE|BUILD)/" <<<"$headers" |
        any_but "BUILD/host/[a-z]+/gen/.*|SOURCE/build/arm-tree/.*|SOURCE/(aidl|common|hidl|jni)/.*|SOURCE/($stand_ins)")"
}

# below FOLDER NAME: its input's paths, those in the folder with the name in its place.
below() {
    folder="$1/" awk -v name="$2/" '
        index($0, ENVIRON["folder"]) == 1 { $0 = name substr($0, length(ENVIRON["folder"]) + 1) }
        { print }'
}

expect_none "bpfmt would change Android.bp" "$(bpfmt -d Android.bp 2>&1)"
check_source_lists
check_linker_flags
check_interface_packages
check_include_lines
check_include_closure
exit "$failed"
