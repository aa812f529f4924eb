package com.quorvin.kalvornii.soak;

import java.util.Locale;
import java.util.Map;

/** Maps, iterables, arrays of numbers, numbers, texts and null as JSON. */
final class Json {
    private Json() {}

    static String of(Object value) {
        StringBuilder text = new StringBuilder();
        append(text, value, "\n");
        return text.append('\n').toString();
    }

    private static void append(StringBuilder text, Object value, String line) {
        if (value instanceof Map<?, ?> map) {
            String before = "{" + line + "  ";
            for (Map.Entry<?, ?> entry : map.entrySet()) {
                text.append(before).append(quoted(entry.getKey().toString())).append(": ");
                append(text, entry.getValue(), line + "  ");
                before = "," + line + "  ";
            }
            text.append(map.isEmpty() ? "{}" : line + "}");
        } else if (value instanceof Iterable<?> list) {
            String before = "[" + line + "  ";
            for (Object element : list) {
                text.append(before);
                append(text, element, line + "  ");
                before = "," + line + "  ";
            }
            text.append(before.startsWith("[") ? "[]" : line + "]");
        } else if (value instanceof long[] numbers) {
            text.append(java.util.Arrays.toString(numbers));
        } else if (value instanceof Double number) {
            text.append(String.format(Locale.ROOT, "%.6g", number));
        } else if (value instanceof CharSequence) {
            text.append(quoted(value.toString()));
        } else {
            text.append(value);
        }
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
