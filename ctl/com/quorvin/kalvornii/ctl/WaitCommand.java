package com.quorvin.kalvornii.ctl;

/** "wait". */
final class WaitCommand {
    private static final long STEP_MILLISECONDS = 100;

    private final Console console;

    WaitCommand(Console console) {
        this.console = console;
    }

    int await(Options options) throws UsageException {
        options.allow(1, "--timeout");
        if (options.words.isEmpty()) throw new UsageException("a SERVICE is expected");
        Services.Service service = new Services().find(options.words.get(0));
        Limit limit = options.limit();
        long start = System.nanoTime();
        for (;;) {
            String backend = Managers.backend(service);
            if (backend != null) {
                console.line(backend);
                return Main.DONE;
            }
            long pause = limit.left(start, STEP_MILLISECONDS);
            if (pause == 0) break;
            pause(pause);
        }
        console.tell("the " + service.name + " service is absent after " + limit);
        return Main.ABSENT;
    }

    static void pause(long milliseconds) {
        try {
            Thread.sleep(milliseconds);
        } catch (InterruptedException e) {
            throw new IllegalStateException(e);
        }
    }
}
