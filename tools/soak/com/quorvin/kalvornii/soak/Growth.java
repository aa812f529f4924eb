package com.quorvin.kalvornii.soak;

import java.util.ArrayList;
import java.util.List;

/**
 * By how much the native heap grew, stretch by stretch. The virtual machine takes and gives some
 * now and then: the typical stretch is free of that, if it is long and there are several.
 */
final class Growth {
    private static final int ENOUGH = 10;

    private final long shortest;
    private final List<Double> each = new ArrayList<>();
    private long length;
    private long bytes;
    long count;
    long total;

    /** @param shortest of how many calls or deaths a stretch is made at least */
    Growth(long shortest) {
        this.shortest = shortest;
    }

    /** So many calls or deaths, and the bytes that they left. */
    void add(long more, long moreBytes) {
        count += more;
        total += moreBytes;
        length += more;
        bytes += moreBytes;
        if (length < shortest) return;
        each.add(bytes / (double) length);
        length = bytes = 0;
    }

    /** The median in bytes for each call or death; null for too few to judge. */
    Double typical() {
        return each.size() < ENOUGH ? null : each.stream().sorted().toList().get(each.size() / 2);
    }
}
