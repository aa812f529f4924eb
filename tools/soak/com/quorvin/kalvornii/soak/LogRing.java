package com.quorvin.kalvornii.soak;

import static java.nio.charset.StandardCharsets.UTF_8;

import java.io.IOException;
import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.nio.file.Files;
import java.nio.file.Path;
import java.time.Instant;
import java.time.ZoneId;
import java.time.format.DateTimeFormatter;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;

/** The last lines that a process logged, from the file in which soak_jni.cpp keeps them. */
final class LogRing {
    private static final int LINE = 512;
    private static final int TAG = 28;
    private static final int TEXT = 48;
    private static final String LETTERS = "??VDIWEF";
    private static final DateTimeFormatter TIME =
            DateTimeFormatter.ofPattern("MM-dd HH:mm:ss.SSS").withZone(ZoneId.systemDefault());

    private LogRing() {}

    /** The lines, oldest first, as logcat shows them; none when there is no such file. */
    static List<String> read(Path file) {
        Map<Long, String> lines = new TreeMap<>();
        try {
            ByteBuffer ring = ByteBuffer.wrap(Files.readAllBytes(file));
            ring.order(ByteOrder.nativeOrder());
            for (int at = 0; at + LINE <= ring.capacity(); at += LINE) {
                long number = ring.getLong(at);
                if (number != 0) lines.put(number, line(ring, at));
            }
        } catch (IOException e) {
            return List.of();
        }
        return new ArrayList<>(lines.values());
    }

    private static String line(ByteBuffer ring, int at) {
        Instant time = Instant.ofEpochSecond(ring.getLong(at + 8), ring.getInt(at + 16));
        int priority = ring.getInt(at + 24);
        char letter = priority >= 0 && priority < LETTERS.length() ? LETTERS.charAt(priority) : '?';
        return String.format("%s %5d %c %-8s: %s", TIME.format(time), ring.getInt(at + 20), letter,
                text(ring, at + TAG, at + TEXT), text(ring, at + TEXT, at + LINE).strip());
    }

    private static String text(ByteBuffer ring, int from, int to) {
        int end = from;
        while (end < to && ring.get(end) != 0) end++;
        return new String(ring.array(), from, end - from, UTF_8);
    }
}
