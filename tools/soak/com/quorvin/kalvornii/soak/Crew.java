package com.quorvin.kalvornii.soak;

import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.ExecutionException;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;

/** Callers at work, each on a thread of its own; a foreman's one thread gives the orders. */
final class Crew {
    private final List<Caller> callers;
    private final ExecutorService threads;
    private final List<Future<Long>> shifts = new ArrayList<>();
    private long made;
    private volatile boolean enough;

    Crew(List<Caller> callers) {
        this.callers = callers;
        threads = Executors.newFixedThreadPool(callers.size(), work -> {
            Thread thread = new Thread(work, "caller");
            thread.setDaemon(true);
            return thread;
        });
    }

    /** So many calls, among all; returns when they are made. */
    void work(long calls) {
        start(calls);
        await();
    }

    /** Begins with at most so many calls. */
    void start(long calls) {
        enough = false;
        for (int i = 0; i < callers.size(); i++) {
            Caller caller = callers.get(i);
            long share = (calls + i) / callers.size();
            shifts.add(threads.submit(() -> call(caller, share)));
        }
    }

    /** Lets all finish the calls that they make now. */
    void stop() {
        enough = true;
        await();
    }

    /** How many calls were made so far; while nobody works. */
    long made() {
        return made;
    }

    private long call(Caller caller, long calls) {
        long count = 0;
        while (count < calls && !enough) {
            count++;
            if (!caller.callAny()) enough = true;
        }
        return count;
    }

    private void await() {
        try {
            for (Future<Long> shift : shifts) made += shift.get();
        } catch (InterruptedException | ExecutionException e) {
            throw new IllegalStateException(e);
        }
        shifts.clear();
    }
}
