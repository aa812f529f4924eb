package com.quorvin.kalvornii.soak;

import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.AIDL;
import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.HIDL;

import com.quorvin.kalvornii.simulated.SimulatedDevice;
import com.quorvin.kalvornii.simulated.SimulatedDevice.Backend;
import com.quorvin.kalvornii.soak.Situation.Way;
import java.io.FileDescriptor;
import java.io.FileOutputStream;
import java.io.IOException;
import java.io.ObjectOutputStream;
import java.io.UncheckedIOException;
import java.util.ArrayList;
import java.util.List;
import java.util.Random;
import java.util.concurrent.locks.LockSupport;

/**
 * The part of a soak on one device, in a process of its own. What it finds goes to standard output,
 * as objects; it ends early when standard input ends, and at the first wrong answer, with status 1.
 */
final class DeviceRun {
    private static final int SAMPLES = 200;
    private static final int CALLERS = 2;
    /** In calls, so that a stretch is over in an instant. */
    private static final int LONGEST = 10_000;
    private static final int MEASURED = 100;
    private static final int MEASUREMENTS = 7;
    private static final long STATE_NS = 200_000_000;
    /** As often as the death of all services at once was played on a real platform. */
    private static final int DEATHS_OF_ALL = 40;

    private final long calls;
    private final int deaths;
    private final String plant;
    private final Random random;
    private final Situation situation = new Situation();
    private final List<Call> table = Calls.all();
    private final List<Caller> callers = new ArrayList<>();
    private final Crew crew;
    private final ObjectOutputStream findings;
    private long lastState;
    private int died;
    private int deathsOfAll;
    private String happened = "no death yet";
    private volatile boolean stopped;

    // Of the second half.
    private final Growth ofCalls = new Growth();
    private final Growth ofAidlDeaths = new Growth();
    private final Growth ofHidlDeaths = new Growth();

    private DeviceRun(long calls, int deaths, long seed, String plant) throws IOException {
        this.calls = calls;
        this.plant = plant;
        random = new Random(seed);
        this.deaths = situation.has(AIDL) || situation.has(HIDL) ? deaths : 0;
        deathsOfAll = Math.min(DEATHS_OF_ALL, deaths / 4);
        for (int i = 0; i < CALLERS; i++) callers.add(new Caller(i, seed, situation, table));
        crew = new Crew(callers);
        findings = new ObjectOutputStream(new FileOutputStream(FileDescriptor.out));
    }

    /** Arguments: calls, deaths, seed, the log's file, the service's method to plant or "". */
    public static void main(String[] arguments) throws IOException {
        if (!Native.keepLog(arguments[3])) {
            throw new IllegalStateException("cannot write " + arguments[3]);
        }
        SimulatedDevice.get().recordCalls(false);
        DeviceRun run = new DeviceRun(Long.parseLong(arguments[0]), Integer.parseInt(arguments[1]),
                Long.parseLong(arguments[2]), arguments[4]);
        System.exit(run.run() ? 0 : 1);
    }

    private boolean run() {
        Thread listener = new Thread(this::awaitEndOfInput, "input");
        listener.setDaemon(true);
        listener.start();
        try {
            SimulatedDevice.get().settle();
            playCallsAndDeaths();
            if (!isOver()) measureEachCall();
        } catch (RuntimeException e) {
            Native.freezeLog();
            tell(new Finding.End(e.toString(), true));
            return false;
        }
        boolean right = tellWrong();
        tellDurations();
        tell(ofCalls.grown("calls"));
        tell(ofAidlDeaths.grown("AIDL deaths"));
        tell(ofHidlDeaths.grown("HIDL deaths"));
        tellState();
        tell(new Finding.End(stopped ? "stopped" : "done", false));
        return right;
    }

    private void awaitEndOfInput() {
        try {
            while (System.in.read() >= 0) continue;
        } catch (IOException e) {
            // as its end
        }
        stopped = true;
    }

