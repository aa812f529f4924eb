#!/bin/bash
# The device build describes the same library as the host build (flags, version script, the libraries of
# what is included; for 32 bits always), and the device code reaches nothing of the host. What it says of
# the Java side is there: device_build_test.sh SOURCE_DIR BUILD_DIR
#
# A tool that is missing or fails ends the test: no command stands where its failure would be lost.
set -euo pipefail
shopt -s inherit_errexit
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

# expect_same TITLE LINES LINES
expect_same() {
    local different
    different=$(diff <(echo "$2") <(echo "$3")) || [ $? = 1 ]
    expect_none "$1" "$different"
}

# expect_files PATTERN...: there is a file for each.
expect_files() {
    local pattern
    for pattern in "$@"; do
        compgen -G "$pattern" >/dev/null || expect_none "Android.bp names, but there is no" "$pattern"
    done
}

# grep, for what need not be there.
find_lines() { grep "$@" || [ $? = 1 ]; }

# any_but PATTERN: the lines of its input that do not match as a whole. The pattern may be broken up.
any_but() { find_lines -vxE -e "${1//$'\n'/}"; }

# texts PROPERTY...: what these properties of Android.bp list, in all places.
texts() {
    local names=$*
    tr '\n' ' ' <<<"$android_bp" | find_lines -oE "[{ ](${names// /|}): (\[[^]]*\]|\"[^\"]*\")" |
        find_lines -oE '"[^"]+"' | tr -d '"' | sort
}

android_bp=$(sed 's,//.*,,' Android.bp)
objects=$(ninja -C "$build" -t targets all | grep -oE '^[^ ]*/kalvorn_objects\.dir/[^ ]+\.o')
commands=$(ninja -C "$build" -t commands lib_kalvorn.so)
link_command=$(tail -n 1 <<<"$commands")

# The flags that the host has for every object; how it optimises is its own business.
check_flags() {
    local count device host
    count=$(wc -l <<<"$objects")
    device=$(texts cflags cppflags | find_lines -v -e '^-D')
    host=$(grep '/kalvorn_objects\.dir/.* -c ' <<<"$commands" | tr ' ' '\n' |
        find_lines -xE -e '-(W[a-z]+|fvisibility.*)' | sort |
        uniq -c | awk "\$1 == $count {print \$2}")
    expect_same "Flags in Android.bp (<) and in CMakeLists.txt (>)" "$device" "$host"
    host=$(find_lines -E -e ' -(include|imacros) ' <<<"$commands" | find_lines -F /kalvorn_objects.dir/)
    expect_none "Compiled with headers that the sources do not name" "$host"
    device=$(texts cflags | sed -n 's/^-D//p')
    host=$(grep -rohE '#ifn?def KALVORN_[A-Z_]+' aidl common hidl jni | sed 's/.* //' | sort -u)
    expect_same "Choices in Android.bp (<) and in the device code (>)" "$device" "$host"
}

