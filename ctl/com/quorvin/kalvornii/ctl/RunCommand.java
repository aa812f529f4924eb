package com.quorvin.kalvornii.ctl;

import java.io.FileInputStream;
import java.io.IOException;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.concurrent.TimeoutException;
import java.util.regex.Pattern;

/**
 * "run": each line is called as it is read, so that another program can write them one by one. The
 * result goes to standard output as a line of the same kind.
 */
final class RunCommand {
    /** What a file of samples tells of the call above. */
    private static final Pattern FACT = Pattern.compile(
            "\\s+(\\||((aidl|hidl) )?(asks|returns|logs|broken|absent|fills|keeps)\\b).*");

    private final Console console;
    private final CallCommand calls;
    private Library library;  // loaded for the first call
    private String where;  // the line
    private int made;
    private int refused;
    private int compared;
    private int different;
    private int absent;
    private int nulls;
    private Limit limit;

    RunCommand(Console console) {
        this.console = console;
        calls = new CallCommand(console);
    }

    int run(Options options) throws UsageException, LoadException, IOException, TimeoutException {
        options.allow(1, "-v", "--json", "--yes", "--keep-going", "--timeout");
        limit = options.limit();
        String name = options.words.isEmpty() ? "-" : options.words.get(0);
        Lines lines = name.equals("-") ? console.in : open(name);
        try (lines) {
            for (int number = 1; next(lines, name, number, options); number++) {
            }
        } finally {
            summary();
        }
        if (refused > 0) return Main.USAGE;
        if (different > 0) return Main.DIFFERENT;
        return absent + nulls > 0 ? Main.ABSENT : Main.DONE;
    }

    private static Lines open(String name) throws UsageException {
        try {
            return new Lines(new FileInputStream(name));
        } catch (IOException e) {
            throw new UsageException("cannot read " + e.getMessage());
        }
    }

    /** Calls what the next line says; false when there is no other that is to be called. */
    private boolean next(Lines lines, String name, int number, Options options)
            throws LoadException, IOException, TimeoutException {
        where = (name.equals("-") ? "line " : name + ":") + number;
        try {
            String line = lines.nextOfUtf8();
            if (line == null) return false;
            if (FACT.matcher(line).matches()) return true;
            boolean isMarked = number == 1 && line.startsWith("\ufeff");  // as some editors do
            take(isMarked ? line.substring(1) : line, options);
        } catch (UsageException e) {
            refused++;
            console.tell(where + ": " + e.getMessage());
            if (!options.has("--keep-going")) return false;
        }
        return !console.isCut();  // else nobody would know what came of the rest
    }

    private void summary() {
        console.tell(made + (made == 1 ? " call" : " calls")
                + (compared > 0 ? ", " + (compared - different) + " as expected" : "")
                + (different > 0 ? ", " + different + " with another result" : "")
                + (absent > 0 ? ", " + absent + " of an absent service" : "")
                + (nulls > 0 ? ", " + nulls + " with null where it must not be" : "")
                + (refused > 0 ? ", " + refused + " not made" : ""));
        if (absent > 0) library.tellOfAbsence();
    }

    /** Calls what a line says. */
    private void take(String line, Options options)
            throws UsageException, LoadException, TimeoutException {
        List<String> words = new ArrayList<>();
        List<String> expected = null;
        for (Words.Word word : Words.of(line)) {
            if (expected == null && !word.quoted && word.text.equals("=")) {
                expected = new ArrayList<>();
            } else {
                (expected == null ? words : expected).add(word.text);
            }
        }
        if (words.isEmpty() && expected == null) return;
        Contract.Method method = calls.method(words);
        Object[] arguments = calls.arguments(method, words.subList(1, words.size()), options);
        Object wanted = expected == null ? null : expectation(method, expected);
        call(method, arguments, expected != null, wanted, options);
    }

    private static Object expectation(Contract.Method method, List<String> words)
            throws UsageException {
        Class<?> type = Values.typeOf(method.result);
        if (type == int[].class) {
            int[] numbers = new int[words.size()];
            for (int i = 0; i < numbers.length; i++) {
                numbers[i] = (int) Values.parse(int.class, words.get(i));
            }
            return numbers;
        }
        if (words.size() != 1) {
            throw new UsageException("after = one word is expected; quote a text with blanks\n  "
                    + method.declaration());
        }
        return Values.parse(type, words.get(0));
    }

    private void call(Contract.Method method, Object[] arguments, boolean expects, Object wanted,
            Options options) throws LoadException, TimeoutException {
        boolean withLog = options.has("-v") || options.has("--json");
        if (library == null) {
            library = new Library(console, limit);
            if (!withLog) library.log.close();
        }
        Call call = library.call(method, arguments, withLog);
        made++;
        boolean differs = expects && !Objects.deepEquals(wanted, call.result);
        if (expects) compared++;
        if (differs) different++;
        if (call.hasFailed() && (!expects || differs)) {
            if (CallCommand.isForNull(call)) {
                nulls++;
            } else {
                absent++;
            }
        }
        if (options.has("--json")) {
            Map<String, Object> members = call.members();
            if (expects) members.put("expected", wanted);
            console.line(Json.of(members));
        } else {
            List<String> notes = new ArrayList<>();
            call.fields.forEach((name, text) -> notes.add(name + ": " + Values.words(text)));
            if (differs) notes.add(where + " expected: " + Values.words(wanted));
            console.line(call.line() + (notes.isEmpty() ? "" : "  # " + String.join(", ", notes)));
        }
        if (options.has("-v")) calls.showLog(call, library.log);
    }
}
