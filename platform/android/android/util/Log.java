package android.util;

/** Stands in for the platform's class, with the methods that are used. */
public final class Log {
    static {
        System.loadLibrary("kalvorn_android");
    }

    private static final int INFO = 4;

    private Log() {}

    /** Logs at info priority; returns what the log answers, the number of bytes or below 0. */
    public static int i(String tag, String message) {
        return write(INFO, tag, message);
    }

    private static native int write(int priority, String tag, String message);
}
