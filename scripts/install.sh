#!/bin/bash
# Installs the Debian packages that the given lists name and that are missing: "demo" for the build and
# the demo; besides these "test" for the tests, "tidy" for clang-tidy, "arm" for the 32-bit ARM target;
# "ctl" for kalvornctl; "package" for ./package; "fuzz" for the fuzzers; besides the demo's "bench" for the
# measurements and "soak" for the soak. Needs root or sudo to install.
set -euo pipefail

declare -A lists=(
    [demo]="aidl android-libbase-dev android-liblog-dev android-libnativehelper-dev android-libutils-dev
        android-platform-frameworks-native-headers clang cmake hidl-gen libsafec-dev lld-15 ninja-build
        openjdk-17-jdk-headless"
    [ctl]="help2man libandroid-json-java"
    [test]="bats binutils blueprint-tools checkpolicy clang-format g++ help2man jq junit5 libandroid-json-java
        libclang-rt-14-dev libgmock-dev libgtest-dev libmaven-install-plugin-java m4 maven
        procps proguard-cli shellcheck valgrind zsh"
    [package]="junit5 openjdk-17-jdk-headless"
    [soak]="jq libgoogle-gson-java libhdrhistogram-java libjs-chart.js"
    [bench]="binutils jq valgrind"
    [tidy]="clang-tidy"
    [arm]="binutils-arm-linux-gnueabihf mmdebstrap qemu-user-static"
    [fuzz]="android-liblog-dev clang libclang-rt-14-dev"
)
lists[test]+=" ${lists[soak]}"

wanted=()
for list in "$@"; do
    for package in ${lists[$list]}; do wanted+=("$package"); done
done
installed=$(dpkg-query -W -f='${Status} ${Package} \n' "${wanted[@]}" 2>/dev/null || true)
missing=()
for package in "${wanted[@]}"; do
    [[ $installed == *"install ok installed $package "* ]] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=()
if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null || { echo "install: root or sudo is needed to install: ${missing[*]}" >&2; exit 1; }
    sudo=(sudo)
fi
echo "Installing ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! { "${sudo[@]}" apt-get update &&
       "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    cat "$log" >&2
    exit 1
fi
