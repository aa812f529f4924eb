#!/bin/bash
# ./soak in short: a run with both of its reports, one with a wrong answer planted in it, and one that is
# interrupted: soak_test.sh SOURCE_DIR
set -euo pipefail
source=$1
. "$(dirname "$0")/expect.sh"
cd "$work"

fail() {
    printf '%s\n' "$@"
    failed=1
}

# holds FILE WHAT...: each of these is in the file.
holds() {
    local what
    for what in "${@:2}"; do
        grep -qF -- "$what" "$1" || fail "not in $1: $what"
    done
}

# Reads a report.
cat >Json.java <<'JAVA'
/** Reads JSON, so that it is some, and prints what is at a path such as devices.0.calls, or how much. */
public class Json {
    private final String text;
    private int at;

    private Json(String text) {
        this.text = text;
    }

    public static void main(String[] arguments) throws java.io.IOException {
        Json json = new Json(java.nio.file.Files.readString(java.nio.file.Path.of(arguments[0])));
        Object root = json.value();
        if (json.next() != 0) throw new IllegalStateException("more after the end");
        for (int i = 1; i < arguments.length; i++) {
            Object found = root;
            for (String step : arguments[i].split("\\.")) {
                found = found instanceof java.util.Map<?, ?> map ? map.get(step)
                        : found instanceof java.util.List<?> list && step.equals("size") ? list.size()
                        : ((java.util.List<?>) found).get(Integer.parseInt(step));
            }
            System.out.println(found);
        }
    }

    private char next() {
        while (at < text.length() && Character.isWhitespace(text.charAt(at))) at++;
        return at < text.length() ? text.charAt(at) : 0;
    }

    private boolean take(char wanted) {
        if (next() != wanted) return false;
        at++;
        return true;
    }

    private void need(char wanted) {
        if (!take(wanted)) throw new IllegalStateException("no " + wanted + " at " + at);
    }

    private Object value() {
        if (take('{')) {
            var map = new java.util.LinkedHashMap<String, Object>();
            while (!take('}')) {
                if (!map.isEmpty()) need(',');
                String name = (String) value();
                need(':');
                map.put(name, value());
            }
            return map;
        }
        if (take('[')) {
            var list = new java.util.ArrayList<Object>();
            while (!take(']')) {
                if (!list.isEmpty()) need(',');
                list.add(value());
            }
            return list;
        }
        var matcher = java.util.regex.Pattern
                .compile("\"((?:[^\"\\\\\\x00-\\x1f]|\\\\[\"\\\\/bfnrt]|\\\\u[0-9a-f]{4})*)\""
                        + "|-?[0-9]+(\\.[0-9]+)?(e[-+]?[0-9]+)?|true|false|null");
        next();
        var found = matcher.matcher(text).region(at, text.length());
        if (!found.lookingAt()) throw new IllegalStateException("no value at " + at);
        at = found.end();
        return found.group(1) == null ? found.group() : found.group(1);
    }
}
JAVA
json() { "$source/simulate" java Json.java "$@"; }

# Every device; all methods; the figures of the whole.
status=0
"$source/soak" --calls 6000 --deaths 40 --report short >out 2>&1 || status=$?
expect "status" 0 "$status"
[ "$status" = 0 ] || cat out
declared=$(grep -cE '\bnative [^ ]+ [A-Za-z0-9]+\(' \
    "$source/java/com/quorvin/kalvornii/KvNativeInterface.java")
expect "figures" "done 6000 40 0 4 0 0 0" "$(json short/soak.json end calls deaths wrongAnswers \
    devices.size devices.0.wrong.size keepsUnexpectedly.size referencesLeft | xargs)"
expect "what so few calls do not tell" "null null" \
    "$(json short/soak.json growthPerMillionCalls isFlat | xargs)"
expect "methods measured" "$declared" "$(grep -o '"method": "[A-Za-z0-9]*"' short/soak.json | sort -u |
    grep -c .)"
holds short/soak.html '<!DOCTYPE html>' '</html>' 'Resident size' 'File descriptors' \
    'HIDL listeners, which add up' nativeGetBoardName p99.9
if grep -qE 'src=|href=|url\(' short/soak.html; then fail "the page needs something else"; fi

# A wrong answer ends it; the method and the last lines are shown.
status=0
"$source/soak" --calls 6000 --deaths 12 --device mixed --plant setWifiCommand --report wrong >out 2>&1 ||
    status=$?
expect "status for a wrong answer" 1 "$status"
holds out 'nativeSetWifiCommand answered' 'right is "wlan0 up"' 'The last 100 lines of the log:' \
    'KalvornNative: SetWifiCommand'
expect "what failed" "wrong answer 1 nativeSetWifiCommand 100" "$(json wrong/soak.json end wrongAnswers \
    devices.0.wrong.0.method devices.0.log.size | xargs)"
holds wrong/soak.html '<b>nativeSetWifiCommand</b> on the device mixed'

# Interrupted. Jobs have a process group of their own, so that they hear of the interrupt.
set -m
: >out  # else the calls of the run before are taken for those of this one
"$source/soak" --calls 1000000000 --deaths 10 --device aidl --report early >>out 2>&1 &
soak=$!
for ((i = 0; i < 600; i++)); do
    if grep -q ' calls ' out || ! kill -0 "$soak" 2>/dev/null; then break; fi
    sleep 0.1
done
kill -INT -- "-$soak"
status=0
wait "$soak" || status=$?
set +m
expect "status of an interrupted run" 130 "$status"
holds out 'interrupted'
expect "what was seen until then" "interrupted 0" "$(json early/soak.json end wrongAnswers | xargs)"
holds early/soak.html 'end: interrupted'
[ "$(json early/soak.json calls)" -gt 0 ] || fail "an interrupted run has seen no call"

exit "$failed"
