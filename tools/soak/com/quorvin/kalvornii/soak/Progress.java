package com.quorvin.kalvornii.soak;

import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Locale;
import java.util.concurrent.locks.LockSupport;

/** Shows how far a run is, on a thread of its own, and tells when it has to end early. */
final class Progress extends Thread {
    private static final int SILENCE_SECONDS = 120;
    private static final int TICKS_A_LINE = 25;
    private static final int BAR = 20;

    private final String device;
    private final Path stop;
    private final ProcessHandle parent = ProcessHandle.current().parent().orElseThrow();
    private final long all;
    private final long seconds = Long.getLong("soak.seconds");
    /** Of the terminal; 0 for none. */
    private final int columns = Integer.getInteger("soak.columns");
    private final long start = System.nanoTime();
    private volatile long calls;
    private volatile long deaths;
    private volatile double lastHeard;
    private volatile String early;
    private boolean ended;

    /** @param stop a file that ends the run when it is there */
    Progress(String device, Path stop, long all) {
        this.device = device;
        this.stop = stop;
        this.all = all;
        setDaemon(true);
        start();
    }

    /** That the run goes on. */
    void hear(long nowCalls, long nowDeaths) {
        calls = nowCalls;
        deaths = nowDeaths;
        lastHeard = elapsed();
    }

    /** Why the run has to end; null while it may go on. */
    String early() {
        return early;
    }

    double elapsed() {
        return (System.nanoTime() - start) / 1e9;
    }

    @Override
    public void run() {
        for (int ticks = 1; elapsed() - lastHeard < SILENCE_SECONDS; ticks++) {
            LockSupport.parkNanos(200_000_000);
            if (elapsed() > seconds) early = "time limit";
            if (Files.exists(stop) || !parent.isAlive()) early = "interrupted";
            if (columns > 0) show("\r" + line() + "\u001b[K");
            if (columns == 0 && ticks % TICKS_A_LINE == 0) show(line() + "\n");
        }
        System.err.println("nothing has moved for " + SILENCE_SECONDS + " seconds");
        Runtime.getRuntime().halt(1);
    }

    /** The last that is shown. */
    void end() {
        show(columns > 0 ? "\r\u001b[K" : line() + "\n");
        ended = true;
    }

    private synchronized void show(String text) {
        if (ended) return;
        System.out.print(text);
        System.out.flush();
    }

    private String line() {
        double left = Math.max(0, seconds - elapsed());
        if (calls > 0) left = Math.min(left, elapsed() * (all - calls) / calls);
        String line = String.format(Locale.ROOT, "%-5s %,d calls  %,d deaths  %.0f s left", device,
                calls, deaths, left);
        if (columns == 0) return line;
        String bar = "#".repeat((int) (BAR * calls / Math.max(1, all)));
        line = String.format("[%-" + BAR + "s] %s", bar, line);
        return line.substring(0, Math.min(line.length(), columns - 1));
    }
}
