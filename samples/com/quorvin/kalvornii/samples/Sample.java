package com.quorvin.kalvornii.samples;

import static java.nio.charset.StandardCharsets.UTF_8;

import com.quorvin.kalvornii.KvNativeInterface;
import java.io.IOException;
import java.io.InputStream;
import java.lang.reflect.Method;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/** A call of one native method, and what samples/methods.samples tells of it. */
public final class Sample {
    private static final String FILE = "samples/methods.samples";
    private static final Pattern FACT = Pattern.compile(
            "((?:aidl |hidl )?(?:asks|returns|logs|broken|absent|fills|keeps))(?: +(.*))?");
    private static final Pattern WORD = Pattern.compile("(?:'[^']*'|[^\\s'])+");

    /** The title that it stands below. */
    public final String section;
    /** The comment right above it, "" when there is none. */
    public final String remark;
    /** The file and the line, for people. */
    public final String where;
    public final Method method;
    public final Object[] arguments;
    /** What a healthy device answers. */
    public final Object result;

    private final Map<String, String> facts = new HashMap<>();
    private String last;

    /** All, in order, of the file that is carried beside the classes. */
    public static List<Sample> read() {
        List<Sample> samples = new ArrayList<>();
        String section = "";
        String remark = "";
        int number = 0;
        for (String line : file().split("\n")) {
            String where = FILE + ":" + ++number;
            if (line.startsWith("## ")) {
                section = line.substring(3);
            } else if (line.startsWith("# ")) {
                remark += line.substring(remark.isEmpty() ? 2 : 1);
            } else if (line.startsWith(" ") && !samples.isEmpty()) {
                samples.get(samples.size() - 1).add(line.trim(), where);
            } else {
                if (!line.isEmpty() && !line.equals("#")) {
                    samples.add(new Sample(section, remark, where, line));
                }
                remark = "";
            }
        }
        return samples;
    }

    private static String file() {
        try (InputStream file = Sample.class.getResourceAsStream("/" + FILE)) {
            return new String(file.readAllBytes(), UTF_8);
        } catch (IOException e) {
            throw new IllegalStateException(FILE, e);
        }
    }

    private Sample(String section, String remark, String where, String call) {
        this.section = section;
        this.remark = remark;
        this.where = where;
        int equals = call.lastIndexOf(" = ");
        if (equals < 0) throw wrong(where, "a call has a result, after =");
        List<String> words = words(call.substring(0, equals));
        method = method(words.remove(0));
        Class<?>[] types = method.getParameterTypes();
        arguments = new Object[types.length];
        for (int i = 0; i < types.length; i++) {
            boolean takesAll = i == types.length - 1;
            arguments[i] = value(types[i], words.subList(i, takesAll ? words.size() : i + 1));
        }
        result = value(method.getReturnType(), words(call.substring(equals + 3)));
    }

    private static IllegalStateException wrong(String where, String why) {
        return new IllegalStateException(where + ": " + why);
    }

    private void add(String line, String where) {
        Matcher fact = FACT.matcher(line);
        if (line.startsWith("|") && last != null) {
            facts.merge(last, " " + line, String::concat);
        } else if (fact.matches()) {
            last = fact.group(1);
            facts.put(last, fact.group(2) == null ? "" : fact.group(2));
        } else {
            throw wrong(where, "not a fact about a call: " + line);
        }
    }

    private Method method(String name) {
        for (Method method : KvNativeInterface.class.getDeclaredMethods()) {
            if (method.getName().equals(name)) return method;
        }
        throw wrong(where, "no method " + name);
    }

    private List<String> words(String text) {
        List<String> words = new ArrayList<>();
        Matcher word = WORD.matcher(text);
        while (word.find()) words.add(word.group().replace("'", ""));
        if (!WORD.matcher(text).replaceAll("").isBlank())
            throw wrong(where, "a quote is not closed");
        return words;
    }

    private Object value(Class<?> type, List<String> words) {
        try {
            if (type == int[].class) return words.stream().mapToInt(Integer::decode).toArray();
            if (!type.getName().startsWith("java.") && !type.isPrimitive() && !type.isArray()) {
                return record(type, words);
            }
            if (words.size() != 1) throw wrong(where, "one word, not " + words);
            String word = words.get(0);
            if (type == byte[].class) return bytes(word);
            return type == int.class ? (Object) Integer.decode(word) : word;
        } catch (NumberFormatException | ReflectiveOperationException e) {
            throw wrong(where, e.toString());
        }
    }

    private static byte[] bytes(String hex) {
        byte[] bytes = new byte[hex.length() / 2];
        for (int i = 0; i < bytes.length; i++) {
            bytes[i] = (byte) Integer.parseInt(hex.substring(2 * i, 2 * i + 2), 16);
        }
        return bytes;
    }

    private static Object record(Class<?> type, List<String> fields)
            throws ReflectiveOperationException {
        Object record = type.getConstructor().newInstance();
        for (String field : fields) {
            String[] parts = field.split("=", 2);
            boolean isNumber = type.getField(parts[0]).getType() == int.class;
            type.getField(parts[0]).set(
                    record, isNumber ? (Object) Integer.decode(parts[1]) : parts[1]);
        }
        return record;
    }

    /** What is said of one backend, "aidl" or "hidl", or of both; null when nothing is. */
    private String fact(String backend, String word) {
        return facts.getOrDefault(backend + " " + word, facts.get(word));
    }

    /** The service that is asked; null for none. */
    public String service() {
        String asks = fact("aidl", "asks");
        return asks == null ? null : asks.substring(0, asks.indexOf('.'));
    }

    /** Whether the method has that backend, "aidl" or "hidl". */
    public boolean isServedOver(String backend) {
        return fact(backend, "logs") != null;
    }

    /** What is answered over "aidl" or "hidl" when the call to the service breaks off. */
    public Object broken(String backend) {
        String broken = fact(backend, "broken");
        return broken == null ? null : value(method.getReturnType(), words(broken.split("\\|")[0]));
    }

    /** Whether texts from Java are not released, on purpose. */
    public boolean keeps() {
        return facts.containsKey("keeps");
    }

    /** The static field that is filled; null for none. */
    public String field() {
        String fills = fact("aidl", "fills");
        return fills == null ? null : words(fills).get(0);
    }

    /** What it is filled with over "aidl" or "hidl". */
    public String fieldText(String backend) {
        return words(fact(backend, "fills")).get(1);
    }
}
