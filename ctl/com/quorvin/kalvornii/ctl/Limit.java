package com.quorvin.kalvornii.ctl;

import java.util.concurrent.Callable;
import java.util.concurrent.ExecutionException;
import java.util.concurrent.FutureTask;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.TimeoutException;

/** How long the load, a call or a wait may take. */
final class Limit {
    static final Limit NONE = new Limit(0);

    private final double seconds;  // 0 for as long as it takes

    Limit(double seconds) {
        this.seconds = seconds;
    }

    /** The milliseconds that are left of it, but never more than the most; 0 for none. */
    long left(long startNanos, long most) {
        if (this == NONE) return most;
        double left = seconds * 1000 - (System.nanoTime() - startNanos) / 1e6;
        return Math.max(0, Math.min(most, (long) Math.ceil(left)));
    }

    /** As the messages tell it. */
    @Override
    public String toString() {
        return (seconds == Math.rint(seconds) ? String.valueOf((long) seconds)
                                              : String.valueOf(seconds))
                + " s";
    }

    /** Does it, on a thread that stays behind when the time is up. */
    <T> T run(Callable<T> work) throws ExecutionException, TimeoutException {
        FutureTask<T> task = new FutureTask<>(work);
        try {
            if (this == NONE) {
                task.run();
                return task.get();
            }
            Thread thread = new Thread(task, "call");
            thread.setDaemon(true);
            thread.start();
            return task.get((long) (seconds * 1000), TimeUnit.MILLISECONDS);
        } catch (InterruptedException e) {
            throw new IllegalStateException(e);
        }
    }
}
