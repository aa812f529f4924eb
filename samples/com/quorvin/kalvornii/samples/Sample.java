package com.quorvin.kalvornii.samples;

import static java.nio.charset.StandardCharsets.UTF_8;

import com.quorvin.kalvornii.KvNativeInterface;
import com.quorvin.kalvornii.ctl.UsageException;
import com.quorvin.kalvornii.ctl.Values;
import com.quorvin.kalvornii.ctl.Words;
import java.io.IOException;
import java.io.InputStream;
import java.lang.reflect.Method;
import java.lang.reflect.Parameter;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.regex.Matcher;

/** A call of one native method, and what samples/methods.samples tells of it. */
public final class Sample {
    private static final String FILE = "samples/methods.samples";

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
                samples.get(samples.size() - 1).add(line, where);
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
        try {
            List<List<String>> parts = Words.parts(call);
            if (parts.size() < 2) throw wrong(where, "a call has a result, after =");
            method = method(parts.get(0).remove(0));
            List<String> names =
                    Arrays.stream(method.getParameters()).map(Parameter::getName).toList();
            arguments = Values.parse(method.getParameterTypes(), names, parts.get(0));
            result = Values.parse(method.getReturnType(), parts.get(1));
        } catch (UsageException e) {
            throw wrong(where, e.getMessage());
        }
    }

    private static IllegalStateException wrong(String where, String why) {
        return new IllegalStateException(where + ": " + why);
    }

    private void add(String line, String where) {
        Matcher fact = Words.FACT.matcher(line);
        boolean isMore = fact.matches() && fact.group(1) == null;
        if (!fact.matches() || (isMore && last == null)) {
            throw wrong(where, "not a fact about a call: " + line);
        }
        if (!isMore) last = fact.group(1);
        facts.merge(last, fact.group(2), (before, more) -> isMore ? before + " " + more : more);
    }

    private Method method(String name) {
        for (Method method : KvNativeInterface.class.getDeclaredMethods()) {
            if (method.getName().equals(name)) return method;
        }
        throw wrong(where, "no method " + name);
    }

    /** Of a fact, up to a bar. */
    private List<String> words(String fact) {
        try {
            return Words.parts(fact.split("\\|")[0]).get(0);
        } catch (UsageException e) {
            throw wrong(where, e.getMessage());
        }
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
        try {
            return broken == null ? null : Values.parse(method.getReturnType(), words(broken));
        } catch (UsageException e) {
            throw wrong(where, e.getMessage());
        }
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
