package com.quorvin.kalvornii.soak;

import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.ExecutionException;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;

/** Callers, each on a thread of its own; one other thread starts and stops them. */
final class Pool {
    private final List<Caller> callers;
    private final ExecutorService threads = Executors.newCachedThreadPool();
    private final List<Future<Long>> running = new ArrayList<>();
    /** How many calls were made; while nobody calls. */
    long made;

    Pool(List<Caller> callers) {
        this.callers = callers;
    }

    /** Makes so many calls, shared among all callers. */
    void call(long calls) {
        start(calls);
        await();
    }

    /** Begins with at most so many calls. */
    void start(long calls) {
        for (int i = 0; i < callers.size(); i++) {
            Caller caller = callers.get(i);
            long share = (calls + i) / callers.size();
            caller.mayCall = true;
            running.add(threads.submit(() -> caller.callAny(share)));
        }
    }

    /** Lets all finish the calls that they make now. */
    void stop() {
        for (Caller caller : callers) caller.mayCall = false;
        await();
    }

    private void await() {
        try {
            for (Future<Long> calls : running) made += calls.get();
        } catch (InterruptedException | ExecutionException e) {
            throw new IllegalStateException(e);
        }
        running.clear();
    }
}
