package com.quorvin.kalvornii.soak;

import java.util.Locale;

/** How far the soak is: a bar on a terminal, elsewhere a line every few seconds. */
final class Progress {
    private static final long LINE_NS = 5_000_000_000L;

    private final long calls;
    private final long limitSeconds;
    private final int columns;
    private final long start = System.nanoTime();
    private long lastLine = start;

    /** @param columns of the terminal; 0 for none */
    Progress(long calls, long limitSeconds, int columns) {
        this.calls = calls;
        this.limitSeconds = limitSeconds;
        this.columns = columns;
    }

    double seconds() {
        return (System.nanoTime() - start) / 1e9;
    }

    synchronized void show(String device, long made, long deaths, int wrong, long resident) {
        String state = String.format(Locale.ROOT,
                "%-5s %,d calls  %,d deaths  %d wrong  %.1f MiB  %s left", device, made, deaths,
                wrong, resident / 1048576.0, left(made));
        if (columns > 0) {
            int width = Math.max(0, Math.min(30, columns - state.length() - 4));
            int full = (int) Math.min(width, calls == 0 ? 0 : width * made / calls);
            String bar = width < 5 ? "" : "[" + "#".repeat(full) + " ".repeat(width - full) + "] ";
            String line = bar + state;
            System.out.print("\r" + line.substring(0, Math.min(line.length(), columns - 1))
                    + "\u001b[K");
            System.out.flush();
        } else if (System.nanoTime() - lastLine >= LINE_NS) {
            lastLine = System.nanoTime();
            System.out.println(state);
        }
    }

    void end() {
        if (columns > 0) System.out.print("\r\u001b[K");
        System.out.flush();
    }

    private String left(long made) {
        double limit = Math.max(0, limitSeconds - seconds());
        double left = made == 0 ? limit : Math.min(limit, seconds() * (calls - made) / made);
        long whole = Math.max(0, Math.round(left));
        return whole >= 60 ? whole / 60 + " min " + whole % 60 + " s" : whole + " s";
    }
}
