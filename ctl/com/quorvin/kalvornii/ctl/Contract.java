package com.quorvin.kalvornii.ctl;

import com.quorvin.kalvornii.KvNativeInterface;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Locale;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.Collectors;

/**
 * The methods as KvNativeInterface.java declares and describes them. That source is carried beside
 * the classes; there is no other list that could differ from it.
 */
final class Contract {
    private static final String SOURCE = "/com/quorvin/kalvornii/KvNativeInterface.java";

    private static final Pattern PART = Pattern.compile("^    // (?<section>.*)$"
                    + "|^    /\\*\\*(?<doc>(?s:.*?))\\*/"
                    + "|^    public native (?<result>\\S+) (?<name>\\w+)\\((?<parameters>[^)]*)\\);",
            Pattern.MULTILINE);
    private static final Pattern SERVICE = Pattern.compile("\\((\\w+) service\\b");
    private static final Pattern FIELD = Pattern.compile("\\{@link\\s+#(currentValue|i2cInfo)\\}");

    static final class Parameter {
        final String type;
        final String name;

        private Parameter(String declared) {
            String[] words = declared.split("\\s+");
            type = words[0];
            name = words[1];
        }
    }

    /** One native method. */
    static final class Method {
        final String name;
        final String result;
        final List<Parameter> parameters;
        /** The service that serves it, in the words of the table of services; null for none. */
        final String service;
        /** The static fields that it writes. */
        final List<String> fields;
        /** The doc comment without its frame and its markup. */
        final String doc;

        private Method(Matcher part, String comment, String service) {
            name = part.group("name");
            result = part.group("result");
            parameters = Pattern.compile(",")
                                 .splitAsStream(part.group("parameters"))
                                 .filter(declared -> !declared.isBlank())
                                 .map(declared -> new Parameter(declared.trim()))
                                 .toList();
            this.service = service;
            String text = comment.replaceAll("(?m)^ *\\* ?", "");
            fields = FIELD.matcher(text).results().map(found -> found.group(1)).distinct().toList();
            doc = text.replaceAll("\\{@link\\s+#?([^\\}\\s]+)\\s*\\}", "$1").trim();
        }

        /** As Java declares it. */
        String declaration() {
            return result + " " + name
                    + parameters.stream()
                              .map(parameter -> parameter.type + " " + parameter.name)
                              .collect(Collectors.joining(", ", "(", ")"));
        }

        /** The first sentence of the doc comment. */
        String summary() {
            String text = doc.replaceAll("\\s+", " ");
            int end = text.indexOf(". ");
            return end < 0 ? text : text.substring(0, end + 1);
        }

        String serviceName() {
            return service == null ? "no service" : service;
        }

        /** The method to call; to ask for it does not load the library. */
        java.lang.reflect.Method reflected() {
            return Arrays.stream(KvNativeInterface.class.getMethods())
                    .filter(method -> method.getName().equals(name))
                    .findFirst()
                    .orElseThrow();
        }

        Class<?>[] types() {
            return reflected().getParameterTypes();
        }

        /** The arguments that words say. */
        Object[] parse(List<String> words) throws UsageException {
            List<String> names = parameters.stream().map(parameter -> parameter.name).toList();
            try {
                return Values.parse(types(), names, words);
            } catch (UsageException e) {
                throw expected(e);
            }
        }

        /** The result that words say. */
        Object parseResult(List<String> words) throws UsageException {
            try {
                return Values.parse(reflected().getReturnType(), words);
            } catch (UsageException e) {
                throw expected(new UsageException("after = " + e.getMessage()));
            }
        }

        private UsageException expected(UsageException fault) {
            return new UsageException(fault.getMessage() + "\n  " + declaration());
        }

        private String key() {
            return Contract.key(name);
        }
    }

    private final List<Method> methods;

    Contract(String source) {
        List<Method> found = new ArrayList<>();
        String service = null;
        String comment = "";
        Matcher part = PART.matcher(source);
        while (part.find()) {
            if (part.group("section") != null) {
                Matcher named = SERVICE.matcher(part.group("section"));
                if (!named.find())
                    throw new IllegalStateException(
                            "The section \"" + part.group("section") + "\" names no service.");
                service = named.group(1).equals("no") ? null : named.group(1);
            } else if (part.group("doc") != null) {
                comment = part.group("doc");
            } else {
                found.add(new Method(part, comment, service));
                comment = "";
            }
        }
        methods = List.copyOf(found);
    }

    /** The contract that was built in. */
    static Contract read() {
        return new Contract(Resource.read(SOURCE));
    }

    List<Method> methods() {
        return methods;
    }

    /** The method of that name, with or without "native" and in any case, or of that part of it. */
    Method find(String word) throws UsageException {
        String key = key(word);
        List<Method> candidates = new ArrayList<>();
        for (Method method : methods) {
            if (method.key().equals(key)) return method;
            if (method.key().contains(key)) candidates.add(method);
        }
        if (candidates.size() == 1) return candidates.get(0);
        if (candidates.isEmpty()) {
            throw new UsageException("no method has \"" + word + "\" in its name; \"kalvornctl "
                    + "list\" shows them");
        }
        throw new UsageException("\"" + word + "\" is in the names of " + candidates.size()
                + " methods:"
                + candidates.stream()
                          .map(method -> "\n  " + method.declaration())
                          .collect(Collectors.joining()));
    }

    private static String key(String name) {
        return name.toLowerCase(Locale.ROOT).replace("native", "");
    }
}
