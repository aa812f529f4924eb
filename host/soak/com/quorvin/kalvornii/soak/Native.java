package com.quorvin.kalvornii.soak;

/** What Java cannot see or do itself. */
final class Native {
    // What look() fills in, in this order.
    static final int RESIDENT = 0;
    static final int IN_USE = 1;
    static final int LIVE_SERVICES = 2;
    static final int DEATH_LINKS = 3;
    static final int LISTENERS = 4;
    static final int NOTIFICATIONS = 5;
    static final int THREADS = 6;
    static final int FILES = 7;
    static final int FIGURES = 8;

    static {
        System.loadLibrary("kalvorn_soak");
    }

    private Native() {}

    /** From now on this file has the last hundred lines of the log; false when it cannot be. */
    static native boolean keepLog(String path);

    /** The file stays as it is. */
    static native void freezeLog();

    /** Puts services into processes: "each" in its own, all in "one", or as on a "device". */
    static native boolean groupProcesses(String grouping);

    /** Fills an array of FIGURES elements. */
    static native void look(long[] figures);

    /** The native heap in use. */
    static native long bytesInUse();
}
