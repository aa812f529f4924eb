package com.quorvin.kalvornii.ctl;

import java.io.IOException;
import java.util.concurrent.TimeoutException;

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
        } catch (LoadException e) {
            console.tell(e.getMessage());
            status = NOT_LOADED;
        } catch (TimeoutException e) {
            console.tell(e.getMessage());
            status = UNANSWERED;
        } catch (RuntimeException | LinkageError e) {
            e.printStackTrace();  // a fault of this command or its installation
            status = NOT_LOADED;
        }
        if (console.lost() == null) return status;
        console.tell("cannot write the result: " + console.lost());
        return NOT_LOADED;
    }

    private static int run(Options options, Console console)
            throws UsageException, LoadException, IOException, TimeoutException {
        HelpCommand help = new HelpCommand(console);
        if (options.has("--version")) return help.version();
        if (options.command == null && !options.has("--help")) {
            throw new UsageException("a command is expected; --help tells which");
        }
        if (options.has("--help")) return help.on(options.command);
        switch (options.command) {
            case "list":
                return new ListCommand(console).list(options);
            case "help":
                return help.help(options);
            case "status":
                return new StatusCommand(console).status(options);
            case "wait":
                return new WaitCommand(console).await(options);
            case "call":
                return new CallCommand(console).call(options);
            case "run":
                return new RunCommand(console).run(options);
            case "watch":
                return new WatchCommand(console).watch(options);
            case "completion":
                return new CompletionCommand(console).completion(options);
            default:
                throw Help.unknown(options.command);
        }
    }
}
