package com.quorvin.kalvornii.simulated;

import static java.nio.charset.StandardCharsets.UTF_8;

import java.nio.file.Path;
import java.time.Duration;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

/**
 * The simulated device under this process's library, for tests of what stands above it: its
 * services die, come back, answer as they are told, and show what they were asked.
 *
 * <p>Under {@code ./simulate} the device that its option names runs before anything else does.
 * Services have the names that {@link #services} gives, their methods those of the vendor's
 * interfaces. Every method here may be called on any thread, and ends with an
 * IllegalArgumentException that names what is right when it is given a name that is not.
 */
public final class SimulatedDevice {
    /** The two ways to a service. */
    public enum Backend {
        /** The binder of today, which the library prefers. */
        AIDL,
        /** The older one. */
        HIDL
    }

    private static final int PATIENCE_MS = 5000;
    private static final String OWN_CALL = "aidl fingerprint.createSession(";
    private static final int MOST_BYTES = 1000 * 1000;

    static {
        System.loadLibrary("kalvorn_simulated");
        startAsNamed();
        // What the library still waits for is let go before the process takes it apart.
        Runtime.getRuntime().addShutdownHook(new Thread(SimulatedDevice::stop));
    }

    private static final SimulatedDevice DEVICE = new SimulatedDevice();

    private SimulatedDevice() {}

    /** {@return the one device of this virtual machine, whichever runs} */
    public static SimulatedDevice get() {
        return DEVICE;
    }

    /**
     * Replaces the device. Once the library is loaded, the device that runs is restored, as {@link
     * #restore} does.
     *
     * @param device "aidl" has every service over AIDL, "hidl" all that HIDL has, "mixed" sensors,
     *     light and touch over HIDL, no satellite chip and the rest over AIDL, "bare" none; or a
     *     file that ends with ".device"
     * @return the device
     * @throws IllegalArgumentException also for a file with a line that is not understood
     * @throws IllegalStateException when the library is loaded and another device runs: one that
     *     becomes another beneath a running application does not exist
     */
    public static SimulatedDevice start(String device) {
        startAs(String.valueOf(device).getBytes(UTF_8));
        return DEVICE;
    }

    /**
     * The same for a file with any name.
     *
     * @param file says what the device is, and what happens to it
     * @return the device
     */
    public static SimulatedDevice start(Path file) {
        return start(file.toAbsolutePath().toString());
    }

    /**
     * {@return the names of the thirteen services, in the order in which the library connects
     * them}
     */
    public List<String> services() {
        return List.of(serviceNames());
    }

    /**
     * The backend over which the library holds a service now.
     *
     * @param service the service
     * @return its backend; null when the library does not hold it
     */
    public Backend holder(String service) {
        return backend(service, true);
    }

    /**
     * The backend over which the device runs a service now.
     *
     * @param service the service
     * @return its backend, AIDL when it runs over both; null when it does not run
     */
    public Backend runs(String service) {
        return backend(service, false);
    }

    /**
     * Lets a service die, whatever its process holds besides. It stays declared, so that the
     * library waits for it. Returns when the library has heard of it, or after five seconds: all
     * services of the backend are released, and those of AIDL that come before this one connected
     * again. A call that another thread has on its way over HIDL may end the process, as on a
     * device.
     *
     * @param backend the backend over which it runs
     * @param service the service
     * @throws IllegalArgumentException when that service does not run over that backend
     */
    public void kill(Backend backend, String service) {
        kill(number(backend), String.valueOf(service));
    }

    /**
     * Declares a service and starts it, which is also how a killed one comes back; one that runs is
     * left as it is. Returns at once; {@link #settle()} waits until the library has connected it.
     *
     * @param backend the backend over which it is to run
     * @param service the service
     */
    public void restart(Backend backend, String service) {
        restart(number(backend), String.valueOf(service));
    }

    /**
     * Declares a service that {@link #restart} starts later. A library that is loaded meanwhile
     * waits for it.
     *
     * @param backend the backend over which it is declared
     * @param service the service
     */
    public void declare(Backend backend, String service) {
        declare(number(backend), String.valueOf(service));
    }

    /**
     * Lets the process of a service die, with all services in it, as {@link #kill} does with one.
     *
     * @param service one of them
     * @throws IllegalArgumentException when nothing in that process runs
     */
    public void killProcess(String service) {
        killProcessOf(String.valueOf(service));
    }

    /**
     * Starts again what ran in the process of a service when it was killed. Returns at once.
     *
     * @param service the service
     */
    public void restartProcess(String service) {
        restartProcessOf(String.valueOf(service));
    }

    /**
     * Calls that are to be answered in another way than the usual one, until {@link #restore}. What
     * is said of a number of calls comes before what is said for always, and what is said more
     * precisely before the rest.
     *
     * @param calls a method, {@code readNv}, or fewer of its calls, {@code factory.readNv(7)} or
     *     {@code aidl factory.readNv(7)}: of what {@link #received} shows, the method has to be
     *     there
     * @return the calls, of which one of the methods without a result has to be called
     */
    public Calls on(String calls) {
        return new Calls(calls);
    }

    /** Some calls of a method, and what becomes of them. */
    public static final class Calls {
        private enum Kind { ANSWERS, FAILS, HANGS, USUAL }

        private final String calls;
        private int times;
        private long delay;

        private Calls(String calls) {
            this.calls = calls;
        }

