package com.quorvin.kalvornii.ctl;

import java.util.List;

/** "call", and what "run" has in common with it. */
final class CallCommand {
    private final Options options;
    private final Console console;
    private final Contract contract = Contract.read();
    private Limit limit;
    private Library library;

    CallCommand(Options options, Console console) {
        this.options = options;
        this.console = console;
    }

    int call() throws UsageException, Failure {
        allow(Integer.MAX_VALUE, "-v", "--json", "--yes", "--timeout", "--times");
        int times = options.count("--times");
        if (options.has("--times") && options.has("-v")) {
            throw new UsageException("-v shows one call, and --times makes many");
        }
        Contract.Method method = method(options.words);
        Object[] arguments;
        try {
            arguments = arguments(method, options.words);
        } catch (UsageException e) {
            throw options.explained(e);
        }
        if (options.has("--times")) return repeat(method, arguments, times);
        Call call = make(method, arguments);
        if (options.has("--json")) {
            console.line(Json.of(call.members()));
        } else {
            console.line(shown(call.result()));
            call.fields().forEach((name, text) -> console.line(name + ": " + shown(text)));
        }
        showLog(call);
        return statusOf(call.hasFailed() ? call : null);
    }

    /** Refuses other options and more words. */
    void allow(int most, String... names) throws UsageException {
        options.allow(most, names);
        limit = options.limit();
    }

    private int repeat(Contract.Method method, Object[] arguments, int times) throws Failure {
        Repetition repetition = new Repetition();
        for (int i = 0; i < times; i++) repetition.add(make(method, arguments));
        if (options.has("--json")) {
            console.line(Json.of(repetition.members()));
        } else {
            repetition.results().forEach(console::line);
            console.note("    " + repetition.times());
        }
        return statusOf(repetition.failed);
    }

    /** Texts that would control a terminal are quoted there. */
    private String shown(Object value) {
        String shown = Values.show(value);
        boolean isPlain = shown.chars().noneMatch(Character::isISOControl);
        return !console.isTerminal() || isPlain ? shown : Words.quote(shown);
    }

    /** That which the first of the words names. */
    Contract.Method method(List<String> words) throws UsageException {
        if (words.isEmpty()) throw new UsageException("a METHOD is expected");
        return contract.find(words.get(0));
    }

    /** The arguments that the words after the method say. */
    Object[] arguments(Contract.Method method, List<String> words) throws UsageException {
        Object[] arguments = method.parse(words.subList(1, words.size()));
        if (method.name.equals("nativeWriteMiscToRecovery")) permitWriting();
        return arguments;
    }

    private void permitWriting() throws UsageException {
        if (options.has("--yes") || Library.isSimulated()) return;
        String effect = "nativeWriteMiscToRecovery writes to the misc partition, so that the next "
                + "boot is one into recovery.";
        if (!console.canAsk()) throw new UsageException(effect + " --yes permits it.");
        if (!console.ask(effect + " Write?")) throw new UsageException("nothing was written");
    }

    /** Makes a call; the first one loads the library. */
    Call make(Contract.Method method, Object[] arguments) throws Failure {
        boolean withLog = options.has("-v") || (options.has("--json") && !options.has("--times"));
        if (library == null) {
            library = new Library(console, limit, null);
            if (!withLog) library.log.close();
        }
        return library.call(method, arguments, withLog);
    }

    /** Shows with -v what the library logged. */
    void showLog(Call call) {
        if (!options.has("-v")) return;
        if (call.log() == null) {
            console.note("    (the log cannot be read: " + library.log.trouble() + ")");
        } else {
            call.log().forEach(line -> console.note("    " + line));
        }
        console.note(String.format("    %.3f ms", call.milliseconds()));
    }

    /** The exit status; tells why the call failed that is not null. */
    private int statusOf(Call failed) {
        if (failed == null) return Main.DONE;
        if (failed.isForNull()) {
            console.tell(failed.method().name + ": null was given for "
                    + String.join(", ", failed.nulls()) + "; for the word itself write '\\null'");
        } else {
            console.tell(failed.method().name + ": the " + failed.method().service
                    + " service is absent");
            tellOfAbsence();
        }
        return Main.ABSENT;
    }

    void tellOfAbsence() {
        library.tellOfAbsence();
    }
}
