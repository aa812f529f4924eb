package com.quorvin.kalvornii.ctl;

import java.lang.reflect.Field;
import java.util.Arrays;
import java.util.LinkedHashMap;
import java.util.Map;
import java.util.regex.Pattern;
import java.util.stream.Collectors;
import org.json.JSONObject;

/** Values as JSON on one line; bytes are a text of hexadecimal digits. */
final class Json {
    private static final Pattern LONE_SURROGATE = Pattern.compile("\\p{Cs}");  // not UTF-8

    private Json() {}

    static String of(Map<String, Object> members) {
        Map<String, Object> plain = new LinkedHashMap<>();
        members.forEach((name, value) -> plain.put(name, plain(value)));
        return LONE_SURROGATE.matcher(new JSONObject(plain).toString())
                .replaceAll(found -> String.format("\\\\u%04x", (int) found.group().charAt(0)));
    }

    /** A value of kinds that the library of JSON knows. */
    static Object plain(Object value) {
        if (value instanceof byte[]) return HexText.of((byte[]) value);
        if (value instanceof Object[]) {
            return Arrays.stream((Object[]) value).map(Json::plain).collect(Collectors.toList());
        }
        if (value == null || !Values.isRecord(value.getClass())) return value;
        Map<String, Object> members = new LinkedHashMap<>();
        for (Field field : Values.fields(value.getClass())) {
            members.put(field.getName(), Values.valueOf(field, value));
        }
        return members;
    }
}
