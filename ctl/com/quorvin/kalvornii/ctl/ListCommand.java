package com.quorvin.kalvornii.ctl;

import java.util.Locale;
import java.util.stream.Collectors;

/** "list" and "help METHOD". */
final class ListCommand {
    private final Console console;
    private final Contract contract = Contract.read();

    ListCommand(Console console) {
        this.console = console;
    }

    /** On a terminal two lines a method, elsewhere one whose three parts are parted by tabs. */
    int list(Options options) throws UsageException {
        options.allow(1);
        String word = options.words.isEmpty() ? "" : options.words.get(0).toLowerCase(Locale.ROOT);
        int shown = 0;
        for (Contract.Method method : contract.methods()) {
            String line =
                    String.join("\t", method.declaration(), method.serviceName(), method.summary());
            if (!line.toLowerCase(Locale.ROOT).contains(word)) continue;
            shown++;
            if (console.isTerminal()) {
                wrap(method.declaration(), "        ", 0);
                wrap(method.serviceName() + ": " + method.summary(), "    ", 4);
            } else {
                console.out.println(line);
            }
        }
        if (shown == 0) throw new UsageException("no method has to do with \"" + word + "\"");
        return Main.DONE;
    }

    /** Words on lines of the terminal's width, of which the later ones, or all, are indented. */
    private void wrap(String text, String indent, int first) {
        StringBuilder line = new StringBuilder(indent.substring(0, first));
        for (String word : text.split(" ")) {
            if (line.length() + word.length() >= console.columns()) {
                console.out.println(line);
                line = new StringBuilder(indent);
            }
            if (!line.toString().trim().isEmpty()) line.append(' ');
            line.append(word);
        }
        console.out.println(line);
    }

    int help(Options options) throws UsageException {
        options.allow(1);
        Contract.Method method = contract.find(options.words.get(0));
        console.out.println(method.declaration());
        console.out.println("    " + method.serviceName());
        console.out.println();
        console.out.println(method.doc);
        for (Contract.Parameter parameter : method.parameters) {
            Class<?> type = Values.typeOf(parameter.type);
            if (!Values.isRecord(type)) continue;
            console.out.println("\nThe fields of " + parameter.name + ": "
                    + Values.fields(type)
                              .stream()
                              .map(field -> field.getType().getSimpleName() + " " + field.getName())
                              .collect(Collectors.joining(", ")));
        }
        return Main.DONE;
    }
}
