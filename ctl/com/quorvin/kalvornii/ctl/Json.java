package com.quorvin.kalvornii.ctl;

import java.util.Arrays;
import java.util.HexFormat;
import java.util.LinkedHashMap;
import java.util.Map;
import java.util.regex.Pattern;
import org.json.JSONObject;

/** Values as JSON on one line; bytes are a text of hexadecimal digits. */
final class Json {
    private static final Pattern LONE_SURROGATE = Pattern.compile("\\p{Cs}");  // not UTF-8

    private Json() {}

    /** Of names and values, in this order. */
    static Map<String, Object> members(Object... namesAndValues) {
        Map<String, Object> members = new LinkedHashMap<>();
        for (int i = 0; i < namesAndValues.length; i += 2) {
            members.put((String) namesAndValues[i], plain(namesAndValues[i + 1]));
        }
        return members;
    }

    static String of(Map<String, Object> members) {
        Map<String, Object> plain = new LinkedHashMap<>();
        members.forEach((name, value) -> plain.put(name, plain(value)));
        return LONE_SURROGATE.matcher(new JSONObject(plain).toString())
                .replaceAll(found -> String.format("\\\\u%04x", (int) found.group().charAt(0)));
    }

    /** A value of kinds that the library of JSON knows. */
    private static Object plain(Object value) {
        if (value instanceof byte[] bytes) return HexFormat.of().formatHex(bytes);
        if (value instanceof Object[] all) return Arrays.stream(all).map(Json::plain).toList();
        return value == null || !Values.isRecord(value.getClass()) ? value : Values.members(value);
    }
}
