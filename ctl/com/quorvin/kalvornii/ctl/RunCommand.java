package com.quorvin.kalvornii.ctl;

import java.io.FileInputStream;
import java.io.IOException;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.Objects;

/**
 * "run": each line is called as it is read, so that another program can write them one by one. The
 * result goes to standard output as a line of the same kind.
 */
final class RunCommand {
    private final Options options;
    private final Console console;
    private final CallCommand calls;
    private int made;
    private int refused;
    private int compared;
    private int different;
    private int absent;
    private int nulls;

    RunCommand(Options options, Console console) {
        this.options = options;
        this.console = console;
        calls = new CallCommand(options, console);
    }

    int run() throws UsageException, Failure, IOException {
        calls.allow(1, "-v", "--json", "--yes", "--keep-going", "--timeout");
        String name = options.words.isEmpty() ? "-" : options.words.get(0);
        boolean isInput = name.equals("-");
        try (Lines lines = isInput ? console.in : open(name)) {
            for (int number = 1;
                    next(lines, (isInput ? "line " : name + ":") + number, number == 1); number++) {
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
    private boolean next(Lines lines, String where, boolean isFirst) throws Failure, IOException {
        try {
            String line = lines.nextOfUtf8();
            if (line == null) return false;
            if (Words.FACT.matcher(line).matches()) return true;
            boolean isMarked = isFirst && line.startsWith("\ufeff");  // as some editors do
            take(isMarked ? line.substring(1) : line, where);
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
                + counted(different, "with another result")
                + counted(absent, "of an absent service")
                + counted(nulls, "with null where it must not be") + counted(refused, "not made"));
        if (absent > 0) calls.tellOfAbsence();
    }

    private static String counted(int count, String what) {
        return count > 0 ? ", " + count + " " + what : "";
    }

    /** Calls what a line says. */
    private void take(String line, String where) throws UsageException, Failure {
        List<List<String>> parts = Words.parts(line);
        List<String> words = parts.get(0);
        boolean expects = parts.size() > 1;
        if (words.isEmpty() && !expects) return;
        Contract.Method method = calls.method(words);
        Object[] arguments = calls.arguments(method, words);
        Object wanted = expects ? method.parseResult(parts.get(1)) : null;
        Call call = calls.make(method, arguments);
        boolean differs = expects && !Objects.deepEquals(wanted, call.result());
        count(call, expects, differs);
        if (options.has("--json")) {
            Map<String, Object> members = call.members();
            if (expects) members.put("expected", wanted);
            console.line(Json.of(members));
        } else {
            List<String> notes = new ArrayList<>();
            call.fields().forEach((name, text) -> notes.add(name + ": " + Values.words(text)));
            if (differs) notes.add(where + " expected: " + Values.words(wanted));
            console.line(call.line() + (notes.isEmpty() ? "" : "  # " + String.join(", ", notes)));
        }
        calls.showLog(call);
    }

    private void count(Call call, boolean expects, boolean differs) {
        made++;
        if (expects) compared++;
        if (differs) different++;
        if (!call.hasFailed() || (expects && !differs)) return;
        if (call.isForNull()) {
            nulls++;
        } else {
            absent++;
        }
    }
}