        /**
         * Only so many calls, which without this are all.
         *
         * @param times how many, at least 1
         * @return these calls
         */
        public Calls times(int times) {
            if (times < 1) throw new IllegalArgumentException("at least once, not " + times);
            this.times = times;
            return this;
        }

        /**
         * Each is answered after a delay.
         *
         * @param time how long it takes
         * @return these calls
         */
        public Calls after(Duration time) {
            delay = time.toMillis();
            return this;
        }

        /** They are answered as usual, after the delay. */
        public void answerAsUsual() {
            add(Kind.USUAL, 0);
        }

        /**
         * They are answered so. A method without one of the values does not look at it. Over AIDL
         * texts of more than half a megabyte fail on their way.
         *
         * @param code the number
         * @param texts the text, and the second text that few methods have ("i2cTest" has); empty
         *     where they are left out
         * @throws IllegalArgumentException for texts that are null or that no call could carry to
         *     Java: too long, or with U+0000 or half a surrogate pair
         */
        public void answer(int code, String... texts) {
            if (texts == null || Arrays.asList(texts).contains(null)) {
                throw new IllegalArgumentException("a text is null, which no service's can be");
            }
            if (texts.length > 2) {
                throw new IllegalArgumentException("an answer has two texts at the most");
            }
            for (String text : texts) {
                if (text.indexOf('\0') >= 0) {
                    throw new IllegalArgumentException(
                            "U+0000 ends a service's text: nothing may follow");
                }
                if (!UTF_8.newEncoder().canEncode(text)) {
                    throw new IllegalArgumentException(
                            "half a surrogate pair is no text of a service");
                }
            }
            add(Kind.ANSWERS, code, texts);
        }

        /**
         * They fail on their way: the service has been asked, its answer does not arrive.
         *
         * @throws IllegalArgumentException for a method that returns one number over HIDL, since
         *     there such a failure ends the process
         */
        public void fail() {
            add(Kind.FAILS, 0);
        }

        /**
         * They hang, until {@link SimulatedDevice#release} lets them go on, their service dies, or
         * the device is restored; then they are answered as usual.
         */
        public void hang() {
            add(Kind.HANGS, 0);
        }

        private void add(Kind kind, int code, String... texts) {
            byte[] text = texts.length < 1 ? new byte[0] : texts[0].getBytes(UTF_8);
            byte[] detail = texts.length < 2 ? new byte[0] : texts[1].getBytes(UTF_8);
            if (text.length + detail.length > MOST_BYTES) {
                throw new IllegalArgumentException("texts of more than " + MOST_BYTES + " bytes");
            }
            addRule(String.valueOf(calls).getBytes(UTF_8), times, delay, kind.ordinal(), code, text,
                    detail);
        }
    }

    /** Lets the calls go on that hang now; later ones hang as before. */
    public native void release();

    /**
     * The calls that have reached services since the last time, without those that the library
     * makes by itself.
     *
     * @return each as {@code aidl factory.writeNv(7, "abc")}
     */
    public List<String> received() {
        List<String> calls = new ArrayList<>(receivedInAll());
        calls.removeIf(call -> call.startsWith(OWN_CALL));
        return calls;
    }

    /**
     * The same with what the library asks by itself: a session of the fingerprint service, whenever
     * it connects that over AIDL.
     *
     * @return the calls
     */
    public List<String> receivedInAll() {
        return List.of(takeCalls());
    }

    /**
     * Whether calls are kept for {@link #received}, as they are in the beginning and after {@link
     * #restore}; millions of them would take memory.
     *
     * @param record whether they are
     */
    public native void recordCalls(boolean record);

    /**
     * Waits until the library has handled every death and registration, for at most five seconds.
     *
     * @throws IllegalStateException when it has not by then; as a rule it waits for a declared
     *     service that does not run
     */
    public void settle() {
        settle(Duration.ofMillis(PATIENCE_MS));
    }

    /**
     * The same with another limit.
     *
     * @param limit the longest wait
     */
    public void settle(Duration limit) {
        if (!settle((int) Math.min(limit.toMillis(), Integer.MAX_VALUE))) {
            throw new IllegalStateException("the library still waits for a declared service");
        }
    }

    /**
     * As the device was when it started: what has died is back, what was declared or started since
     * is gone, and answers, failures, received calls and stored texts are forgotten. The library
     * has connected everything again when this returns, whatever it was waiting for; except over
     * AIDL a fingerprint service that has refused it a session, which it gives up for good.
     */
    public native void restore();

    private static int number(Backend backend) {
        if (backend == null) throw new IllegalArgumentException("the backend is AIDL or HIDL");
        return backend.ordinal();
    }

    private static Backend backend(String service, boolean held) {
        int number = backendOf(String.valueOf(service), held);
        return number < 0 ? null : Backend.values()[number];
    }

    private static native void startAsNamed();

    private static native void startAs(byte[] device);

    private static native String[] serviceNames();

    private static native int backendOf(String service, boolean held);

    private static native void kill(int backend, String service);

    private static native void restart(int backend, String service);

    private static native void declare(int backend, String service);

    private static native void killProcessOf(String service);

    private static native void restartProcessOf(String service);

    private static native void addRule(
            byte[] calls, int times, long delay, int kind, int code, byte[] text, byte[] detail);

    private static native String[] takeCalls();

    private static native boolean settle(int milliseconds);

    private static native void stop();
}
