package com.quorvin.kalvornii.ctl;

import com.quorvin.kalvornii.BigDataOperation;
import com.quorvin.kalvornii.BigDataValue;
import java.lang.reflect.Field;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.stream.Collectors;

/**
 * Java's values as a person writes and reads them: a number in decimal or 0x, a text as it is,
 * bytes as hexadecimal digits, a record as "field=value" words. The word null is null, and \null
 * the text "null"; of more backslashes before it one is taken off likewise.
 */
final class Values {
    private static final String NUMBER = "-?(0[xX][0-9a-fA-F]{1,8}|[0-9]{1,10})";
    private static final String ESCAPED = "\\\\+null";

    private Values() {}

    static Class<?> typeOf(String name) {
        switch (name) {
            case "int":
                return int.class;
            case "int[]":
                return int[].class;
            case "byte[]":
                return byte[].class;
            case "String":
                return String.class;
            case "BigDataOperation":
                return BigDataOperation.class;
            case "BigDataValue":
                return BigDataValue.class;
            default:
                throw new IllegalStateException("The contract has an unknown type, " + name);
        }
    }

    static boolean isRecord(Class<?> type) {
        return type == BigDataOperation.class || type == BigDataValue.class;
    }

    /** The arguments for a method. */
    static Object[] parse(Contract.Method method, List<String> words) throws UsageException {
        List<Contract.Parameter> parameters = method.parameters;
        Object[] values = new Object[parameters.size()];
        int used = 0;
        for (int i = 0; i < values.length; i++) {
            Contract.Parameter parameter = parameters.get(i);
            Class<?> type = typeOf(parameter.type);
            try {
                if (isRecord(type)) {
                    values[i] = record(type, words.subList(used, words.size()));
                    used = words.size();
                } else if (used < words.size()) {
                    values[i] = parse(type, words.get(used++));
                } else {
                    throw new UsageException("no value is given");
                }
            } catch (UsageException e) {
                throw expected(method, parameter.name + ": " + e.getMessage());
            }
        }
        if (used < words.size()) {
            throw expected(method, "\"" + words.get(used) + "\" is one argument too many");
        }
        return values;
    }

    private static UsageException expected(Contract.Method method, String fault) {
        return new UsageException(fault + "\n  " + method.declaration());
    }

    /** A value of that type: int, String or byte[]. */
    static Object parse(Class<?> type, String word) throws UsageException {
        if (type == int.class) return number(word);
        if (word.equals("null")) return null;
        if (type == byte[].class) return HexText.parse(word);
        return word.matches(ESCAPED) ? word.substring(1) : word;
    }

    /** Whether it may be meant as a number. */
    static boolean isNumber(String word) {
        return word.matches(NUMBER);
    }

    private static int number(String word) throws UsageException {
        if (isNumber(word)) {
            boolean negative = word.startsWith("-");
            String digits = word.substring(negative ? 1 : 0);
            boolean hex = digits.startsWith("0x") || digits.startsWith("0X");
            long size = hex ? Long.parseLong(digits.substring(2), 16) : Long.parseLong(digits);
            long value = negative ? -size : size;
            boolean isBits = hex && !negative;  // all 32 of them, 0xffffffff being -1
            if (value >= Integer.MIN_VALUE && (isBits || value <= Integer.MAX_VALUE)) {
                return (int) value;
            }
        }
        throw new UsageException(
                "a 32-bit number, decimal or 0x, is expected, not \"" + word + "\"");
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

    static Object valueOf(Field field, Object record) {
        try {
            return field.get(record);
        } catch (IllegalAccessException e) {
            throw new IllegalStateException(e);
        }
    }

    /**
     * A result or an argument that is no record, as parse() takes it; arrays with blanks between.
     */
    static String show(Object value) {
        if (value instanceof byte[]) return HexText.of((byte[]) value);
        if (value instanceof int[]) {
            return Arrays.stream((int[]) value)
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
        return fields(value.getClass())
                .stream()
                .map(field -> Words.quote(field.getName() + "=" + show(valueOf(field, value))))
                .collect(Collectors.joining(" "));
    }
}
