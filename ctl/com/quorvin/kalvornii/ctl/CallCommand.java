package com.quorvin.kalvornii.ctl;

import java.util.Arrays;
import java.util.List;

/** "call", and what "run" has in common with it. */
final class CallCommand {
    private final Console console;
    private final Contract contract = Contract.read();

    CallCommand(Console console) {
        this.console = console;
    }

    int call(Options options) throws UsageException, LoadException {
        options.allow(Integer.MAX_VALUE, "-v", "--json", "--yes");
        Contract.Method method = method(options.words);
        Object[] arguments = arguments(method, options);
        Library library = new Library(console);
        boolean withLog = options.has("-v") || options.has("--json");
        if (!withLog) library.log.close();
        Call call = library.call(method, arguments, withLog);
        if (options.has("--json")) {
            console.out.println(Json.of(call.members()));
        } else {
            console.out.println(Values.show(call.result));
            call.fields.forEach(
                    (name, text) -> console.out.println(name + ": " + Values.show(text)));
        }
        if (options.has("-v")) showLog(call, library.log);
        if (!call.isAbsent()) return Main.DONE;
        tellOfAbsence(call, library);
        return Main.ABSENT;
    }

    Contract.Method method(List<String> words) throws UsageException {
        if (words.isEmpty()) throw new UsageException("a METHOD is expected");
        return contract.find(words.get(0));
    }

    /** The arguments after the method, which nothing keeps from being called then. */
    Object[] arguments(Contract.Method method, Options options) throws UsageException {
        List<String> words = options.words;
        return arguments(method, words.subList(1, words.size()), options);
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
            console.show("    (the log cannot be read: " + log.trouble() + ")");
        } else {
            call.log.forEach(line -> console.show("    " + line));
        }
        console.show(String.format("    %.3f ms", call.milliseconds));
    }

    void tellOfAbsence(Call call, Library library) {
        boolean isNull = Arrays.stream(call.arguments).anyMatch(CallCommand::hasNull);
        console.tell(call.method.name + ": "
                + (isNull ? "an argument is null, or the " + call.method.service
                                        + " service is absent; for "
                                        + "the word itself write '\\null'"
                          : "the " + call.method.service + " service is absent"));
        if (!isNull) library.tellOfAbsence();
    }

    private static boolean hasNull(Object argument) {
        return argument == null
                || (Values.isRecord(argument.getClass())
                        && Values.fields(argument.getClass())
                                   .stream()
                                   .anyMatch(field -> Values.valueOf(field, argument) == null));
    }
}
