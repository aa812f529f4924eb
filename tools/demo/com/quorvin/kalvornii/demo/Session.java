package com.quorvin.kalvornii.demo;

import static java.util.stream.Collectors.joining;

import com.quorvin.kalvornii.BigDataOperation;
import com.quorvin.kalvornii.BigDataValue;
import com.quorvin.kalvornii.KvNativeInterface;
import com.quorvin.kalvornii.samples.Sample;
import com.quorvin.kalvornii.simulated.SimulatedDevice;
import com.quorvin.kalvornii.simulated.SimulatedDevice.Backend;
import java.lang.reflect.Field;
import java.lang.reflect.InvocationTargetException;
import java.lang.reflect.Method;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.HexFormat;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.Objects;
import java.util.Set;
import java.util.TreeSet;

/**
 * Calls the natives of one KvNativeInterface, shows each call, its result and log lines, and keeps
 * what did not come as expected.
 */
final class Session {
    private static final String NO_TIME = " ".repeat(9);
    private static final int COLUMNS = Screen.columns();
    /** What a line has room for after the time. */
    private static final int WIDTH = COLUMNS - NO_TIME.length();
    private static final String PLAIN = "";
    private static final String DIM = "\033[2m";
    private static final String CYAN = "\033[36m";
    static final String BOLD = "\033[1m";
    private static final String GREEN = "\033[32m";
    private static final String RED = "\033[31m";
    private static final String MAGENTA = "\033[1;35m";

    /** The methods whose calls become something else on the way to the service. */
    private static final Set<String> FOLLOWED = Set.of("nativeSetTestCycle",
            "nativeSetTestItemName", "nativeSetControlFlag", "nativePowerTest", "nativeDisplayTest",
            "nativeDisplayGeneralTest", "nativeGetScreenFpsConfigByScenes", "nativeSetFlashLight",
            "nativeSetCommand", "nativeSetWifiCommand", "sendCmdToFingerprintHalNative",
            "nativeGetVerifySignatureResult");

    private final KvNativeInterface kv;
    /** By the names of their methods, in order. */
    private final Map<String, Sample> samples = new LinkedHashMap<>();
    private final Set<String> unused;
    private int calls;
    private int unanswered;
    private final List<String> faults = new ArrayList<>();

    /** Loads the library. */
    Session() {
        kv = new KvNativeInterface();
        for (Sample sample : Sample.read()) samples.put(sample.method.getName(), sample);
        unused = new TreeSet<>(samples.keySet());
    }

    /** The samples of one section, in order. */
    List<Sample> section(String title) {
        return samples.values().stream().filter(sample -> sample.section.equals(title)).toList();
    }

    Sample sample(String method) {
        return samples.get(method);
    }

    /** The call of the method's sample, with what it fills and, for some, what it asked. */
    Object play(String method) {
        Sample sample = samples.get(method);
        if (!sample.remark.isEmpty()) say(sample.remark);
        Object result = call(sample.result, method, sample.arguments);
        if (FOLLOWED.contains(method)) follow();
        if (sample.field() != null) showField(sample);
        return result;
    }

    /** The result has to be the expected one, or a failure value while nothing is connected. */
    Object call(Object expected, String method, Object... arguments) {
        Sample sample = samples.get(method);
        boolean connected = isConnected(sample);
        Object result = invoke(sample.method, arguments);
        String what = method + " (" + sample.where + ")";
        if (connected) {
            check(what, expected, result);
        } else if (!isAbsent(result)) {
            check(what + ", while " + sample.service() + " is not connected", "a failure value",
                    result);
        }
        return result;
    }

    /** Shows what the last call became on the way to the service. */
    void follow() {
        for (String call : SimulatedDevice.get().received())
            Screen.print(NO_TIME + "    -> ", call, CYAN);
    }

    /** Shows the static field that a sample has filled. */
    private void showField(Sample sample) {
        try {
            Object value = KvNativeInterface.class.getField(sample.field()).get(null);
            say("    KvNativeInterface." + sample.field() + " = " + show(value));
            if (!isConnected(sample)) return;
            check(sample.field() + " (" + sample.where + ")",
                    sample.fieldText(lower(SimulatedDevice.get().holder(sample.service()))), value);
        } catch (ReflectiveOperationException e) {
            throw new IllegalStateException(sample.where, e);
        }
    }

    /** As the samples name it. */
    private static String lower(Backend backend) {
        return backend.toString().toLowerCase(Locale.ROOT);
    }

    private static boolean isConnected(Sample sample) {
        if (sample.service() == null) return true;
        Backend holder = SimulatedDevice.get().holder(sample.service());
        return holder != null && sample.isServedOver(lower(holder));
    }

    /** Each service that the device runs is held over its backend. */
    void checkConnected() {
        checkReleased(null);
    }

    /** The same, but for the services of one backend, which are held no more. */
    void checkReleased(Backend backend) {
        for (String service : SimulatedDevice.get().services()) {
            Backend runs = SimulatedDevice.get().runs(service);
            check("the backend that holds " + service, runs == backend ? null : runs,
                    SimulatedDevice.get().holder(service));
        }
    }