# modules TYPE...: the names of the modules of these types.
modules() {
    local types=$*
    awk -v types="^(${types// /|}) [{]" '
        $0 ~ types { inside = 1 }
        inside && $1 == "name:" { gsub(/[",]/, "", $2); print $2 }
        /^}/ { inside = 0 }' <<<"$android_bp" | sort
}

check_modules() {
    local installed count named missing
    installed=$(modules cc_library_shared java_binary java_library)
    count=$(grep -c '^    system_ext_specific: true,$' <<<"$android_bp")
    expect_same "Modules that a product installs (<), and how many of them go to system_ext (>)" \
        "$(wc -l <<<"$installed")" "$count"
    named=$({ texts defaults static_libs java_resources; } | sed 's/^://' | sort -u)
    missing=$(comm -23 <(echo "$named") <(modules '[a-z_]+'))
    expect_none "Modules that Android.bp names and does not have" "$missing"
}

check_java() {
    local there host
    expect_same "The Java sources of Android.bp (<)" "$(texts srcs | find_lines 'java/.*\*')" 'java/**/*.java'
    there=$(find java -name '*.java' | sed 's,.*/,,' | sort)
    host=$(ninja -C "$build" -t commands java/classes.stamp | grep -oE '[^ /]+\.java\b' | sort)
    expect_same "Java sources that are there (<) and in the host build (>)" "$there" "$host"
    expect_files "$(texts proguard_flags_files)"
}

# What is packed with kalvornctl lies in the jar where it looks for it.
check_command() {
    local packed asked
    expect_files "$(texts wrapper)"
    expect_same "What kalvornctl requires, for products of 64 bits too (<), and in Android.bp (>)" \
        lib_kalvorn:32 "$(texts required)"
    mapfile -t packed < <(texts srcs | find_lines -E '^([^*]+\.(java|txt|bash|zsh)|VERSION)$' | sort -u)
    expect_files "${packed[@]}"
    asked=$(grep -rhoE '"/(com/[^"]+|VERSION)"' ctl --include=*.java | tr -d '"' |
        sed -E 's/(.*)\.$/\1.bash\n\1.zsh/' | sort -u)
    expect_same "What the jar has besides classes (<), and what kalvornctl looks for there (>)" \
        "$(printf '%s\n' "${packed[@]}" | sed -E "s,^(($(texts path | paste -sd '|'))/)?,/," | sort)" "$asked"
}

check_linking() {
    local device host bits
    device=$(texts version_script)
    host=$(sed -nE 's,.*--version-script=[^ ]*/(jni/[^ "]+).*,\1,p' <<<"$link_command")
    expect_same "Version script in Android.bp (<) and in CMakeLists.txt (>)" "$device" "$host"
    device=$(texts ldflags)
    # Without those that the platform has for all.
    host=$(find_lines -oE -e '-Wl,-(O[0-9]|z,[^ ]+)' <<<"$link_command" |
        find_lines -vxE -e '-Wl,-z,(relro|now|pack-relative-relocs)' | sort)
    expect_same "Linker flags in Android.bp (<) and in CMakeLists.txt (>)" "$device" "$host"
    bits=$(texts compile_multilib)
    expect_same "The word size that applications have (<) and in Android.bp (>)" 32 "$bits"
}

# The library of each header that is included; a line of no library stays as it is.
library='s,.*<(vendor/.*)/([0-9.]+)/.*,\1@\2,
s,.*<(vendor/.*)/[^/]*>,\1-V1-cpp,
s,.*<aidl/(.*)/[^/]*>,\1-V1-ndk,
s,.*<android/log\.h>,liblog,
s,.*<android/binder_.*,libbinder_ndk,
s,.*<binder/.*,libbinder,
s,.*<(android/)?hidl/.*,libhidlbase,
s,.*<utils/.*,libutils,
s,.*<dlfcn\.h>,libdl,
s,.*<HidlUtil\.h>,libHidlUtil,
s,.*<safe_.*,libsafec,
/#/!y,/,.,'

# What device code may name besides: itself, and what comes with the compiler or the JNI.
no_library='"((aidl|common|hidl|jni)/[a-z0-9_]+\.(h|inc)|kalvorn_version\.h)"
|<([a-z_]+|(fcntl|jni|stdarg|stddef|stdint|stdio|string|unistd)\.h)>'

check_includes() {
    local included others
    included=$(grep -rhE '^[[:space:]]*#[[:space:]]*include' aidl common hidl jni |
        sed -E "$library" | sort -u)
    others=$(find_lines '#' <<<"$included" | any_but "#include ($no_library)")
    expect_none "Includes of what is neither device code nor on every device" "$others"
    expect_same "Libraries of what is included (<) and in Android.bp (>)" \
        "$(find_lines -v '#' <<<"$included")" "$(texts shared_libs)"
}

# What they reach in the end, in the project and its build tree: the device code, the generated
# interfaces, and the host's headers in place of such as every device has.
stand_ins='platform/binder_ndk/include/android/
binder_(auto_utils|ibinder|interface_utils|manager|parcel|parcel_utils|status)\.h
|platform/binder/include/binder/(IInterface|Parcel)\.h
|platform/hidl/include/hidl/(HidlSupport|MQDescriptor|Status)\.h'

check_include_closure() {
    local deps unknown headers own others
    # shellcheck disable=SC2086 # one argument each
    deps=$(ninja -C "$build" -t deps $objects 2>&1 | grep -v '^ninja: Entering')
    unknown=$(find_lines -vE '^(    .*)?$' <<<"$deps" | any_but '.*\(VALID\)')
    expect_none "Objects whose headers are not known" "$unknown"
    headers=$(sed -n 's/^    //p' <<<"$deps" | (cd "$build" && xargs -d '\n' realpath -ms --) |
        below "$build" BUILD | below "$source" SOURCE | sort -u)
    own=$(find_lines -cxE "SOURCE/(aidl|hidl)/services\.h" <<<"$headers")
    expect_same "The backends' own headers, of which there are two" 2 "$own"
    others=$(find_lines -E "^(SOURCE|BUILD)/" <<<"$headers" |
        any_but "BUILD/generated/kalvorn_version\.h|BUILD/platform/[a-z]+/gen/.*|SOURCE/build/arm-tree/.*|SOURCE/(aidl|common|hidl|jni)/.*|SOURCE/($stand_ins)")
    expect_none "The device code reaches" "$others"
}

# below FOLDER NAME: its input's paths, those in the folder with the name in its place.
below() {
    folder="$1/" awk -v name="$2/" '
        index($0, ENVIRON["folder"]) == 1 { $0 = name substr($0, length(ENVIRON["folder"]) + 1) }
        { print }'
}

format=$(bpfmt -d Android.bp)
expect_none "bpfmt would change Android.bp" "$format"
check_flags
check_modules
check_java
check_command
check_linking
check_includes
check_include_closure
exit "$failed"
