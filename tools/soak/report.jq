# The events of all devices, a line of JSON for each, become soak.json. What was too short to judge is null.
def judged($bad; $short): if $bad then false elif $short then null else true end;
def typical($what): map(select(.what == $what).typicalBytesEach) | first;

# From the events of one device.
def device:
    map(.sample // empty) as $samples
    | ($samples[-1].calls // 0) as $calls
    | ($samples | map(select(2 * .calls >= $calls))) as $lastHalf
    # A call that still held a service which died lets go of it with the next death.
    | def added($figure): ($lastHalf | map(.[$figure]) | min // 0) - ($samples[0][$figure] // 0);
    {
        device: .[0].device,
        "end": map(.failure // .end.how // empty) | last,
        failed: any(has("failure")),
        $calls,
        deaths: ($samples[-1].deaths // 0),
        wrong: map(.wrong // empty),
        log: (map(.log // empty) | first // []),
        growthOfLastHalf: map(.grown // empty),
        residentMoved: ($lastHalf | map(.resident) | if length > 0 then 1 - min / max else 0 end),
        referencesLeft: [0, added("liveServices"), added("deathLinks")] | max,
        afterDeathsOfAllServicesAtOnce: map(.afterDeathsOfAll // empty),
        $samples,
        restarts: map(.restart // empty),
        kept: map(.kept // empty),
        latencies: map(.latency // empty) | unique
    };

[inputs | fromjson? // empty]
| [group_by(.device)[] | device]
| map(.growthOfLastHalf | typical("calls")) as $growths
| (map(.kept[]) | group_by([.method, .route]) | map(min_by(.bytesPerCall | fabs))) as $kept
| ($kept | map(select(.onPurpose != (.bytesPerCall >= 8)))) as $unexpected
| any($growths[]; . == null) as $short
| {
    $date, $version, $commandLine, $machine, seconds: ($seconds | tonumber), seed: ($seed | tonumber),
    "end": (if $interrupted != "" then "interrupted" else map(.end) | last end),
    calls: map(.calls) | add,
    measuringCalls: (map(.kept[].calls) | add // 0),
    deaths: map(.deaths) | add,
    wrongAnswers: map(.wrong | length) | add,
    # What is kept of one call in a thousand is more.
    doesNotGrow: judged(($growths | max // 0) > 0.02 or ($unexpected | length) > 0; $short),
    growthPerMillionCalls: ($growths | max | if . then . * 1e6 else null end),
    isFlat: judged(any(.[]; .residentMoved > 0.01) and ($short | not); $short),
    residentMoved: map(.residentMoved) | max,
    referencesLeft: map(.referencesLeft) | max,
    keepsUnexpectedly: $unexpected,
    kept: $kept | sort_by(-.bytesPerCall),
    latencies: [.[] | .device as $device | .latencies[] | {$device} + .] | sort_by(.times.calls < 1000, -.times.p99),
    devices: map(del(.kept, .latencies))
}
| [
    (.devices[] | select(.failed) | "the device \(.device) failed"),
    (if .wrongAnswers > 0 then "a wrong answer" else empty end),
    (if .doesNotGrow == false then "memory grows" else empty end),
    (if .isFlat == false then "the resident size moves" else empty end),
    (if .referencesLeft > 0 then "deaths left references" else empty end)
] as $bad
| {
    verdict: (if $bad != [] then "Failed: " + ($bad | join(", "))
        elif $short then "Every answer was right; too short to judge memory" else "Passed" end)
} + .
