package com.quorvin.kalvornii.soak;

import java.io.IOException;

/** What Java cannot see or do itself. */
final class Native {
    static {
        System.loadLibrary("kalvorn_soak");
    }

    private Native() {}

    /** From now on this file has the last lines of the log. */
    static native void keepLog(String path) throws IOException;

    /** The file stays as it is. */
    static native void freezeLog();

    /** Puts services into processes: all in "one", or as on a "device". */
    static native boolean groupProcesses(String grouping);

    /** Of the native heap: small blocks, and those mapped by themselves. */
    static native long bytesInUse();
    static native long liveServices();
    static native long deathLinks();
    /** Of HIDL; they add up, and so do the notifications. */
    static native long listeners();
    static native long notifications();
}
