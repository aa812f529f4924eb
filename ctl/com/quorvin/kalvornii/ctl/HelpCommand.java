package com.quorvin.kalvornii.ctl;

import java.util.stream.Collectors;

/** "help", "--help" and "--version". */
final class HelpCommand {
    private final Console console;

    HelpCommand(Console console) {
        this.console = console;
    }

    int version() {
        console.line("kalvornctl " + Resource.read("/VERSION").trim());
        String library = LibraryFile.version();
        console.line("lib_kalvorn.so " + (library == null ? "is not found" : library));
        return Main.DONE;
    }

    int help(Options options) throws UsageException {
        options.allow(1);
        String word = options.words.isEmpty() ? null : options.words.get(0);
        if (word == null || Help.commands().containsKey(word)) return on(word);
        method(Contract.read().find(word));
        return Main.DONE;
    }

    /** On a command; on all for null. */
    int on(String command) throws UsageException {
        String text = command == null ? Help.general() : Help.commands().get(command);
        if (text == null) throw Help.unknown(command);
        console.raw(text);
        return Main.DONE;
    }

    private void method(Contract.Method method) {
        console.line(method.declaration());
        console.line("    " + method.serviceName());
        console.line("");
        console.line(method.doc);
        for (Contract.Parameter parameter : method.parameters) {
            Class<?> type = Values.typeOf(parameter.type);
            if (!Values.isRecord(type)) continue;
            console.line("\nThe fields of " + parameter.name + ": "
                    + Values.fields(type)
                              .stream()
                              .map(field -> field.getType().getSimpleName() + " " + field.getName())
                              .collect(Collectors.joining(", ")));
        }
    }
}
