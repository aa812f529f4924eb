package com.quorvin.kalvornii.soak;

import java.util.List;

/** Callers at work, each on a thread of its own; a foreman's one thread gives the orders. */
final class Crew {
    private final List<Caller> callers;
    private long order;
    private int busy;
    private long wanted;
    private long made;
    private volatile boolean enough;

    Crew(List<Caller> callers) {
        this.callers = callers;
        for (int i = 0; i < callers.size(); i++) {
            int index = i;
            Thread thread = new Thread(() -> serve(index), "caller");
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
        wanted = calls;
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

    private void serve(int index) {
        Caller caller = callers.get(index);
        for (long done = 0;; done++) {
            long calls = next(done, index);
            long count = 0;
            while (count < calls && !enough) {
                count++;
                if (!caller.callAny()) enough = true;
            }
            finished(count);
        }
    }

    /** The part of an order that is one caller's. */
    private synchronized long next(long done, int index) {
        while (order == done) waitHere();
        return (wanted + index) / callers.size();
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
