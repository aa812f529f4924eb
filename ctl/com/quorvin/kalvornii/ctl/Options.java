package com.quorvin.kalvornii.ctl;

import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** The command line: a command, its words, and options anywhere among them until "--". */
final class Options {
    /** What may be given, and whether a value follows. */
    private static final Map<String, Boolean> KNOWN =
            Map.of("-v", false, "--json", false, "--yes", false, "--keep-going", false, "--help",
                    false, "--version", false, "--timeout", true, "--times", true);

    final List<String> words = new ArrayList<>();
    String command;
    private final Map<String, String> given = new LinkedHashMap<>();
    private String late;  // an option after the first word, which may have been meant as a text

    static Options parse(String[] arguments) throws UsageException {
        Options options = new Options();
        int i = 0;
        while (i < arguments.length && !arguments[i].equals("--")) {
            i += options.take(arguments[i], i + 1 < arguments.length ? arguments[i + 1] : null);
        }
        for (i++; i < arguments.length; i++) options.takeWord(arguments[i]);
        return options;
    }

    /** Takes an argument; returns how many it was with its value. */
    private int take(String argument, String next) throws UsageException {
        if (!argument.startsWith("-") || argument.length() == 1 || Values.isNumber(argument)) {
            takeWord(argument);
            return 1;
        }
        String name = argument.equals("-h") ? "--help" : argument;
        Boolean hasValue = KNOWN.get(name);
        if (hasValue == null) {
            throw new UsageException("no option \"" + argument + "\""
                    + (words.isEmpty() ? "" : "; a text that begins with a dash stands after --"));
        }
        if (hasValue && next == null) throw new UsageException(name + " needs a value");
        given.put(name, next);
        if (!words.isEmpty()) late = argument;
        return hasValue ? 2 : 1;
    }

    private void takeWord(String word) {
        if (command == null) {
            command = word;
        } else {
            words.add(word);
        }
    }

    boolean has(String option) {
        return given.containsKey(option);
    }

    /** The number after an option, at least 1; 1 without it. */
    int count(String option) throws UsageException {
        if (!has(option)) return 1;
        String value = given.get(option);
        if (value.matches("[1-9][0-9]{0,6}")) return Integer.parseInt(value);
        throw new UsageException(
                option + ": a number from 1 to 9999999 is expected, not \"" + value + "\"");
    }

    /** The limit that --timeout sets. */
    Limit limit() throws UsageException {
        if (!has("--timeout")) return Limit.NONE;
        String value = given.get("--timeout");
        if (value.matches("[0-9]{1,6}([.][0-9]{1,3})?") && Double.parseDouble(value) > 0) {
            return new Limit(Double.parseDouble(value));
        }
        throw new UsageException("--timeout: seconds are expected, not \"" + value + "\"");
    }

    /** Refuses other options, and more words than that. */
    void allow(int most, String... options) throws UsageException {
        for (String option : given.keySet()) {
            if (!List.of(options).contains(option)) {
                throw new UsageException("\"" + command + "\" has no option " + option);
            }
        }
        if (words.size() > most) {
            throw new UsageException(
                    "\"" + words.get(most) + "\" is one word too many for \"" + command + "\"");
        }
    }

    /** The same fault, with what else may have been meant. */
    UsageException explained(UsageException fault) {
        if (late == null) return fault;
        return new UsageException(fault.getMessage() + "\n  " + late
                + " was taken as an option; after -- it is a text");
    }
}
