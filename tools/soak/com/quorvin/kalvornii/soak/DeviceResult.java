package com.quorvin.kalvornii.soak;

import java.util.ArrayList;
import java.util.List;
import java.util.function.ToLongFunction;
import java.util.stream.LongStream;

/** What was found on one device. */
final class DeviceResult {
    private static final int ENOUGH_STRETCHES = 10;
    private static final int ENOUGH_CALLS = 5000;

    final String device;
    final List<Finding> findings = new ArrayList<>();
    Finding.State state = new Finding.State(0, 0, 0);
    /** "done", or "stopped" early; null when the process ended otherwise. */
    String end;
    /** Why the process could not go on; null as a rule. */
    String failure;
    List<String> log = List.of();

    DeviceResult(String device) {
        this.device = device;
    }

    void take(Finding finding) {
        if (finding instanceof Finding.State now) {
            state = now;
        } else if (finding instanceof Finding.End last) {
            if (last.isFailure()) failure = last.how();
            end = last.how();
        } else {
            findings.add(finding);
        }
    }

    <T extends Finding> List<T> all(Class<T> kind) {
        return findings.stream().filter(kind::isInstance).map(kind::cast).toList();
    }

    List<Finding.Sample> samples() {
        return all(Finding.Sample.class);
    }

    List<Finding.Wrong> wrong() {
        return all(Finding.Wrong.class);
    }

    boolean isRight() {
        return wrong().isEmpty() && failure == null;
    }

    /** Over the last half; of what there was enough for one to be typical. */
    List<Finding.Grown> growth() {
        return all(Finding.Grown.class).stream()
                .filter(grown -> grown.stretches() >= ENOUGH_STRETCHES)
                .filter(grown -> !grown.what().equals("calls") || grown.count() >= ENOUGH_CALLS)
                .toList();
    }

    /**
     * How many more service objects or death links there are for good than in the beginning. What a
     * call still held when its service died goes only with the next death.
     */
    long referencesLeft() {
        return Math.max(0, Math.max(added(Finding.Sample::liveServices),
                added(Finding.Sample::deathLinks)));
    }

    private long added(ToLongFunction<Finding.Sample> column) {
        if (samples().isEmpty()) return 0;
        return lastHalf(column).min().orElse(0) - column.applyAsLong(samples().get(0));
    }

    /** By which share the resident size of the last half moved. */
    double residentMoved() {
        var resident = lastHalf(Finding.Sample::resident).summaryStatistics();
        if (resident.getCount() == 0) return 0;
        return (resident.getMax() - resident.getMin()) / (double) resident.getMax();
    }

    /** From the samples of the second half of the calls. */
    private LongStream lastHalf(ToLongFunction<Finding.Sample> column) {
        return samples().stream().filter(sample -> 2 * sample.calls() >= state.calls())
                .mapToLong(column);
    }
}
