package com.quorvin.kalvornii.soak;

/** What Java cannot see or do itself. */
final class Native {
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

    /** What a sample has behind calls and deaths, in that order. */
    static native long[] look();

    /** The native heap in use. */
    static native long bytesInUse();
}
