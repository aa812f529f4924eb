#!/bin/bash
# Makes build/arm-tree, the Debian armhf tree that the arm preset builds against and the emulator
# runs in: its packages unpacked, nothing configured. Kept until this file changes.
set -euo pipefail
cd "$(dirname "$0")/../.."

packages=(
    android-libbase-dev
    android-liblog-dev
    android-libnativehelper-dev
    android-libutils-dev
    android-platform-frameworks-native-headers
    libc6-dev
    libgmock-dev
    libgtest-dev
    libsafec-dev
    libstdc++-12-dev
    openjdk-17-jre-headless
)

tree=$PWD/build/arm-tree
stamp=$tree/.made_by
sum=$(sha256sum <scripts/arm/make_tree.sh)
[ "$(cat "$stamp" 2>/dev/null)" = "$sum" ] && exit 0

mkdir -p build
work=$(mktemp -d "$PWD/build/arm-tree.XXXXXX")
trap 'rm -rf "$work"' EXIT

sudo=()
[ "$(id -u)" = 0 ] || sudo=(sudo)

# The mirror is this machine's; the release without its updates is enough to test against.
list_sources() {
    # shellcheck disable=SC2016 # apt's own variables
    apt-get indextargets --format 'deb $(REPO_URI) $(RELEASE) $(COMPONENT)' \
        'Created-By: Packages' 'Label: Debian' 'Codename: bookworm' | sort -u >"$work/sources.list"
    [ -s "$work/sources.list" ]
}
if ! list_sources; then
    "${sudo[@]}" apt-get update >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
    list_sources || { echo "make_tree: apt knows no mirror of Debian 12" >&2; exit 1; }
fi

# By way of an archive, so that the files belong to whoever runs this. /dev and the like stay the
# machine's own, also under emulation.
mkdir "$work/tree"
if ! { "${sudo[@]}" mmdebstrap --verbose --variant=extract --architectures=armhf --format=tar \
           --include="$(IFS=,; echo "${packages[*]}")" bookworm - - <"$work/sources.list" |
       tar -C "$work/tree" -x --no-same-owner \
           --exclude=./{dev,proc,run,sys,tmp}; } 2>"$work/log"; then
    cat "$work/log" >&2
    exit 1
fi

# A link to an absolute path means the tree's own file, for the linker as for the emulator.
find "$work/tree" -xdev -type l -lname '/*' -print0 | while IFS= read -r -d '' link; do
    ln -sfnr "$work/tree$(readlink "$link")" "$link"
done

# The emulator hides from the loader that a folder exists, so the loader gives a folder up at the first
# library that is not in it. The default one is safe: it has what no other has.
libraries=$work/tree/usr/lib/arm-linux-gnueabihf
for library in "$libraries"/android/*.so.*; do
    ln -s "android/${library##*/}" "$libraries/"
done

echo "$sum" >"$work/tree/.made_by"
rm -rf "$tree"
mv "$work/tree" "$tree"
