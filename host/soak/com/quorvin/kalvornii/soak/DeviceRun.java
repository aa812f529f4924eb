package com.quorvin.kalvornii.soak;

import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.AIDL;
import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.HIDL;

import com.quorvin.kalvornii.simulated.SimulatedDevice;
import com.quorvin.kalvornii.simulated.SimulatedDevice.Backend;
import java.io.IOException;
import java.util.ArrayList;
import java.util.List;
import java.util.Random;
import java.util.concurrent.locks.LockSupport;

/**
 * The part of a soak on one device, in a process of its own. What it finds goes to standard output,
 * a line each with its values parted by tabs (see DeviceResult); it ends early when standard input
 * ends, and at the first wrong answer, with status 1.
 */
final class DeviceRun {
    private static final int SAMPLES = 200;
    private static final int CALLERS = 2;
    /** In calls, so that a stretch is over in an instant. */
    private static final int LONGEST = 10_000;
    private static final int MEASURED = 100;
    private static final int MEASUREMENTS = 7;
    private static final long PROGRESS_NS = 200_000_000;
    /** As often as the death of all services at once was played on a real platform. */
    private static final int DEATHS_OF_ALL = 40;

    private final long calls;
    private final int deaths;
    private final String plant;
    private final Random random;
    private final Situation situation;
    private final List<Call> table = Calls.all();
    private final List<Caller> callers = new ArrayList<>();
    private final Crew crew;
    private final long[] figures = new long[Native.FIGURES];
    private final long start = System.nanoTime();
    private long lastProgress;
    private int died;
    private String happened = "no death yet";
    private int diedOverHidl;
    private int deathsOfAll;
    private volatile boolean stopped;

    // Of the second half.
    private final Growth ofCalls = new Growth();
    private final Growth ofAidlDeaths = new Growth();
    private final Growth ofHidlDeaths = new Growth();

    private DeviceRun(long calls, int deaths, long seed, String plant) {
        this.calls = calls;
        this.plant = plant;
        random = new Random(seed);
        situation = new Situation();
        this.deaths = situation.has(AIDL) || situation.has(HIDL) ? deaths : 0;
        deathsOfAll = Math.min(DEATHS_OF_ALL, deaths / 4);
        for (int i = 0; i < CALLERS; i++) callers.add(new Caller(i, seed, situation, table));
        crew = new Crew(callers);
    }

    /** Arguments: calls, deaths, seed, the log's file, the service's method to plant or "". */
    public static void main(String[] arguments) {
        if (!Native.keepLog(arguments[3])) {
            throw new IllegalStateException("cannot write " + arguments[3]);
        }
        SimulatedDevice.recordCalls(false);
        DeviceRun run = new DeviceRun(Long.parseLong(arguments[0]), Integer.parseInt(arguments[1]),
                Long.parseLong(arguments[2]), arguments[4]);
        System.exit(run.run() ? 0 : 1);
    }

    private boolean run() {
        Thread listener = new Thread(this::awaitEndOfInput, "input");
        listener.setDaemon(true);
        listener.start();
        try {
            SimulatedDevice.settle();
            playCallsAndDeaths();
            if (!isOver()) measureEachCall();
        } catch (RuntimeException e) {
            Native.freezeLog();
            tell("failed", e.toString());
            return false;
        }
        boolean right = tellWrong();
        tellDurations();
        tellGrowth("calls", ofCalls);
        tellGrowth("AIDL deaths", ofAidlDeaths);
        tellGrowth("HIDL deaths", ofHidlDeaths);
        tellProgress();
        tell("end", stopped ? "stopped" : "done");
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
        sample();
        for (long i = 0; i < stretches && !isOver(); i++) {
            long left = Math.max(0, calls * (i + 1) / stretches - crew.made());
            boolean dies = deaths * (i + 1) / stretches > deaths * i / stretches;
            boolean secondHalf = i >= stretches / 2;
            if (!plant.isEmpty() && i == stretches / 2) {
                SimulatedDevice.answer(plant, 4711, "planted");
            }
            long before = Native.bytesInUse();
            long callsBefore = crew.made();
            crew.work(dies ? left - left / 2 : left);
            long between = Native.bytesInUse();
            if (secondHalf) {
                ofCalls.add(crew.made() - callsBefore, between - before);
            }
            if (dies && !isOver()) {
                Growth ofDeaths = die(left / 2) ? ofHidlDeaths : ofAidlDeaths;
                if (secondHalf) ofDeaths.add(1, Native.bytesInUse() - between);
            }
            if (SAMPLES * (i + 1) / stretches > SAMPLES * i / stretches) sample();
            tellProgressNowAndThen();
        }
        // What the last death left over.
        if (!isOver()) crew.work(Math.max(0, calls - crew.made()));
    }

    /** Somebody dies and comes back; true when somebody of HIDL did. */
    private boolean die(long spareCalls) {
        boolean all = deathsOfAll > 0;
        List<String> mortal = new ArrayList<>(situation.services);
        mortal.removeIf(service -> SimulatedDevice.runs(service) == null);
        String service = mortal.get(random.nextInt(mortal.size()));
        Backend backend = SimulatedDevice.runs(service);
        boolean ofProcess = all || random.nextBoolean();
        boolean hidlDies = all ? situation.has(HIDL) : backend == HIDL;
        Death death = new Death(service, backend, ofProcess);
        if (!hidlDies && random.nextBoolean()) {
            dieUnderCalls(death, spareCalls);
        } else {
            dieBetweenCalls(death, spareCalls, hidlDies, all);
        }
        died++;
        if (isOver()) return hidlDies;
        happen(death, "after");
        situation.allHealthy();
        if (hidlDies) diedOverHidl++;
        if (all && --deathsOfAll == 0) {
            look();
            tell("all", died, figures[Native.LISTENERS], figures[Native.NOTIFICATIONS]);
            Native.groupProcesses("device");
        }
        return hidlDies;
    }

