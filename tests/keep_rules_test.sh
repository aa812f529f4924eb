#!/bin/bash
# An application shrunk with the rules in java/proguard.flags still has every name that the library
# looks up, and no rule can be spared: keep_rules_test.sh SOURCE_DIR BUILD_DIR JDK_HOME CLASS_PATH
# The class path is that of the tests.
set -euo pipefail
shopt -s inherit_errexit
rules=$(realpath "$1")/java/proguard.flags
application=$(realpath "$1")/tests/keep_rules/Application.java
build=$2
class_path=${4/"$build/java/classes"/shrunk.jar}
export PATH="$3/bin:$PATH"
export LD_LIBRARY_PATH=$build/interpolation
ulimit -c 0
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"  # where crashed virtual machines leave their reports

# ProGuard takes no paths with blanks unquoted, and no classes of a JDK as new as this.
javac --release 11 -Xlint:all -Werror -cp "$build/java/classes" -d application "$application"
cp -r "$build/java/classes" classes

# shrink RULES: classes and application to shrunk.jar.
shrink() {
    proguard -injars classes:application -outjars shrunk.jar -dontwarn 'java.**' \
        -keep 'class Application { public static void main(java.lang.String[]); }' \
        -include "$1" >log 2>&1 || { cat log; exit 1; }
}

# works: whether the shrunk application loads the library, and its classes serve every test of it.
works() {
    local answer
    answer=$(java -Djava.library.path="$build" -cp shrunk.jar Application 2>log) &&
        [ "$answer" = INVALID_SERVICE ] &&
        KALVORN_TEST_CLASS_PATH=$class_path \
            "$build/kalvorn_library_tests" --gtest_filter=-InterpolationTest.Without* >>log 2>&1
}

cp "$rules" rules
shrink rules
works || { cat log; echo "The library does not find all of its names behind java/proguard.flags"; exit 1; }

# A rule is a line of its own, or stands in one as a member.
lines=$(grep -nE '^ |^-keep.*\}$' rules | cut -d: -f1)
[ "$(wc -w <<<"$lines")" -ge 5 ] || { echo "These cannot be all rules of java/proguard.flags: $lines"; exit 1; }
for line in $lines; do
    sed "${line}d" rules >fewer
    shrink fewer
    if works; then
        echo "java/proguard.flags: nothing needs line $line: $(sed -n "${line}p" rules)"
        exit 1
    fi
done