    void check(String what, Object expected, Object found) {
        if (Objects.deepEquals(expected, found)) return;
        String fault = what + ": expected " + show(expected) + ", found " + show(found);
        faults.add(fault);
        fault(fault);
    }

    static void fault(String text) {
        Screen.print(NO_TIME + "!! ", text, RED);
    }

    /** The backend over which the library holds a service: "AIDL", "HIDL" or "none". */
    static String holder(String service) {
        return Objects.toString(SimulatedDevice.get().holder(service), "none");
    }

    /** How many services are held over which backend. */
    static String holders() {
        List<String> all = SimulatedDevice.get().services().stream().map(Session::holder).toList();
        return String.format("%d over AIDL, %d over HIDL, %d not connected",
                Collections.frequency(all, "AIDL"), Collections.frequency(all, "HIDL"),
                Collections.frequency(all, "none"));
    }

    static boolean anyHolds(Backend backend) {
        return SimulatedDevice.get().services().stream().anyMatch(
                service -> SimulatedDevice.get().holder(service) == backend);
    }

    static void chapter(String title) {
        blank();
        String rule = "-".repeat(Math.max(3, COLUMNS - title.length() - 5));
        Screen.print("", "--- " + title + " " + rule, BOLD);
    }

    static void blank() {
        Screen.print("", "", PLAIN);
    }

    static void say(String text) {
        Screen.print(NO_TIME, text, PLAIN);
    }

    /** Something that happens to the device. */
    static void event(String text) {
        Screen.print(time() + "** ", text, MAGENTA);
    }

    /** A row of the table of services. */
    static void row(String service, String backend, String serves) {
        String style = Map.of("AIDL", GREEN, "HIDL", CYAN, "none", DIM).getOrDefault(backend, BOLD);
        String lead = NO_TIME + String.format("%-16s %-8s ", service, backend);
        Screen.print(lead, serves, style);
    }

    static String time() {
        return String.format("%7.3f  ", Screen.seconds());
    }

    /** A call and its result on one line, the results in one column where the calls leave room. */
    static String beside(String call, String result) {
        return String.format("%-" + WIDTH * 3 / 5 + "s = %s", call, result);
    }

    private Object invoke(Method method, Object[] arguments) {
        String time = time();
        SimulatedDevice.get().received();
        Screen.holdLog();
        Object result;
        try {
            result = method.invoke(kv, arguments);
        } catch (IllegalAccessException | InvocationTargetException e) {
            throw new IllegalStateException(method.getName(), e);
        }
        calls++;
        if (isAbsent(result)) unanswered++;
        unused.remove(method.getName());
        String shown = Arrays.stream(arguments).map(Session::show).collect(joining(", "));
        showCall(time, method.getName() + "(" + shown + ")", show(result),
                isAbsent(result) ? RED : BOLD);
        Screen.showLog();
        return result;
    }

    private static void showCall(String time, String call, String result, String style) {
        String together = call + " = " + result;
        if (beside(call, result).length() <= WIDTH) together = beside(call, result);
        if (together.length() <= WIDTH) {
            Screen.print(time, together, style);
        } else {
            Screen.print(time, call, style);
            Screen.print(NO_TIME, "    = " + result, style);
        }
    }

    /** The verdict on item number {@code done} of {@code total}. */
    static void progress(int done, int total, String item, Object result, Object expected) {
        boolean pass = expected.equals(result);
        int length = Math.min(total, WIDTH - 42);  // for what stands beside the bar
        int filled = done * length / total;
        String bar = "#".repeat(filled) + ".".repeat(length - filled);
        String verdict = pass ? "PASS" : isAbsent(result) ? "no service" : "FAIL";
        Screen.print(NO_TIME,
                String.format("[%2d/%d] %s  %-21s %s", done, total, bar, item, verdict),
                pass ? GREEN : RED);
    }

    int calls() {
        return calls;
    }

    int unanswered() {
        return unanswered;
    }

    /** The methods that have not been called yet. */
    Set<String> unused() {
        return unused;
    }

    int methods() {
        return samples.size();
    }

    List<String> faults() {
        return faults;
    }

    private static boolean isAbsent(Object result) {
        if (result instanceof int[] results) return results[0] == KvNativeInterface.SERVICE_ABSENT;
        return result != null
                && (result.equals(KvNativeInterface.SERVICE_ABSENT)
                        || result.equals(KvNativeInterface.INVALID_SERVICE));
    }

    private static String show(Object value) {
        if (value instanceof String) return '"' + value.toString() + '"';
        if (value instanceof byte[] bytes) return "[" + HexFormat.of().formatHex(bytes) + "]";
        if (value instanceof int[] numbers) return Arrays.toString(numbers);
        boolean isRecord = value instanceof BigDataOperation || value instanceof BigDataValue;
        return isRecord ? showFields(value) : String.valueOf(value);
    }

    private static String showFields(Object record) {
        List<String> fields = new ArrayList<>();
        for (Field field : record.getClass().getFields()) {
            try {
                fields.add(field.getName() + "=" + show(field.get(record)));
            } catch (IllegalAccessException e) {
                throw new IllegalStateException(e);
            }
        }
        return record.getClass().getSimpleName() + "{" + String.join(", ", fields) + "}";
    }
}
