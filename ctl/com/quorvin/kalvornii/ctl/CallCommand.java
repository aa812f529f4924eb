package com.quorvin.kalvornii.ctl;

import java.util.List;
import java.util.concurrent.TimeoutException;

/** "call", and what "run" has in common with it. */
final class CallCommand {
    private final Console console;
    private final Contract contract = Contract.read();

    CallCommand(Console console) {
        this.console = console;
    }

    int call(Options options) throws UsageException, LoadException, TimeoutException {
        options.allow(Integer.MAX_VALUE, "-v", "--json", "--yes", "--timeout", "--times");
        Limit limit = options.limit();
        int times = options.count("--times");
        if (options.has("--times") && options.has("-v")) {
            throw new UsageException("-v shows one call, and --times makes many");
        }
        Contract.Method method = method(options.words);
        Object[] arguments = arguments(method, options);
        Library library = new Library(console, limit);
        boolean withLog = options.has("-v") || (options.has("--json") && !options.has("--times"));
        if (!withLog) library.log.close();
        if (options.has("--times")) return repeat(library, method, arguments, times, options);
        Call call = library.call(method, arguments, withLog);
        if (options.has("--json")) {
            console.line(Json.of(call.members()));
        } else {
            console.line(shown(call.result));
            call.fields.forEach((name, text) -> console.line(name + ": " + shown(text)));
        }
        if (options.has("-v")) showLog(call, library.log);
        if (!call.hasFailed()) return Main.DONE;
        tellOfFailure(call, library);
        return Main.ABSENT;
    }

    private int repeat(Library library, Contract.Method method, Object[] arguments, int times,
            Options options) throws LoadException, TimeoutException {
        Repetition repetition = new Repetition();
        for (int i = 0; i < times; i++) repetition.add(library.call(method, arguments, false));
        if (options.has("--json")) {
            console.line(Json.of(repetition.members()));
        } else {
            repetition.results().forEach(console::line);
            console.note("    " + repetition.times());
        }
        if (repetition.failed == null) return Main.DONE;
        tellOfFailure(repetition.failed, library);
        return Main.ABSENT;
    }

    /** Texts that would control a terminal are quoted there. */
    private String shown(Object value) {
        String shown = Values.show(value);
        boolean isPlain = shown.chars().noneMatch(Character::isISOControl);
        return !console.isTerminal() || isPlain ? shown : Words.quote(shown);
    }

    Contract.Method method(List<String> words) throws UsageException {
        if (words.isEmpty()) throw new UsageException("a METHOD is expected");
        return contract.find(words.get(0));
    }

    /** The arguments after the method, which nothing keeps from being called then. */
    Object[] arguments(Contract.Method method, Options options) throws UsageException {
        List<String> words = options.words;
        try {
            return arguments(method, words.subList(1, words.size()), options);
        } catch (UsageException e) {
            throw options.explained(e);
        }
    }

    Object[] arguments(Contract.Method method, List<String> words, Options options)
            throws UsageException {
        Object[] arguments = Values.parse(method, words);
        if (method.name.equals("nativeWriteMiscToRecovery")) permitWriting(options);
        return arguments;
    }

    private void permitWriting(Options options) throws UsageException {
        if (options.has("--yes") || Library.isSimulated()) return;
        String effect = "nativeWriteMiscToRecovery writes to the misc partition, so that the next "
                + "boot is one into recovery.";
        if (!console.canAsk()) throw new UsageException(effect + " --yes permits it.");
        if (!console.ask(effect + " Write?")) throw new UsageException("nothing was written");
    }

    void showLog(Call call, LogReader log) {
        if (call.log == null) {
            console.note("    (the log cannot be read: " + log.trouble() + ")");
        } else {
            call.log.forEach(line -> console.note("    " + line));
        }
        console.note(String.format("    %.3f ms", call.milliseconds));
    }

    /** Whether a failed call was for want of an argument, the service being there. */
    static boolean isForNull(Call call) {
        return !call.nulls().isEmpty()
                && Managers.backend(new Services().named(call.method.service)) != null;
    }

    private void tellOfFailure(Call call, Library library) {
        if (isForNull(call)) {
            console.tell(call.method.name + ": null was given for "
                    + String.join(", ", call.nulls()) + "; for the word itself write '\\null'");
        } else {
            console.tell(call.method.name + ": the " + call.method.service + " service is absent");
            library.tellOfAbsence();
        }
    }
}
