package com.quorvin.kalvornii.ctl;

import com.quorvin.kalvornii.KvNativeInterface;
import java.lang.reflect.Field;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;

/** One call that was made, and what came of it. */
final class Call {
    final Contract.Method method;
    final Object[] arguments;
    final Object result;
    /** The texts of the static fields that the method writes. */
    final Map<String, String> fields;
    final double milliseconds;
    /** The thread that called. */
    final int thread;
    /** What the library logged on that thread; null when the log was not read. */
    List<LogLine> log;

    Call(Contract.Method method, Object[] arguments, Object result, Map<String, String> fields,
            double milliseconds, int thread) {
        this.method = method;
        this.arguments = arguments;
        this.result = result;
        this.fields = fields;
        this.milliseconds = milliseconds;
        this.thread = thread;
    }

    /** Whether the result is the failure value of an absent service or a null argument. */
    boolean hasFailed() {
        if (result instanceof int[]) {
            return Arrays.stream((int[]) result)
                    .allMatch(code -> code == KvNativeInterface.SERVICE_ABSENT);
        }
        return result != null
                && (result.equals(KvNativeInterface.SERVICE_ABSENT)
                        || result.equals(KvNativeInterface.INVALID_SERVICE));
    }

    /** What was null, as "value" or "operation.bsn". */
    List<String> nulls() {
        List<String> nulls = new ArrayList<>();
        for (int i = 0; i < arguments.length; i++) {
            String name = method.parameters.get(i).name;
            Object argument = arguments[i];
            if (argument == null) {
                nulls.add(name);
            } else if (Values.isRecord(argument.getClass())) {
                for (Field field : Values.fields(argument.getClass())) {
                    if (Values.valueOf(field, argument) == null) {
                        nulls.add(name + "." + field.getName());
                    }
                }
            }
        }
        return nulls;
    }

    /** The backend that the call took; null for none, and when neither contract nor log tells. */
    String backend() {
        if (method.service == null) return null;
        if (new Services().named(method.service).hidl == null) return "AIDL";
        if (log == null || log.isEmpty()) return null;
        String line = log.get(0).text;  // that of the choice
        return line.endsWith("ByAidl") ? "AIDL" : line.endsWith("ByHidl") ? "HIDL" : null;
    }

    /** As a line that "run" takes. */
    String line() {
        return method.name
                + Arrays.stream(arguments)
                          .map(argument -> " " + Values.words(argument))
                          .collect(Collectors.joining())
                + " = " + Values.words(result);
    }

    /** To microseconds. */
    static double rounded(double milliseconds) {
        return Math.round(milliseconds * 1000) / 1000.0;
    }

    /** What goes on a line of JSON. */
    Map<String, Object> members() {
        Map<String, Object> members = new LinkedHashMap<>();
        members.put("method", method.name);
        members.put("arguments", arguments);
        members.put("result", result);
        members.putAll(fields);
        members.put("milliseconds", rounded(milliseconds));
        members.put("backend", backend());
        members.put("log",
                log == null ? null
                            : log.stream().map(LogLine::toString).collect(Collectors.toList()));
        return members;
    }
}
