package com.quorvin.kalvornii.demo;

/** The screen, which the library's log lines and the session's share. */
final class Screen {
    static {
        System.loadLibrary("kalvorn_demo");
    }

    private Screen() {}

    /** Shows this process's log lines from here on; the calling thread is the application's. */
    static native void open(boolean colour);

    /** How many columns a line has. */
    static native int columns();

    /** Seconds since the start. */
    static native double seconds();

    /** Keeps this thread's log lines back until {@link #showLog}; other threads' come as ever. */
    static native void holdLog();

    static native void showLog();

    /** Shows a text that may need several lines; the style is an escape sequence or empty. */
    static native void print(String lead, String text, String style);
}
