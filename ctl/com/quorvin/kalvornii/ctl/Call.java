package com.quorvin.kalvornii.ctl;

import com.quorvin.kalvornii.KvNativeInterface;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;

/**
 * One call that was made, and what came of it.
 *
 * @param fields the texts of the static fields that the method writes
 * @param thread the one that called
 * @param log what the library logged on that thread; null when the log was not read
 */
record Call(Contract.Method method, Object[] arguments, Object result, Map<String, String> fields,
        double milliseconds, int thread, List<LogLine> log) {
    Call withLog(List<LogLine> read) {
        return new Call(method, arguments, result, fields, milliseconds, thread, read);
    }

    /** Whether the result is the failure value of an absent service or a null argument. */
    boolean hasFailed() {
        if (result instanceof int[] codes) {
            return Arrays.stream(codes).allMatch(code -> code == KvNativeInterface.SERVICE_ABSENT);
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
            if (arguments[i] == null) {
                nulls.add(name);
            } else if (Values.isRecord(arguments[i].getClass())) {
                Values.members(arguments[i]).forEach((field, value) -> {
                    if (value == null) nulls.add(name + "." + field);
                });
            }
        }
        return nulls;
    }

    /** Whether a failed call was for want of an argument, the service being there. */
    boolean isForNull() {
        return !nulls().isEmpty() && Managers.backend(new Services().named(method.service)) != null;
    }

    /** The backend that the call took; null for none, and when neither contract nor log tells. */
    private String backend() {
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
        Map<String, Object> members =
                Json.members("method", method.name, "arguments", arguments, "result", result);
        members.putAll(fields);
        members.put("milliseconds", rounded(milliseconds));
        members.put("backend", backend());
        members.put("log", log == null ? null : log.stream().map(LogLine::toString).toList());
        return members;
    }
}
