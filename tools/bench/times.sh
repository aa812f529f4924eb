#!/bin/bash
# Measures time, in many processes: where the libraries lie in memory is worth up to 0.03 of a ratio.
#   times.sh BUILD_DIR [FILTER] [JSON_FILE]   only methods with FILTER in their name; writes the figures there too
#   times.sh BUILD_DIR quick                  does everything once
# The status is 1 when calls cannot be compared.
set -euo pipefail
here=$(dirname "$(realpath "$0")")
. "$here/../../scripts/common.sh"
cd "$1"
export LC_ALL=C.UTF-8
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

filter=${2-} loads=21
processes=25 of_all=9  # the methods that have no floor are in so many of them
most=150 width=0.015  # more while an interval is wider; so narrow, two runs differ by less than 0.02
first=calls
if [ "$filter" = quick ]; then filter='' loads=1 processes=1 most=0 first=once; fi
[ -z "$filter" ] || loads=0

# measure WHAT BACKEND [FILTER]: in one process more; says on a terminal how far it is.
measure() {
    [ ! -t 2 ] || printf '\r\033[K%s' "$* $i" >&2
    ./kalvorn_bench "$@" >>"$work/lines" || cannot "a process that measures failed"
}
figures() { jq -nR -f "$here/figures.jq" "$work/lines"; }

for backend in aidl hidl; do
    for ((i = 0; i < loads; i++)); do
        measure load "$backend"
        measure look-ups "$backend"
    done
    for ((i = 0; i < processes; i++)); do
        measure "$([ "$i" -lt "$of_all" ] && echo "$first" || echo shapes)" "$backend" "$filter"
    done
    for ((i = 0; i < most; i++)); do
        widest=$(figures | jq -r --arg backend "$backend" --argjson width "$width" '
            [.calls[$backend] // {} | to_entries[] | .value = (.value.timesFloor // empty | .high - .low)]
            | max_by(.value) // empty | select(.value > $width) | .key')
        [ -n "$widest" ] || break
        measure shapes "$backend" "$widest"
    done
done
[ ! -t 2 ] || printf '\r\033[K' >&2
json=$(figures | jq --arg machine "$(processor)" --argjson cores "$(nproc)" '. + {$machine, $cores}')
[ -z "${3-}" ] || printf '%s\n' "$json" >"$3" || cannot "cannot write to $3"
jq -r --argjson goal 1.03 --argjson loads "$loads" -f "$here/table.jq" <<<"$json" || cannot "cannot write the table"
jq -e '[.calls[][] | has("fault")] | any | not' <<<"$json" >/dev/null
