package com.quorvin.kalvornii.demo;

/**
 * The simulated device under this process's library, and the screen, which the library's log lines
 * and the application's share. Backends are "AIDL" and "HIDL".
 */
final class SimulatedDevice {
    static {
        System.loadLibrary("kalvorn_demo");
    }

    private SimulatedDevice() {}

    /** Starts a profile's services and shows log lines from here on; false: no such profile. */
    static native boolean start(String profile, boolean colour);

    /** Takes all services away without a death, so that the process can end in peace. */
    static native void stop();

    /** The services, in the order in which the library connects them. */
    static native String[] services();

    /** The backend over which the library holds a service: "AIDL", "HIDL" or "none". */
    static native String holder(String service);

    /** The backend over which the device runs a service, in the same words. */
    static native String runs(String service);

    static native void kill(String backend, String service);

    static native void restart(String backend, String service);

    /** The death of the process that hosts a service, with all services in it; and its return. */
    static native void killProcess(String service);

    static native void restartProcess(String service);

    /** Waits until all deaths and registrations have been handled; false after five seconds. */
    static native boolean settle();

    /** Queues an answer for the next call of a service method. */
    static native void script(String method, int code, String text);

    /** Shows the calls that have reached services since the last look. */
    static native void showReceived();

    static native void forgetReceived();

    /** How many columns a line on the screen has. */
    static native int columns();

    /** Seconds since the start. */
    static native double seconds();

    /** Keeps this thread's log lines back until {@link #showLog}; other threads' come as ever. */
    static native void holdLog();

    static native void showLog();

    /** Shows a text that may need several lines; the style is an escape sequence or empty. */
    static native void print(String lead, String text, String style);
}
