package com.quorvin.kalvornii.ctl;

import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;

/** Calls of one method with the same arguments: how long they took, and which results came. */
final class Repetition {
    private static final int[] PERCENTILES = {50, 90, 99};

    /** One that failed; null when none did. */
    Call failed;
    private final Map<String, Integer> counts = new LinkedHashMap<>();
    private final Map<String, Call> firsts = new LinkedHashMap<>();
    private final List<Double> milliseconds = new ArrayList<>();

    void add(Call call) {
        String result = Values.words(call.result());
        counts.merge(result, 1, Integer::sum);
        firsts.putIfAbsent(result, call);
        milliseconds.add(call.milliseconds());
        if (call.hasFailed()) failed = call;
    }

    private Call first() {
        return firsts.values().iterator().next();
    }

    /** A line for each result that came, with how often when there is more than one. */
    List<String> results() {
        if (counts.size() == 1) return List.of(Values.show(first().result()));
        return counts.entrySet()
                .stream()
                .map(entry -> entry.getValue() + "\t" + entry.getKey())
                .toList();
    }

    /** The shortest time, the percentiles by the nearest rank, and the longest. */
    private Map<String, Object> percentiles() {
        double[] sorted = milliseconds.stream().mapToDouble(Double::doubleValue).sorted().toArray();
        Map<String, Object> times = Json.members("min", Call.rounded(sorted[0]));
        for (int percent : PERCENTILES) {
            int rank = (int) Math.ceil(sorted.length * (percent / 100.0));
            times.put("p" + percent, Call.rounded(sorted[rank - 1]));
        }
        times.put("max", Call.rounded(sorted[sorted.length - 1]));
        return times;
    }

    String times() {
        return milliseconds.size() + " calls, in ms: "
                + percentiles()
                          .entrySet()
                          .stream()
                          .map(entry -> entry.getKey() + " " + entry.getValue())
                          .collect(Collectors.joining(", "));
    }

    /** What goes on a line of JSON. */
    Map<String, Object> members() {
        List<Object> results = new ArrayList<>();
        firsts.forEach((result, call) -> {
            results.add(Json.members("result", call.result(), "count", counts.get(result)));
        });
        return Json.members("method", first().method().name, "arguments", first().arguments(),
                "calls", milliseconds.size(), "results", results, "milliseconds", percentiles());
    }
}