    private boolean isOver() {
        return stopped || callers.stream().anyMatch(caller -> caller.wrong() != null);
    }

    /** The calls come in stretches with every answer as in health, with deaths in between. */
    private void playCallsAndDeaths() {
        long stretches = Math.max(calls / LONGEST, Math.max(deaths, SAMPLES));
        if (deathsOfAll > 0) Native.groupProcesses("one");
        tell(look());
        for (long i = 0; i < stretches && !isOver(); i++) {
            long left = Math.max(0, calls * (i + 1) / stretches - crew.made());
            boolean dies = deaths * (i + 1) / stretches > deaths * i / stretches;
            boolean secondHalf = i >= stretches / 2;
            if (!plant.isEmpty() && i == stretches / 2) {
                SimulatedDevice.get().answer(plant, 4711, "planted");
            }
            long before = Native.bytesInUse();
            long callsBefore = crew.made();
            crew.work(dies ? left - left / 2 : left);
            long between = Native.bytesInUse();
            if (secondHalf) ofCalls.add(crew.made() - callsBefore, between - before);
            if (dies && !isOver()) {
                Growth ofDeaths = die(left / 2) ? ofHidlDeaths : ofAidlDeaths;
                if (secondHalf) ofDeaths.add(1, Native.bytesInUse() - between);
            }
            if (SAMPLES * (i + 1) / stretches > SAMPLES * i / stretches) tell(look());
            tellStateNowAndThen();
        }
        // What the last death left over.
        if (!isOver()) crew.work(Math.max(0, calls - crew.made()));
    }

    /** Somebody dies and comes back; true when somebody of HIDL did. */
    private boolean die(long spareCalls) {
        Death death = chooseDeath();
        boolean hidlDies = death.what.equals("all") ? situation.has(HIDL) : death.backend == HIDL;
        if (!hidlDies && random.nextBoolean()) {
            dieUnderCalls(death, spareCalls);
        } else {
            dieBetweenCalls(death, spareCalls, hidlDies);
        }
        died++;
        if (isOver()) return hidlDies;
        happened = "after the death of " + death;
        situation.allHealthy();
        if (death.what.equals("all") && --deathsOfAll == 0) {
            Finding.Sample now = look();
            tell(new Finding.AfterDeathsOfAll(died, now.listeners(), now.notifications()));
            Native.groupProcesses("device");
        }
        return hidlDies;
    }

    private Death chooseDeath() {
        List<String> mortal = new ArrayList<>(situation.services);
        mortal.removeIf(service -> SimulatedDevice.get().runs(service) == null);
        String service = mortal.get(random.nextInt(mortal.size()));
        String what = deathsOfAll > 0 ? "all" : random.nextBoolean() ? "process" : "one";
        return new Death(service, SimulatedDevice.get().runs(service), what);
    }

    /** Only over AIDL: a call on a dead HIDL service ends the process, as on a device. */
    private void dieUnderCalls(Death death, long spareCalls) {
        happened = "during the death of " + death;
        situation.aidlInTurmoil();
        crew.start(spareCalls);
        pause();
        death.kill();
        pause();
        death.restart();
        SimulatedDevice.get().settle();
        crew.stop();
    }

    private void dieBetweenCalls(Death death, long spareCalls, boolean hidlDies) {
        death.kill();
        happened = "away after the death of " + death;
        situation.away();
        crew.work(spareCalls / 2);
        if (isOver()) return;
        happened = "on the return from the death of " + death;
        situation.coming();
        boolean underCalls = !death.what.equals("all") && random.nextBoolean();
        if (underCalls) crew.start(spareCalls - spareCalls / 2);
        long listeners = look().listeners();
        long begin = System.nanoTime();
        death.restart();
        SimulatedDevice.get().settle();
        long end = System.nanoTime();
        if (underCalls) {
            crew.stop();
        } else if (hidlDies) {
            tell(new Finding.Restart(listeners, death.what, (end - begin) / 1000));
        }
    }