    private void happen(Death death, String what) {
        happened = what + " the death of " + death;
    }

    /** Only over AIDL: a call on a dead HIDL service ends the process, as on a device. */
    private void dieUnderCalls(Death death, long spareCalls) {
        happen(death, "during");
        situation.aidlInTurmoil();
        crew.start(spareCalls);
        pause();
        death.kill();
        pause();
        death.restart();
        SimulatedDevice.settle();
        crew.stop();
    }

    private void dieBetweenCalls(Death death, long spareCalls, boolean hidlDies, boolean alone) {
        death.kill();
        happen(death, "away after");
        situation.away();
        crew.work(spareCalls / 2);
        if (isOver()) return;
        happen(death, "on the return from");
        situation.coming();
        boolean underCalls = !alone && random.nextBoolean();
        if (underCalls) crew.start(spareCalls - spareCalls / 2);
        look();
        long begin = System.nanoTime();
        death.restart();
        SimulatedDevice.settle();
        long end = System.nanoTime();
        if (underCalls) {
            crew.stop();
        } else {
            tell("restart", hidlDies ? "HIDL" : "AIDL", hidlDies ? diedOverHidl + 1 : died + 1,
                    figures[Native.LISTENERS], alone ? "all" : death.ofProcess ? "process" : "one",
                    (end - begin) / 1000);
        }
    }

    private record Death(String service, Backend backend, boolean ofProcess) {
        @Override
        public String toString() {
            return (ofProcess ? "the process of " : "") + service + " over " + backend;
        }

        void kill() {
            if (ofProcess) {
                SimulatedDevice.killProcess(service);
            } else {
                SimulatedDevice.kill(backend, service);
            }
        }

        void restart() {
            if (ofProcess) {
                SimulatedDevice.restartProcess(service);
            } else {
                SimulatedDevice.restart(backend, service);
            }
        }
    }

    private void pause() {
        if (random.nextBoolean()) LockSupport.parkNanos(random.nextInt(300_000));
    }

    /** What each call leaves behind. */
    private void measureEachCall() {
        long measured = 0;
        for (int i = 0; i < table.size() && !isOver(); i++) {
            Growth growth = new Growth();
            for (int n = 0; n < MEASUREMENTS && !isOver(); n++) {
                long before = Native.bytesInUse();
                callers.get(0).callUniformly(i, MEASURED);
                growth.add(MEASURED, Native.bytesInUse() - before);
            }
            measured += growth.count();
            tellKept(table.get(i), growth.typical());
            tellProgressNowAndThen();
        }
        tell("measured", measured);
    }

    private void tellKept(Call call, double bytes) {
        int service = situation.indexOf(call);
        boolean absent = situation.may(service) == Call.ABSENT;
        boolean keeps = absent ? call.keeps == Call.Keeps.TEXTS_WHEN_ABSENT
                : call.keeps == Call.Keeps.TEXTS;
        String way = service < 0 ? "NO_SERVICE" : absent ? "ABSENT"
                : situation.backend(service).name();
        tell("kept", call.method, way, keeps, bytes);
    }

    // What is told.

    private static void tell(String kind, Object... values) {
        StringBuilder line = new StringBuilder(kind);
        for (Object value : values) line.append('\t').append(value);
        synchronized (System.out) {
            System.out.println(line.toString().replace("\n", "\\n").replace("\r", "\\r"));
            System.out.flush();
        }
    }

    private void look() {
        Native.look(figures);
    }

    private void sample() {
        System.gc();
        Runtime heap = Runtime.getRuntime();
        long heapUsed = heap.totalMemory() - heap.freeMemory();
        look();
        tell("sample", crew.made(), died, (System.nanoTime() - start) / 1_000_000,
                figures[Native.RESIDENT], figures[Native.IN_USE], figures[Native.LIVE_SERVICES],
                figures[Native.DEATH_LINKS], figures[Native.LISTENERS],
                figures[Native.NOTIFICATIONS], figures[Native.THREADS], figures[Native.FILES],
                heapUsed);
    }

    private void tellProgressNowAndThen() {
        if (System.nanoTime() - lastProgress >= PROGRESS_NS) tellProgress();
    }

    private void tellProgress() {
        lastProgress = System.nanoTime();
        look();
        tell("progress", crew.made(), died, figures[Native.RESIDENT]);
    }

    private boolean tellWrong() {
        boolean right = true;
        for (Caller caller : callers) {
            if (caller.wrong() == null) continue;
            tell("wrong", caller.wrong(), died, happened);
            right = false;
        }
        return right;
    }

    private static void tellGrowth(String what, Growth growth) {
        if (!growth.isTypical()) return;
        tell("growth", what, growth.count(), growth.typical(), growth.total());
    }

    private void tellDurations() {
        for (int i = 0; i < table.size(); i++) {
            for (Caller.Way way : Caller.Way.values()) {
                for (Caller caller : callers) {
                    Histogram durations = caller.durations(i, way);
                    if (durations == null) continue;
                    tell("latency", table.get(i).method, way, durations.format());
                }
            }
        }
    }
}
