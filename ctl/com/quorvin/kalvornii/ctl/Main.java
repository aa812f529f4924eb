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
        } catch (RuntimeException | LinkageError e) {
            e.printStackTrace();  // a fault of this command or its installation
            status = NOT_LOADED;
        }
        if (console.lost() != null) {
            console.tell("cannot write the result: " + console.lost());
            status = NOT_LOADED;
        }
        System.exit(status);  // also while threads of the library wait for a service
    }

    private static int run(Options options, Console console)
            throws UsageException, LoadException, IOException {
        if (options.has("--help")) return help(console);
        if (options.command == null)
            throw new UsageException("a command is expected; --help tells which");
        switch (options.command) {
            case "list":
                return new ListCommand(console).list(options);
            case "help":
                return options.words.isEmpty() ? help(console)
                                               : new ListCommand(console).help(options);
            case "status":
                return new StatusCommand(console).status(options);
            case "call":
                return new CallCommand(console).call(options);
            case "run":
                return new RunCommand(console).run(options);
            case "watch":
                return new StatusCommand(console).watch(options);
            default:
                throw new UsageException(
                        "no command \"" + options.command + "\"; --help tells which");
        }
    }

    private static int help(Console console) {
        console.out.print(Resource.read("/com/quorvin/kalvornii/ctl/help.txt"));
        return DONE;
    }
}
