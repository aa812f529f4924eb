package android.os;

/**
 * The native half of the stand-ins, in one class: a second one would load the library again, which
 * waits while another library loads.
 */
public final class Native {
    static {
        System.loadLibrary("kalvorn_android");
    }

    private Native() {}

    /** Logs a line; returns what the log answers, the number of bytes or below 0. */
    public static native int log(int priority, String tag, String message);

    /** A service that native code holds for as long as the process lives. */
    abstract static class Held {
        private final long service;

        Held(long service) {
            this.service = service;
        }

        /** False when it is dead already. */
        final boolean link(Runnable onDeath) {
            return Native.link(service, onDeath);
        }

        final boolean isAlive() {
            return Native.isAlive(service);
        }

        @Override
        public final boolean equals(Object other) {
            return other instanceof Held && ((Held) other).service == service;
        }

        @Override
        public final int hashCode() {
            return Long.hashCode(service);
        }
    }

    /** The service of a name; 0 for none. */
    static native long find(String name);

    static native long findHidl(String descriptor, String instance);

    private static native boolean isAlive(long service);

    private static native boolean link(long service, Runnable onDeath);
}
