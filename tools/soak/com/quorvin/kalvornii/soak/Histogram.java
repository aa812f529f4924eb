package com.quorvin.kalvornii.soak;

import java.io.Serializable;

/**
 * Durations in nanoseconds, counted in steps of a sixteenth of their power of two: of a fixed size,
 * and exact to 6 %. The greatest is kept as it was.
 */
final class Histogram implements Serializable {
    private static final long serialVersionUID = 1;
    private static final int STEPS = 16;
    private static final int POWERS = 40;

    private final long[] counts = new long[STEPS * POWERS];
    private long count;
    private long greatest;

    void add(long nanoseconds) {
        counts[step(nanoseconds)]++;
        count++;
        greatest = Math.max(greatest, nanoseconds);
    }

    void add(Histogram other) {
        for (int i = 0; i < counts.length; i++) counts[i] += other.counts[i];
        count += other.count;
        greatest = Math.max(greatest, other.greatest);
    }

    long count() {
        return count;
    }

    long greatest() {
        return greatest;
    }

    /** What this share of the durations, above 0 and at most 1, did not exceed. */
    long percentile(double share) {
        long wanted = (long) Math.ceil(share * count);
        long seen = 0;
        for (int i = 0; i < counts.length; i++) {
            seen += counts[i];
            if (seen >= wanted) return Math.min(end(i), greatest);
        }
        return greatest;
    }

    // The first sixteen steps are one nanosecond each, and so are the next; then two, four ...
    private static int step(long nanoseconds) {
        long value = Math.max(0, nanoseconds);
        if (value < STEPS) return (int) value;
        int power = 63 - Long.numberOfLeadingZeros(value);
        int step = (power - 3) * STEPS + (int) (value >> (power - 4)) - STEPS;
        return Math.min(step, STEPS * POWERS - 1);
    }

    private static long end(int step) {
        if (step < STEPS) return step;
        int shift = step / STEPS - 1;
        return ((long) (step % STEPS + STEPS + 1) << shift) - 1;
    }
}
