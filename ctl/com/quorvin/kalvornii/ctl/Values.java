package com.quorvin.kalvornii.ctl;

import com.quorvin.kalvornii.BigDataOperation;
import com.quorvin.kalvornii.BigDataValue;
import java.lang.reflect.Field;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.HexFormat;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;

/**
 * Java's values as a person writes and reads them: a number in decimal or 0x, a text as it is,
 * bytes as hexadecimal digits, a record as "field=value" words. The word null is null, and \null
 * the text "null"; of more backslashes before it one is taken off likewise.
 */
public final class Values {
    private static final String NUMBER = "-?(0[xX][0-9a-fA-F]{1,8}|[0-9]{1,10})";
    private static final String ESCAPED = "\\\\+null";

    private Values() {}

    static boolean isRecord(Class<?> type) {
        return type == BigDataOperation.class || type == BigDataValue.class;
    }

    /** The arguments of those types; a record takes all words that are left. */
    public static Object[] parse(Class<?>[] types, List<String> names, List<String> words)
            throws UsageException {
        Object[] values = new Object[types.length];
        int used = 0;
        for (int i = 0; i < values.length; i++) {
            int end = isRecord(types[i]) ? words.size() : Math.min(used + 1, words.size());
            try {
                values[i] = parse(types[i], words.subList(used, end));
            } catch (UsageException e) {
                throw new UsageException(names.get(i) + ": " + e.getMessage());
            }
            used = end;
        }
        if (used == words.size()) return values;
        throw new UsageException("\"" + words.get(used) + "\" is one argument too many");
    }

    /** A value of that type: of one word, or for a record or an array of several numbers of all. */
    public static Object parse(Class<?> type, List<String> words) throws UsageException {
        if (isRecord(type)) return record(type, words);
        if (type == int[].class) {
            int[] numbers = new int[words.size()];
            for (int i = 0; i < numbers.length; i++) numbers[i] = number(words.get(i));
            return numbers;
        }
        if (words.isEmpty()) throw new UsageException("no value is given");
        if (words.size() == 1) return parse(type, words.get(0));
        throw new UsageException("one word is expected; quote a text with blanks");
    }

    /** A value of that type: int, String or byte[]. */
    static Object parse(Class<?> type, String word) throws UsageException {
        if (type == int.class) return number(word);
        if (word.equals("null")) return null;
        if (type == byte[].class) return bytes(word);
        return word.matches(ESCAPED) ? word.substring(1) : word;
    }

    /** Whether it may be meant as a number. */
    static boolean isNumber(String word) {
        return word.matches(NUMBER);
    }

    private static int number(String word) throws UsageException {
        if (isNumber(word)) {
            boolean isNegative = word.startsWith("-");
            boolean isHex = word.matches("-?0[xX].*");
            long size = Long.parseLong(word.replaceFirst("-?(0[xX])?", ""), isHex ? 16 : 10);
            long value = isNegative ? -size : size;
            boolean isBits = isHex && !isNegative;  // all 32 of them, 0xffffffff being -1
            if (isBits || value == (int) value) return (int) value;
        }
        throw new UsageException(
                "a 32-bit number, decimal or 0x, is expected, not \"" + word + "\"");
    }

    private static byte[] bytes(String word) throws UsageException {
        try {
            return HexFormat.of().parseHex(word);
        } catch (IllegalArgumentException e) {
            throw new UsageException("two hexadecimal digits a byte, not \"" + word + "\"");
        }
    }

    /** A record of the given fields; the others are 0 or "". */
    private static Object record(Class<?> type, List<String> words) throws UsageException {
        if (words.equals(List.of("null"))) return null;
        try {
            Object record = type.getConstructor().newInstance();
            for (Field field : fields(type)) {
                if (field.getType() == String.class) field.set(record, "");
            }
            for (String word : words) setField(record, word);
            return record;
        } catch (ReflectiveOperationException e) {
            throw new IllegalStateException(e);
        }
    }

    private static void setField(Object record, String word)
            throws UsageException, IllegalAccessException {
        int equals = word.indexOf('=');
        String name = word.substring(0, Math.max(equals, 0));
        for (Field field : fields(record.getClass())) {
            if (!field.getName().equals(name)) continue;
            try {
                field.set(record, parse(field.getType(), word.substring(equals + 1)));
                return;
            } catch (UsageException e) {
                throw new UsageException(name + ": " + e.getMessage());
            }
        }
        throw new UsageException("field=value is expected, not \"" + word + "\"; the fields are "
                + fields(record.getClass())
                          .stream()
                          .map(Field::getName)
                          .collect(Collectors.joining(", ")));
    }

    /** The fields of a record, those of numbers first. */
    static List<Field> fields(Class<?> type) {
        List<Field> fields = new ArrayList<>(Arrays.asList(type.getFields()));
        fields.sort((a, b) -> Boolean.compare(a.getType() != int.class, b.getType() != int.class));
        return fields;
    }

    /** What the fields of a record hold, by their names. */
    static Map<String, Object> members(Object record) {
        Map<String, Object> members = new LinkedHashMap<>();
        for (Field field : fields(record.getClass())) {
            try {
                members.put(field.getName(), field.get(record));
            } catch (IllegalAccessException e) {
                throw new IllegalStateException(e);
            }
        }
        return members;
    }

    /**
     * A result or an argument that is no record, as parse() takes it; arrays with blanks between.
     */
    static String show(Object value) {
        if (value instanceof byte[] bytes) return HexFormat.of().formatHex(bytes);
        if (value instanceof int[] numbers) {
            return Arrays.stream(numbers)
                    .mapToObj(Integer::toString)
                    .collect(Collectors.joining(" "));
        }
        if (value == null) return "null";
        String text = value.toString();
        return text.equals("null") || text.matches(ESCAPED) ? "\\" + text : text;
    }

    /** A value as words of a line. */
    static String words(Object value) {
        if (value instanceof int[]) return show(value);
        if (value == null || !isRecord(value.getClass())) return Words.quote(show(value));
        return members(value)
                .entrySet()
                .stream()
                .map(field -> Words.quote(field.getKey() + "=" + show(field.getValue())))
                .collect(Collectors.joining(" "));
    }
}
