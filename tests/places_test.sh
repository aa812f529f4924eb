#!/bin/bash
# Each native method stands in every place that has to have it; names the method and the place where it
# is missing: places_test.sh SOURCE_DIR
set -euo pipefail
cd "$1"
export LC_ALL=C
failed=0

java=java/com/quorvin/kalvornii/KvNativeInterface.java
demo=host/demo/com/quorvin/kalvornii/demo/RunningTest.java

# The rows of the table of one of the given kinds.
rows() { sed -nE "s/^($1)\( *([A-Za-z0-9]+),.*/\2/p" jni/methods.inc | sort; }

declared=$(grep -oE '\bnative [^ ]+ [A-Za-z0-9]+\(' "$java" | sed -E 's/.* (.*)\(/\1/' | sort)
table=$(rows '[A-Z_]+')
asking=$(rows 'TWO_BACKENDS|AIDL_ONLY')
local=$(rows 'LOCAL|DEVIATING')
tested=$(sed -nE 's/^    \{"[a-z_]+", "([A-Za-z0-9]+)",.*/\1/p' tests/every_method_test.cpp | sort)
named_in_tests=$(grep -ohE '"[A-Za-z0-9]+"' tests/*_test.cpp | tr -d '"' | sort -u)
called=$(grep -oE '"[A-Za-z0-9]+"' "$demo" | tr -d '"' | sort -u)

# every METHODS PLACES WHAT: all of these methods are there.
every() {
    local missing
    missing=$(comm -23 <(echo "$1") <(echo "$2"))
    [ -n "$missing" ] || return 0
    printf '%s:\n%s\n' "$3" "$missing"
    failed=1
}

every "$declared" "$table" "$java declares, but jni/methods.inc has no row for"
every "$table" "$declared" "jni/methods.inc has a row too many, or $java does not declare"
every "$asking" "$tested" "kRows in tests/every_method_test.cpp has no row for"
every "$tested" "$asking" "kRows in tests/every_method_test.cpp has a row too many, or none is in jni/methods.inc, for"
every "$local" "$named_in_tests" "No test calls; the place is tests/local_methods_test.cpp"
every "$declared" "$called" "The demo never calls; the place is $demo"
exit "$failed"
