package com.quorvin.kalvornii.ctl;

import java.io.IOException;

/** The command kalvornctl; see {@link #HELP}. */
public final class Main {
    /** The exit statuses. */
    static final int DONE = 0;
    static final int ABSENT = 1;
    static final int USAGE = 2;
    static final int NOT_LOADED = 3;
    static final int DIFFERENT = 4;

    private static final String HELP = String.join("\n",
            "Usage: kalvornctl COMMAND",
            "  list [WORD]             the methods, those with WORD in name, service or text",
            "  help METHOD             all that there is to know of one",
            "  status                  the services: backend, instance, what the load said",
            "  call METHOD [ARG...]    one call: its result, and the static field it writes",
            "  run [FILE]              one call a line, from a file or standard input",
            "  watch                   deaths and reconnections, until interrupted",
            "",
            "Options, before METHOD, FILE or WORD:",
            "  -v            call, run: besides, on standard error, the log and the time",
            "  --json        call, run: an object a line instead",
            "  --yes         call, run: do write the request for recovery to the misc partition",
            "  --keep-going  run: go on after a line that cannot be called",
            "  --device D    on the host: aidl, hidl, mixed (default) or bare",
            "  --events FILE on the host: what happens to that device",
            "",
            "METHOD  in any case, with or without \"native\"; a part that no other has is enough",
            "ARG     a number in decimal or 0x; a text as it is; bytes as hexadecimal digits;",
            "        a record as field=value words, what is missing being 0 or \"\";",
            "        null for null, and \\null for that word (quote it from the shell)",
            "A result is shown in the same way. A line of \"run\" is METHOD [ARG...] [= RESULT],",
            "quoted as in a shell, where nothing is expanded and # begins a comment. Its output",
            "is such lines again. A RESULT other than the one named is shown and counted.",
            "",
            "Exit status: 0 the call was made; 1 its service is absent, or an argument that must",
            "not be null is; 2 nothing was called, for what was asked cannot be; 3 the library did",
            "not load, or status and watch cannot read the log; 4 a result differs. Of a run: 2",
            "before 4 before 1, and no 1 for a failure value that its line names.");

    private Main() {}

    public static void main(String[] arguments) {
        Console console = new Console();
        int status;
        try {
            status = run(Options.parse(arguments), console);
        } catch (UsageException e) {
            console.tell(e.getMessage());
            status = USAGE;
        } catch (LoadException e) {
            console.tell(e.getMessage());
            status = NOT_LOADED;
        } catch (IOException e) {
            console.tell(e.toString());
            status = USAGE;
        }
        System.exit(status);  // also while threads of the library wait for a service
    }

    private static int run(Options options, Console console)
            throws UsageException, LoadException, IOException {
        if (options.has("--help")) {
            console.out.println(HELP);
            return DONE;
        }
        if (options.command == null) throw new UsageException("no command\n" + HELP);
        switch (options.command) {
            case "list": return new ListCommand(console).list(options);
            case "help": return help(options, console);
            case "status": return new StatusCommand(console).status(options);
            case "call": return new CallCommand(console).call(options);
            case "run": return new RunCommand(console).run(options);
            case "watch": return new StatusCommand(console).watch(options);
            default: throw new UsageException("no command \"" + options.command + "\"\n" + HELP);
        }
    }

    private static int help(Options options, Console console) throws UsageException {
        if (!options.words.isEmpty()) return new ListCommand(console).help(options);
        console.out.println(HELP);
        return DONE;
    }
}
