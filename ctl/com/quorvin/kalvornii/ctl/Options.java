package com.quorvin.kalvornii.ctl;

import java.util.ArrayList;
import java.util.HashSet;
import java.util.List;
import java.util.Set;

/** The command line: a command, its options, and its own words, of which options are no more. */
final class Options {
    final String command;
    final List<String> words;
    private final Set<String> given = new HashSet<>();

    private Options(String command, List<String> words) {
        this.command = command;
        this.words = words;
    }

    /** Options stand anywhere before METHOD, FILE or WORD; all after that is taken as it is. */
    static Options parse(String[] arguments) throws UsageException {
        Set<String> given = new HashSet<>();
        String command = null;
        int i = 0;
        for (; i < arguments.length; i++) {
            String word = arguments[i];
            if (word.startsWith("-") && word.length() > 1) {
                given.add(word.equals("-h") ? "--help" : word);
            } else if (command == null) {
                command = word;
            } else {
                break;
            }
        }
        List<String> words = new ArrayList<>();
        for (; i < arguments.length; i++) words.add(arguments[i]);
        Options options = new Options(command, words);
        options.given.addAll(given);
        return options;
    }

    boolean has(String option) {
        return given.contains(option);
    }

    /** Refuses other options, and more words than that. */
    void allow(int most, String... options) throws UsageException {
        for (String option : given) {
            if (!List.of(options).contains(option)) {
                throw new UsageException("\"" + command + "\" has no option " + option);
            }
        }
        if (words.size() > most) {
            throw new UsageException(tooMany(words.get(most), "word") + " for \"" + command + "\"");
        }
    }

    /** Names what is too much, and why an option may be. */
    static String tooMany(String word, String what) {
        return "\"" + word + "\" is one " + what + " too many"
                + (word.startsWith("-") ? " (options stand before METHOD, FILE and WORD)" : "");
    }
}
