package com.quorvin.kalvornii.ctl;

import java.io.IOException;

/** The command kalvornctl; help.txt tells what it takes. */
public final class Main {
    /** The exit statuses. */
    static final int DONE = 0;
    static final int ABSENT = 1;
    static final int USAGE = 2;
    static final int NOT_LOADED = 3;
    static final int DIFFERENT = 4;
    static final int UNANSWERED = 5;

    private Main() {}

    public static void main(String[] arguments) {
        System.exit(run(arguments, new Console()));  // also while the library waits for a service
    }

    /** The command on that console; returns its exit status. */
    static int run(String[] arguments, Console console) {
        int status;
        try {
            status = run(Options.parse(arguments), console);
        } catch (UsageException | IOException e) {
            console.tell(e instanceof IOException ? e.toString() : e.getMessage());
            status = USAGE;
        } catch (Failure e) {
            console.tell(e.getMessage());
            status = e.status;
        } catch (RuntimeException | LinkageError e) {
            e.printStackTrace();  // a fault of this command or its installation
            status = NOT_LOADED;
        }
        if (console.lost() == null) return status;
        console.tell("cannot write the result: " + console.lost());
        return NOT_LOADED;
    }

    private static int run(Options options, Console console)
            throws UsageException, Failure, IOException {
        String command = options.has("--version") ? "--version"
                : options.has("--help")           ? "--help"
                                                  : options.command;
        if (command == null) throw new UsageException("a command is expected; --help tells which");
        return switch (command) {
            case "--version" -> print(console, Help.version());
            case "--help" -> print(console, Help.on(options.command));
            case "help" -> print(console, Help.help(options));
            case "completion" -> print(console, Help.completion(options));
            case "list" -> ListCommand.list(options, console);
            case "status" -> StatusCommand.status(options, console);
            case "wait" -> WaitCommand.await(options, console);
            case "call" -> new CallCommand(options, console).call();
            case "run" -> new RunCommand(options, console).run();
            case "watch" -> new WatchCommand(options, console).watch();
            default -> throw Help.unknown(command);
        };
    }

    private static int print(Console console, String text) {
        console.raw(text);
        return DONE;
    }
}
