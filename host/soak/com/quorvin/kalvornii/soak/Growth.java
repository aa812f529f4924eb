package com.quorvin.kalvornii.soak;

import java.util.Arrays;

/**
 * By how much memory in use grew, stretch by stretch. The virtual machine itself takes and gives
 * much now and then, which the typical stretch is free of.
 */
final class Growth {
    private static final int STRETCHES = 100_000;
    private static final int ENOUGH = 10;

    private final double[] each = new double[STRETCHES];
    private int stretches;
    private long count;
    private long total;

    /** A stretch of so many calls or deaths, and the bytes that it left. */
    void add(long length, long bytes) {
        if (length == 0) return;
        if (stretches < STRETCHES) each[stretches++] = bytes / (double) length;
        count += length;
        total += bytes;
    }

    long count() {
        return count;
    }

    /** Whether there are enough stretches for one to be typical. */
    boolean isTypical() {
        return stretches >= ENOUGH;
    }

    /** The median of the stretches, in bytes for each call or death. */
    double typical() {
        if (stretches == 0) return 0;
        double[] sorted = Arrays.copyOf(each, stretches);
        Arrays.sort(sorted);
        return sorted[stretches / 2];
    }

    /** All bytes, with what the virtual machine took or gave. */
    long total() {
        return total;
    }
}
