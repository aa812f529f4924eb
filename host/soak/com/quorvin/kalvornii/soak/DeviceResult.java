package com.quorvin.kalvornii.soak;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** What was found on one device, as its process tells it line by line. */
final class DeviceResult {
    // The columns of a sample.
    static final int CALLS = 0;
    static final int DEATHS = 1;
    static final int MILLISECONDS = 2;
    static final int RESIDENT = 3;
    static final int IN_USE = 4;
    static final int LIVE_SERVICES = 5;
    static final int DEATH_LINKS = 6;
    static final int LISTENERS = 7;
    static final int NOTIFICATIONS = 8;
    static final int THREADS = 9;
    static final int FILES = 10;
    static final int JAVA_HEAP = 11;

    /** How long the library took to be whole again after the nth death, and what died. */
    record Restart(String backend, int number, long listeners, String what, long microseconds) {
        double milliseconds() {
            return microseconds / 1000.0;
        }
    }

    /** The native memory that a call with texts of sixteen characters leaves behind. */
    record Kept(String method, String way, boolean onPurpose, double bytes) {
        /** A kept text takes 24 bytes at least. */
        boolean isExpected() {
            return onPurpose == bytes >= 8;
        }
    }

    /** By how many bytes so many calls or deaths made the native heap grow. */
    record Grown(long count, double typical, long total) {}

    record Wrong(String method, String verdict, String deaths, String happened) {}

    final String device;
    final List<long[]> samples = new ArrayList<>();
    final List<Restart> restarts = new ArrayList<>();
    final List<Kept> kept = new ArrayList<>();
    final List<Wrong> wrong = new ArrayList<>();
    final Map<String, Grown> growth = new LinkedHashMap<>();
    final Map<String, Map<Caller.Way, Histogram>> durations = new LinkedHashMap<>();
    /** Deaths of all services at once, then listeners and notifications after them; or null. */
    long[] afterDeathsOfAll;
    long calls;
    long deaths;
    long resident;
    long measured;
    /** "done", or "stopped" early; null when the process ended otherwise. */
    String end;
    /** Why the process could not go on; null as a rule. */
    String failure;
    List<String> log = List.of();

    DeviceResult(String device) {
        this.device = device;
    }

    void take(String line) {
        String[] words = line.split("\t", -1);
        switch (words[0]) {
            case "sample" -> samples.add(numbers(words));
            case "progress" -> {
                long[] now = numbers(words);
                calls = now[0];
                deaths = now[1];
                resident = now[2];
            }
            case "restart" -> restarts.add(new Restart(words[1], Integer.parseInt(words[2]),
                    Long.parseLong(words[3]), words[4], Long.parseLong(words[5])));
            case "all" -> afterDeathsOfAll = numbers(words);
            case "kept" -> kept.add(new Kept(words[1], words[2], Boolean.parseBoolean(words[3]),
                    Double.parseDouble(words[4])));
            case "measured" -> measured = Long.parseLong(words[1]);
            case "latency" -> durations.computeIfAbsent(words[1], method -> new LinkedHashMap<>())
                    .computeIfAbsent(Caller.Way.valueOf(words[2]), way -> new Histogram())
                    .add(Histogram.parse(words[3]));
            case "growth" -> growth.put(words[1], new Grown(Long.parseLong(words[2]),
                    Double.parseDouble(words[3]), Long.parseLong(words[4])));
            case "wrong" -> wrong.add(new Wrong(words[1], words[2], words[3], words[4]));
            case "failed" -> failure = words[1];
            case "end" -> end = words[1];
            default -> throw new IllegalStateException("what is this? " + line);
        }
    }

    private static long[] numbers(String[] words) {
        return Arrays.stream(words).skip(1).mapToLong(Long::parseLong).toArray();
    }

    boolean isRight() {
        return wrong.isEmpty() && failure == null;
    }

    /** The samples of the second half of the calls. */
    List<long[]> lastHalf() {
        return samples.stream().filter(sample -> 2 * sample[CALLS] >= calls).toList();
    }

    /**
     * How many more service objects or death links there are for good than in the beginning. What a
     * call still held when its service died goes only with the next death.
     */
    long referencesLeft() {
        long left = 0;
        for (int column : new int[] {LIVE_SERVICES, DEATH_LINKS}) {
            long least = lastHalf().stream().mapToLong(sample -> sample[column]).min().orElse(0);
            if (!samples.isEmpty()) left = Math.max(left, least - samples.get(0)[column]);
        }
        return left;
    }

    /** By which share the resident size of the last half moved. */
    double residentMoved() {
        List<long[]> half = lastHalf();
        long most = half.stream().mapToLong(sample -> sample[RESIDENT]).max().orElse(0);
        long least = half.stream().mapToLong(sample -> sample[RESIDENT]).min().orElse(0);
        return most == 0 ? 0 : (most - least) / (double) most;
    }
}
