package com.quorvin.kalvornii.ctl;

import static java.nio.charset.StandardCharsets.ISO_8859_1;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.Collectors;

/**
 * "help", "--help", "--version" and "completion": texts that are packed in. help.txt has that on
 * the whole, and after a line "@ COMMAND" that on each command.
 */
final class Help {
    private static final String[] PARTS =
            Resource.read("/com/quorvin/kalvornii/ctl/help.txt").split("(?m)^@ ");
    /** The library's ELF note: two sizes, type 1, the owner, the version. */
    private static final Pattern NOTE =
            Pattern.compile("\10\0\0\0.\0\0\0\1\0\0\0Kalvorn\0([^\0]+)\0", Pattern.DOTALL);

    private Help() {}

    static String general() {
        return PARTS[0];
    }

    /** The commands' own texts, by the commands. */
    static Map<String, String> commands() {
        Map<String, String> commands = new LinkedHashMap<>();
        for (int i = 1; i < PARTS.length; i++) {
            String[] part = PARTS[i].split("\n", 2);
            commands.put(part[0], part[1]);
        }
        return commands;
    }

    static UsageException unknown(String command) {
        return new UsageException("no command \"" + command + "\"; --help tells which");
    }

    /** The options of all commands, as the general help lists them. */
    static List<String> options() {
        List<String> options = new ArrayList<>();
        for (String line : general().split("\n")) {
            if (line.startsWith("  -"))
                Collections.addAll(options, line.trim().split("[ ,].*", 2)[0]);
        }
        return options;
    }

    /** On a command; on all for null. */
    static String on(String command) throws UsageException {
        String text = command == null ? general() : commands().get(command);
        if (text == null) throw unknown(command);
        return text;
    }

    /** On the command or the method that is named. */
    static String help(Options options) throws UsageException {
        options.allow(1);
        String word = options.words.isEmpty() ? null : options.words.get(0);
        if (word == null || commands().containsKey(word)) return on(word);
        Contract.Method method = Contract.read().find(word);
        StringBuilder text = new StringBuilder(method.declaration() + "\n    "
                + method.serviceName() + "\n\n" + method.doc + "\n");
        Class<?>[] types = method.types();
        for (int i = 0; i < types.length; i++) {
            if (!Values.isRecord(types[i])) continue;
            text.append("\nThe fields of " + method.parameters.get(i).name + ": "
                    + Values.fields(types[i])
                              .stream()
                              .map(field -> field.getType().getSimpleName() + " " + field.getName())
                              .collect(Collectors.joining(", "))
                    + "\n");
        }
        return text.toString();
    }

    static String version() {
        return "kalvornctl " + Resource.read("/VERSION").trim() + "\nlib_kalvorn.so "
                + versionOfLibrary() + "\n";
    }

    /** That which the library was built with. */
    private static String versionOfLibrary() {
        for (String folder : System.getProperty("java.library.path", "").split(":")) {
            try {
                byte[] library =
                        Files.readAllBytes(Path.of(folder, System.mapLibraryName("_kalvorn")));
                Matcher note = NOTE.matcher(new String(library, ISO_8859_1));
                if (note.find()) return note.group(1);
            } catch (IOException e) {
                // It is looked for in the next.
            }
        }
        return "is not found";
    }

    /** A script for a shell, with the words of the contract filled in. */
    static String completion(Options options) throws UsageException {
        options.allow(1);
        String shell = options.words.isEmpty() ? "" : options.words.get(0);
        if (!shell.matches("bash|zsh")) throw new UsageException("bash or zsh is expected");
        List<String> methods =
                Contract.read().methods().stream().map(method -> method.name).toList();
        return Resource.read("/com/quorvin/kalvornii/ctl/completion." + shell)
                .replace("@COMMANDS@", String.join(" ", commands().keySet()))
                .replace("@OPTIONS@", String.join(" ", options()))
                .replace("@SERVICES@", String.join(" ", new Services().names()))
                .replace("@DEVICES@", System.getenv().getOrDefault("KALVORN_DEVICES", ""))
                .replace("@METHODS@", String.join(" ", methods));
    }
}
