package com.quorvin.kalvornii.ctl;

import java.util.concurrent.TimeUnit;
import java.util.concurrent.locks.LockSupport;

/** "wait". */
final class WaitCommand {
    private static final long STEP_MILLISECONDS = 100;

    private WaitCommand() {}

    static int await(Options options, Console console) throws UsageException {
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
            LockSupport.parkNanos(TimeUnit.MILLISECONDS.toNanos(pause));
        }
        console.tell("the " + service.name + " service is absent after " + limit);
        return Main.ABSENT;
    }
}
