package com.quorvin.kalvornii.ctl;

import java.lang.reflect.Field;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;
import java.util.stream.IntStream;
import java.util.stream.Stream;

/** Values as JSON on one line; bytes are a text of hexadecimal digits. */
final class Json {
    private Json() {}

    static String of(Object value) {
        if (value == null || value instanceof Number || value instanceof Boolean) {
            return String.valueOf(value);
        }
        if (value instanceof byte[]) return text(HexText.of((byte[]) value));
        if (value instanceof int[]) {
            return array(IntStream.of((int[]) value).mapToObj(Integer::valueOf));
        }
        if (value instanceof Object[]) return array(Stream.of((Object[]) value));
        if (value instanceof List) return array(((List<?>) value).stream());
        if (value instanceof Map) return object((Map<?, ?>) value);
        return Values.isRecord(value.getClass()) ? record(value) : text(value.toString());
    }

    private static String array(Stream<?> values) {
        return values.map(Json::of).collect(Collectors.joining(",", "[", "]"));
    }

    private static String object(Map<?, ?> members) {
        return members.entrySet()
                .stream()
                .map(member -> text(member.getKey().toString()) + ":" + of(member.getValue()))
                .collect(Collectors.joining(",", "{", "}"));
    }

    private static String record(Object value) {
        Map<String, Object> members = new LinkedHashMap<>();
        for (Field field : Values.fields(value.getClass())) {
            members.put(field.getName(), Values.valueOf(field, value));
        }
        return object(members);
    }

    private static String text(String text) {
        StringBuilder json = new StringBuilder("\"");
        for (char c : text.toCharArray()) {
            if (c == '"' || c == '\\') {
                json.append('\\').append(c);
            } else if (c < ' ' || Character.isSurrogate(c)) {  // a lone surrogate is not UTF-8
                json.append(String.format("\\u%04x", (int) c));
            } else {
                json.append(c);
            }
        }
        return json.append('"').toString();
    }
}
