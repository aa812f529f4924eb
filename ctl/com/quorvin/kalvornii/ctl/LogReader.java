package com.quorvin.kalvornii.ctl;

import android.os.Process;
import android.util.Log;
import java.io.Closeable;
import java.io.IOException;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.LinkedBlockingQueue;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.locks.LockSupport;

/**
 * This process's own log, read through logcat while it runs. Whether a line has arrived is told by
 * marks, lines of our own: all that was logged before a mark is read before it.
 */
final class LogReader implements Closeable {
    private static final String TAG = "kalvornctl";
    private static final long MARK_MILLISECONDS = 3000;
    /** Ctrl-C ends logcat too, and in this time this process, which then has nothing to tell. */
    private static final long END_MILLISECONDS = 500;
    private static final String END = new String("end");  // told from a line by its identity

    private final LinkedBlockingQueue<String> lines = new LinkedBlockingQueue<>();
    private java.lang.Process logcat;
    private int marks;
    private String trouble;

    /** Starts logcat; lines from now on are read. */
    static LogReader start() {
        LogReader reader = new LogReader();
        try {
            reader.logcat =
                    logcat("--pid=" + Process.myPid(), "-s", LogLine.LIBRARY + ":V", TAG + ":V");
        } catch (IOException e) {
            reader.trouble = e.getMessage();
            return reader;
        }
        Runtime.getRuntime().addShutdownHook(new Thread(reader::close));
        Thread thread = new Thread(reader::read, "logcat");
        thread.setDaemon(true);
        thread.start();
        reader.upToNow();  // an earlier process may have had our pid
        return reader;
    }

    /** What is in the log now under other processes' tags; empty when it cannot be read. */
    static List<LogLine> dump(String... tags) {
        List<LogLine> found = new ArrayList<>();
        List<String> filter = new ArrayList<>(List.of("-d", "-b", "all", "-s"));
        for (String tag : tags) filter.add(tag + ":V");
        try {
            Lines output = new Lines(logcat(filter.toArray(new String[0])).getInputStream());
            for (String line = output.next(); line != null; line = output.next()) {
                LogLine parsed = LogLine.parse(line);
                if (parsed != null) found.add(parsed);
            }
        } catch (IOException e) {
            // Nothing is known then.
        }
        return found;
    }

    private static java.lang.Process logcat(String... options) throws IOException {
        List<String> command = new ArrayList<>(List.of("logcat", "-v", "threadtime"));
        command.addAll(List.of(options));
        ProcessBuilder builder = new ProcessBuilder(command).redirectErrorStream(true);
        // What is there for our 32 bits would keep a logcat of 64 from starting.
        builder.environment().keySet().removeAll(List.of("LD_PRELOAD", "LD_LIBRARY_PATH"));
        return builder.start();
    }

    private void read() {
        try (Lines output = new Lines(logcat.getInputStream())) {
            for (String line = output.next(); line != null; line = output.next()) lines.add(line);
        } catch (IOException e) {
            // As at its end.
        }
        lines.add(END);
    }

    /** Why the log cannot be read; null while it can. */
    String trouble() {
        return trouble;
    }

    /** The lines that were logged until now and not taken yet. */
    List<LogLine> upToNow() {
        List<LogLine> taken = new ArrayList<>();
        if (trouble != null) return taken;
        String mark = "mark " + Process.myPid() + "." + System.nanoTime() + "." + marks++;
        Log.i(TAG, mark);
        long end = System.nanoTime() + TimeUnit.MILLISECONDS.toNanos(MARK_MILLISECONDS);
        String last = "nothing of it arrives";
        while (trouble == null) {
            String line = poll(TimeUnit.NANOSECONDS.toMillis(end - System.nanoTime()));
            if (line == null || line == END) {
                trouble = "logcat: " + last;
                close();
            } else {
                LogLine parsed = LogLine.parse(line);
                if (parsed == null) {
                    last = line;  // a separator, or what logcat has to say
                } else if (parsed.isOfLibrary()) {
                    taken.add(parsed);
                } else if (parsed.text.equals(mark)) {
                    return taken;
                }
            }
        }
        return taken;
    }

    /** The library's next line; null when none comes in that time. */
    LogLine next(long milliseconds) {
        long end = System.nanoTime() + TimeUnit.MILLISECONDS.toNanos(milliseconds);
        for (;;) {
            String line = poll(TimeUnit.NANOSECONDS.toMillis(end - System.nanoTime()));
            if (line == null) return null;
            if (line == END) {
                LockSupport.parkNanos(TimeUnit.MILLISECONDS.toNanos(END_MILLISECONDS));
                trouble = "logcat has ended";
                return null;
            }
            LogLine parsed = LogLine.parse(line);
            if (parsed != null && parsed.isOfLibrary()) return parsed;
        }
    }

    private String poll(long milliseconds) {
        try {
            return lines.poll(Math.max(milliseconds, 0), TimeUnit.MILLISECONDS);
        } catch (InterruptedException e) {
            throw new IllegalStateException(e);
        }
    }

    /** Ends logcat. */
    @Override
    public void close() {
        if (logcat != null) logcat.destroy();
    }
}
