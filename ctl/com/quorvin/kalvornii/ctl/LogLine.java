package com.quorvin.kalvornii.ctl;

import java.util.regex.Matcher;
import java.util.regex.Pattern;

/** A line of the log in logcat's "threadtime" format. */
final class LogLine {
    static final String LIBRARY = "KalvornNative";

    private static final Pattern FORMAT = Pattern.compile(
            "\\S+ +(\\S+) +(\\d+) +(\\d+) ([VDIWEFA]) (.*?) *: (.*)", Pattern.DOTALL);

    /** The time of day, with milliseconds. */
    final String time;
    final int pid;
    final int tid;
    final char priority;
    final String tag;
    final String text;

    private LogLine(Matcher line) {
        time = line.group(1);
        pid = Integer.parseInt(line.group(2));
        tid = Integer.parseInt(line.group(3));
        priority = line.group(4).charAt(0);
        tag = line.group(5);
        text = line.group(6);
    }

    /** Null for what is no line of the log, as logcat's separators. */
    static LogLine parse(String line) {
        Matcher matcher = FORMAT.matcher(line);
        return matcher.matches() ? new LogLine(matcher) : null;
    }

    boolean isOfLibrary() {
        return tag.equals(LIBRARY);
    }

    @Override
    public String toString() {
        return priority + " " + text;
    }
}
