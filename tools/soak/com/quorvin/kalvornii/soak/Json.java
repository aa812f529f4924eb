package com.quorvin.kalvornii.soak;

import java.lang.reflect.RecordComponent;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;

/** Maps, records, lists, numbers, truths, texts and null as JSON; a record is on one line. */
final class Json {
    private Json() {}

    /** An object of names and values in turn. */
    static Map<String, Object> object(Object... namesAndValues) {
        Map<String, Object> object = new LinkedHashMap<>();
        for (int i = 0; i < namesAndValues.length; i += 2) {
            object.put((String) namesAndValues[i], namesAndValues[i + 1]);
        }
        return object;
    }

    /** @param line begins each line but the first, and is such a beginning; "\n" for the whole */
    static String of(Object value, String line) {
        if (value instanceof Map<?, ?> map) {
            return enclosed("{", "}", line, map.entrySet().stream().map(member ->
                    quoted(member.getKey().toString()) + ": " + of(member.getValue(), line + "  "))
                    .toList());
        }
        if (value instanceof List<?> list) {
            return enclosed("[", "]", line,
                    list.stream().map(element -> of(element, line + "  ")).toList());
        }
        if (value instanceof Record record) return ofRecord(record);
        if (value instanceof Double number) return String.format(Locale.ROOT, "%.6g", number);
        boolean isBare = value == null || value instanceof Number || value instanceof Boolean;
        return isBare ? String.valueOf(value) : quoted(value.toString());
    }

    private static String enclosed(String open, String close, String line, List<String> parts) {
        if (parts.isEmpty()) return open + close;
        return open + line + "  " + String.join("," + line + "  ", parts) + line + close;
    }

    private static String ofRecord(Record record) {
        List<String> members = new ArrayList<>();
        try {
            for (RecordComponent component : record.getClass().getRecordComponents()) {
                members.add(quoted(component.getName()) + ": "
                        + of(component.getAccessor().invoke(record), "\n"));
            }
        } catch (ReflectiveOperationException e) {
            throw new IllegalStateException(e);
        }
        return "{" + String.join(", ", members) + "}";
    }

    private static String quoted(String text) {
        StringBuilder quoted = new StringBuilder("\"");
        for (char c : text.toCharArray()) {
            if (c == '"' || c == '\\') {
                quoted.append('\\').append(c);
            } else if (c < ' ' || c > '~') {
                quoted.append(String.format("\\u%04x", (int) c));
            } else {
                quoted.append(c);
            }
        }
        return quoted.append('"').toString();
    }
}
