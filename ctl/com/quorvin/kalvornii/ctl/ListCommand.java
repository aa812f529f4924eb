package com.quorvin.kalvornii.ctl;

import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.stream.Collectors;

/** "list". */
final class ListCommand {
    private final Console console;

    ListCommand(Console console) {
        this.console = console;
    }

    int list(Options options) throws UsageException {
        options.allow(1, "--json");
        String word = options.words.isEmpty() ? "" : options.words.get(0).toLowerCase(Locale.ROOT);
        List<Contract.Method> found =
                Contract.read()
                        .methods()
                        .stream()
                        .filter(method -> row(method).toLowerCase(Locale.ROOT).contains(word))
                        .collect(Collectors.toList());
        if (found.isEmpty()) throw new UsageException("no method has to do with \"" + word + "\"");
        for (Contract.Method method : found) show(method, options.has("--json"));
        return Main.DONE;
    }

    private static String row(Contract.Method method) {
        return String.join("\t", method.declaration(), method.serviceName(), method.summary());
    }

    /** On a terminal two lines, elsewhere one whose three parts are parted by tabs. */
    private void show(Contract.Method method, boolean json) {
        if (json) {
            console.line(Json.of(members(method)));
        } else if (console.isTerminal()) {
            wrap(method.declaration(), "        ", 0);
            wrap(method.serviceName() + ": " + method.summary(), "    ", 4);
        } else {
            console.line(row(method));
        }
    }

    private static Map<String, Object> members(Contract.Method method) {
        Map<String, Object> members = new LinkedHashMap<>();
        members.put("method", method.name);
        members.put("service", method.service);
        members.put("result", method.result);
        members.put("parameters",
                method.parameters.stream()
                        .map(parameter -> Map.of("type", parameter.type, "name", parameter.name))
                        .collect(Collectors.toList()));
        members.put("fields", method.fields);
        members.put("text", method.summary());
        return members;
    }

    /** Words on lines of the terminal's width, of which the later ones, or all, are indented. */
    private void wrap(String text, String indent, int first) {
        StringBuilder line = new StringBuilder(indent.substring(0, first));
        for (String word : text.split(" ")) {
            if (line.length() + word.length() >= console.columns()) {
                console.line(line.toString());
                line = new StringBuilder(indent);
            }
            if (!line.toString().trim().isEmpty()) line.append(' ');
            line.append(word);
        }
        console.line(line.toString());
    }
}
