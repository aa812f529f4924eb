package com.quorvin.kalvornii.soak;

import java.util.List;

/** Callers at work, each on a thread of its own; a foreman's one thread gives the orders. */
final class Crew {
    private final List<Caller> callers;
    private long order;
    private int busy;
    private long share;
    private long made;
    private volatile boolean enough;

    Crew(List<Caller> callers) {
        this.callers = callers;
        for (Caller caller : callers) {
            Thread thread = new Thread(() -> serve(caller), "caller");
            thread.setDaemon(true);
            thread.start();
        }
    }

    /** So many calls, among all; returns when they are made. */
    void work(long calls) {
        start(calls);
        await();
    }

    /** Begins with at most so many calls. */
    synchronized void start(long calls) {
        enough = false;
        share = (calls + callers.size() - 1) / callers.size();
        busy = callers.size();
        order++;
        notifyAll();
    }

    /** Lets all finish the calls that they make now. */
    void stop() {
        enough = true;
        await();
    }

    private synchronized void await() {
        while (busy > 0) waitHere();
    }

    /** How many calls were made so far; while nobody works. */
    synchronized long made() {
        return made;
    }

    private void serve(Caller caller) {
        for (long done = 0;; done++) {
            long calls = next(done);
            long count = 0;
            while (count < calls && !enough) {
                count++;
                if (!caller.callAny()) enough = true;
            }
            finished(count);
        }
    }

    private synchronized long next(long done) {
        while (order == done) waitHere();
        return share;
    }

    private synchronized void finished(long count) {
        made += count;
        busy--;
        notifyAll();
    }

    private void waitHere() {
        try {
            wait();
        } catch (InterruptedException e) {
            throw new IllegalStateException(e);
        }
    }
}
