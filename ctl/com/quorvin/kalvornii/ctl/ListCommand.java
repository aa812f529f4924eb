package com.quorvin.kalvornii.ctl;

import java.util.List;
import java.util.Locale;
import java.util.Map;

/** "list". */
final class ListCommand {
    private ListCommand() {}

    static int list(Options options, Console console) throws UsageException {
        options.allow(1, "--json");
        String word = options.words.isEmpty() ? "" : options.words.get(0).toLowerCase(Locale.ROOT);
        List<Contract.Method> found =
                Contract.read()
                        .methods()
                        .stream()
                        .filter(method -> row(method).toLowerCase(Locale.ROOT).contains(word))
                        .toList();
        if (found.isEmpty()) throw new UsageException("no method has to do with \"" + word + "\"");
        for (Contract.Method method : found) show(method, options.has("--json"), console);
        return Main.DONE;
    }

    private static String row(Contract.Method method) {
        return String.join("\t", method.declaration(), method.serviceName(), method.summary());
    }

    /** On a terminal two lines, elsewhere one whose three parts are parted by tabs. */
    private static void show(Contract.Method method, boolean json, Console console) {
        if (json) {
            console.line(Json.of(members(method)));
        } else if (console.isTerminal()) {
            console.wrapped("", "        ", method.declaration()).forEach(console::line);
            String text = method.serviceName() + ": " + method.summary();
            console.wrapped("    ", "    ", text).forEach(console::line);
        } else {
            console.line(row(method));
        }
    }

    private static Map<String, Object> members(Contract.Method method) {
        List<Map<String, String>> parameters =
                method.parameters.stream()
                        .map(parameter -> Map.of("type", parameter.type, "name", parameter.name))
                        .toList();
        return Json.members("method", method.name, "service", method.service, "result",
                method.result, "parameters", parameters, "fields", method.fields, "text",
                method.summary());
    }
}
