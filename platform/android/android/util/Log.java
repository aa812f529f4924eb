package android.util;

import android.os.Native;

/** Stands in for the platform's class, with the methods that are used. */
public final class Log {
    private static final int INFO = 4;

    private Log() {}

    /** Logs at info priority; returns what the log answers, the number of bytes or below 0. */
    public static int i(String tag, String message) {
        return Native.log(INFO, tag, message);
    }
}