    /** Of "one" service, of a "process" with several, or of "all", which are in one process. */
    private record Death(String service, Backend backend, String what) {
        @Override
        public String toString() {
            return (what.equals("one") ? "" : "the process of ") + service + " over " + backend;
        }

        void kill() {
            if (what.equals("one")) {
                SimulatedDevice.get().kill(backend, service);
            } else {
                SimulatedDevice.get().killProcess(service);
            }
        }

        void restart() {
            if (what.equals("one")) {
                SimulatedDevice.get().restart(backend, service);
            } else {
                SimulatedDevice.get().restartProcess(service);
            }
        }
    }

    private void pause() {
        if (random.nextBoolean()) LockSupport.parkNanos(random.nextInt(300_000));
    }

    /** What each call leaves behind; told at the end, since to tell makes the compiler busy. */
    private void measureEachCall() {
        List<Finding> kept = new ArrayList<>();
        for (int i = 0; i < table.size() && !isOver(); i++) {
            Growth growth = new Growth();
            for (int n = 0; n < MEASUREMENTS && !isOver(); n++) {
                long before = Native.bytesInUse();
                callers.get(0).callUniformly(i, MEASURED);
                growth.add(MEASURED, Native.bytesInUse() - before);
            }
            Call call = table.get(i);
            int service = situation.indexOf(call);
            Way way = situation.way(service, situation.may(service));
            Call.Keeps keeping =
                    way == Way.ABSENT ? Call.Keeps.TEXTS_WHEN_ABSENT : Call.Keeps.TEXTS;
            kept.add(new Finding.Kept(call.method, way, call.keeps == keeping, growth.typical(),
                    growth.count));
        }
        kept.forEach(this::tell);
    }

    /**
     * By how much memory in use grew, stretch by stretch. The virtual machine itself takes and
     * gives much now and then, which the typical stretch is free of.
     */
    private static final class Growth {
        private final List<Double> each = new ArrayList<>();
        private long count;
        private long total;

        /** A stretch of so many calls or deaths, and the bytes that it left. */
        void add(long length, long bytes) {
            if (length == 0) return;
            each.add(bytes / (double) length);
            count += length;
            total += bytes;
        }

        /** The median of the stretches, in bytes for each call or death. */
        double typical() {
            return each.isEmpty() ? 0 : each.stream().sorted().toList().get(each.size() / 2);
        }

        Finding.Grown grown(String what) {
            return new Finding.Grown(what, each.size(), count, typical(), total);
        }
    }

    // What is told.

    private void tell(Finding finding) {
        try {
            findings.writeObject(finding);
            findings.reset();  // or it would remember all
            findings.flush();
        } catch (IOException e) {
            throw new UncheckedIOException(e);
        }
    }

    private Finding.Sample look() {
        long[] seen = Native.look();
        return new Finding.Sample(crew.made(), died, seen[0], seen[1], seen[2], seen[3], seen[4],
                seen[5], seen[6], seen[7]);
    }

    private void tellStateNowAndThen() {
        if (System.nanoTime() - lastState >= STATE_NS) tellState();
    }

    private void tellState() {
        lastState = System.nanoTime();
        tell(new Finding.State(crew.made(), died, look().resident()));
    }

    private boolean tellWrong() {
        boolean right = true;
        for (Caller caller : callers) {
            if (caller.wrong() == null) continue;
            tell(new Finding.Wrong(caller.wrong(), caller.verdict(), died, happened));
            right = false;
        }
        return right;
    }

    private void tellDurations() {
        for (int i = 0; i < table.size(); i++) {
            for (Way way : Way.values()) {
                for (Caller caller : callers) {
                    Histogram durations = caller.durations(i, way);
                    if (durations == null) continue;
                    tell(new Finding.Latency(table.get(i).method, way, durations));
                }
            }
        }
    }
}
