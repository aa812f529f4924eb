package com.quorvin.kalvornii.demo;

import com.quorvin.kalvornii.KvNativeInterface;
import java.lang.reflect.Field;
import java.lang.reflect.InvocationTargetException;
import java.lang.reflect.Method;
import java.lang.reflect.Modifier;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.HexFormat;
import java.util.List;
import java.util.Set;
import java.util.TreeSet;

/** Calls the natives of one KvNativeInterface, and shows each call, its result and log lines. */
final class Session {
    private static final String NO_TIME = " ".repeat(9);
    private static final String PLAIN = "";
    private static final String DIM = "\033[2m";
    private static final String CYAN = "\033[36m";
    static final String BOLD = "\033[1m";
    private static final String GREEN = "\033[32m";
    private static final String RED = "\033[31m";
    private static final String MAGENTA = "\033[1;35m";

    private final KvNativeInterface kv;
    private final Set<String> unused = new TreeSet<>();
    private int calls;
    private int unanswered;

    /** Loads the library. */
    Session() {
        kv = new KvNativeInterface();
        for (Method method : KvNativeInterface.class.getDeclaredMethods()) {
            if (Modifier.isNative(method.getModifiers())) unused.add(method.getName());
        }
    }

    static void chapter(String title) {
        blank();
        SimulatedDevice.print("", "--- " + title + " " + "-".repeat(95 - title.length()), BOLD);
    }

    static void blank() {
        SimulatedDevice.print("", "", PLAIN);
    }

    static void say(String text) {
        SimulatedDevice.print(NO_TIME, text, PLAIN);
    }

    /** Something that happens to the device. */
    static void event(String text) {
        SimulatedDevice.print(time() + "** ", text, MAGENTA);
    }

    /** A row of the table of services. */
    static void row(String service, String backend, String serves) {
        String style = switch (backend) {
            case "AIDL" -> GREEN;
            case "HIDL" -> CYAN;
            case "none" -> DIM;
            default -> BOLD;
        };
        String text = String.format("%-17s %-9s %s", service, backend, serves);
        SimulatedDevice.print(NO_TIME, text, style);
    }

    static String time() {
        return String.format("%7.3f  ", SimulatedDevice.seconds());
    }

    Object call(String name, Object... arguments) {
        String time = time();
        SimulatedDevice.forgetReceived();
        SimulatedDevice.holdLog();
        Object result;
        try {
            result = method(name).invoke(kv, arguments);
        } catch (IllegalAccessException | InvocationTargetException e) {
            throw new IllegalStateException(name, e);
        }
        calls++;
        if (isAbsent(result)) unanswered++;
        unused.remove(name);
        String[] shown = Arrays.stream(arguments).map(Session::show).toArray(String[]::new);
        String text = String.format("%-55s = %s", name + "(" + String.join(", ", shown) + ")",
                show(result));
        SimulatedDevice.print(time, text, isAbsent(result) ? RED : BOLD);
        SimulatedDevice.showLog();
        return result;
    }

    /** A call, and what it became on the way to the service. */
    void callAndFollow(String name, Object... arguments) {
        call(name, arguments);
        SimulatedDevice.showReceived();
    }

    /** Shows one of the static fields that the library writes. */
    static void field(String name) {
        try {
            Object value = KvNativeInterface.class.getField(name).get(null);
            say("    KvNativeInterface." + name + " = " + show(value));
        } catch (ReflectiveOperationException e) {
            throw new IllegalStateException(name, e);
        }
    }

    /** The verdict on item number {@code done} of {@code total}. */
    static void progress(int done, int total, String item, Object result, Object expected) {
        boolean pass = expected.equals(result);
        String bar = "#".repeat(done) + ".".repeat(total - done);
        String verdict = pass ? "PASS" : isAbsent(result) ? "no service" : "FAIL";
        SimulatedDevice.print(NO_TIME,
                String.format("[%2d/%d] %s  %-28s %s", done, total, bar, item, verdict),
                pass ? GREEN : RED);
    }

    int calls() {
        return calls;
    }

    int unanswered() {
        return unanswered;
    }

    /** The natives that have not been called yet. */
    Set<String> unused() {
        return unused;
    }

    private static Method method(String name) {
        for (Method method : KvNativeInterface.class.getDeclaredMethods()) {
            if (method.getName().equals(name)) return method;
        }
        throw new IllegalArgumentException("no native " + name);
    }

    private static boolean isAbsent(Object result) {
        if (result instanceof int[] results) return results[0] == -9999;
        return result != null && (result.equals(-9999) || result.equals("INVALID_SERVICE"));
    }

    private static String show(Object value) {
        if (value instanceof String) return '"' + value.toString() + '"';
        if (value instanceof byte[] bytes) return "[" + HexFormat.of().formatHex(bytes) + "]";
        if (value instanceof int[] numbers) return Arrays.toString(numbers);
        if (value == null || value instanceof Integer) return String.valueOf(value);
        return showFields(value);
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
