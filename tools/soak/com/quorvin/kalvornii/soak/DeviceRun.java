package com.quorvin.kalvornii.soak;

import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.AIDL;
import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.HIDL;
import static com.quorvin.kalvornii.soak.Situation.DEVICE;

import com.quorvin.kalvornii.soak.Call.Keeps;
import com.quorvin.kalvornii.soak.Situation.Route;
import com.quorvin.kalvornii.soak.Situation.Service;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Random;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import java.util.concurrent.locks.LockSupport;
import org.HdrHistogram.Histogram;

/**
 * A soak on one device, in a process of its own. It ends early at the first wrong answer, when it
 * is told to stop and when the time is up; its status is 0 unless it could not go on.
 */
final class DeviceRun {
    private static final int SAMPLES = 200;
    private static final int CALLERS = 2;
    /** In calls, so that a stretch is over in an instant. */
    private static final int LONGEST = 10_000;
    /** In calls; what the virtual machine takes and gives is seen in shorter stretches. */
    private static final int JUDGED = 2000;
    private static final int MEASURED = 70;
    private static final int MEASUREMENTS = 10;
    /** As often as the death of all services at once was played on a real platform. */
    private static final int DEATHS_OF_ALL = 40;
    private static final int NOT_WRITTEN = 3;

    private final long calls = Long.getLong("soak.calls");
    private final long seed = Long.getLong("soak.seed");
    private final String plant = System.getProperty("soak.plant");
    private final Random random = new Random(seed);
    private final Situation situation = new Situation();
    private final List<Call> table = Calls.all(situation);
    private final List<Caller> callers = new ArrayList<>();
    private final ExecutorService threads = Executors.newCachedThreadPool();
    private final List<Future<Long>> calling = new ArrayList<>();
    private final Events events;
    private final Path folder;
    private final Path state;
    private final ProcessHandle parent = ProcessHandle.current().parent().orElseThrow();
    private final long begin = System.nanoTime();
    private double lastBeat;
    private String early;
    private final long deaths;
    private long made;
    private long died;
    private long deathsOfAll;
    private String happened = "no death yet";

    // Of the second half.
    private final Growth ofCalls = new Growth(JUDGED);
    private final Growth ofAidlDeaths = new Growth(1);
    private final Growth ofHidlDeaths = new Growth(1);

    private DeviceRun(Path folder, String device) throws Exception {
        events = new Events(folder.resolve(device + ".events"), device);
        state = folder.resolve(device + ".state");
        this.folder = folder;
        deaths = situation.has(AIDL) || situation.has(HIDL) ? Long.getLong("soak.deaths") : 0;
        deathsOfAll = Math.min(DEATHS_OF_ALL, deaths / 4);
        for (int i = 0; i < CALLERS; i++) callers.add(new Caller(i, seed, situation, table));
    }

    /** Takes a folder, which has the file for the log, and the device; the rest are properties. */
    public static void main(String[] arguments) {
        try {
            Native.keepLog(Path.of(arguments[0], arguments[1] + ".log").toString());
            DEVICE.recordCalls(false);
            new DeviceRun(Path.of(arguments[0]), arguments[1]).run();
            System.exit(0);
        } catch (Exception e) {
            Native.freezeLog();
            e.printStackTrace();
            System.exit(e instanceof IOException ? NOT_WRITTEN : 1);
        }
    }

    private void run() throws Exception {
        DEVICE.settle();
        playCallsAndDeaths();
        sample();
        if (!isOver()) measureEachCall();
        for (Caller caller : callers) {
            if (caller.wrong == null) continue;
            events.tell("wrong", "method", caller.wrong.method, "verdict", caller.fault,
                    "arguments", Call.quoted(caller.arguments), "afterDeaths", died,
                    "circumstances", happened);
        }
        tellTimes();
        tell("calls", ofCalls);
        tell("AIDL deaths", ofAidlDeaths);
        tell("HIDL deaths", ofHidlDeaths);
        events.tell("end", "how", isWrong() ? "wrong answer" : early == null ? "done" : early);
    }

    private boolean isWrong() {
        return callers.stream().anyMatch(caller -> caller.wrong != null);
    }

    private boolean isOver() {
        return isWrong() || early != null;
    }

    private double elapsed() {
        return (System.nanoTime() - begin) / 1e9;
    }

    /** Tells ./soak how far the run is, and asks whether it shall go on. */
    private void beat() throws IOException {
        if (elapsed() < lastBeat + 0.2) return;
        lastBeat = elapsed();
        Files.writeString(state, made + " " + died + "\n");
        if (!parent.isAlive()) early = "left alone";
        Path stop = folder.resolve("stop");
        if (Files.exists(stop)) early = Files.readString(stop).strip();
    }

    /** The calls come in stretches with every answer as in health, with deaths in between. */
    private void playCallsAndDeaths() throws Exception {
        long stretches = Math.max(calls / LONGEST, Math.max(deaths, SAMPLES));
        if (deathsOfAll > 0) Native.groupProcesses("one");
        sample();
        for (long i = 0; i < stretches && !isOver(); i++) {
            long left = Math.max(0, calls * (i + 1) / stretches - made);
            boolean dies = deaths * (i + 1) / stretches > deaths * i / stretches;
            boolean secondHalf = i >= stretches / 2;
            if (i == stretches / 2 && !plant.isEmpty())
                DEVICE.on(plant).times(1).answer(4711, "planted");
            long before = Native.bytesInUse();
            long callsBefore = made;
            call(dies ? left - left / 2 : left);
            long between = Native.bytesInUse();
            if (secondHalf) ofCalls.add(made - callsBefore, between - before);
            if (dies && !isOver()) {
                Growth ofDeaths = die(left / 2) ? ofHidlDeaths : ofAidlDeaths;
                if (secondHalf) ofDeaths.add(1, Native.bytesInUse() - between);
            }
            if (SAMPLES * (i + 1) / stretches > SAMPLES * i / stretches) sample();
            beat();
        }
        // What the last death left over.
        if (!isOver()) call(Math.max(0, calls - made));
    }

    /** A service or process dies and comes back; true when it was one of HIDL. */
    private boolean die(long spareCalls) throws Exception {
        Death death = chooseDeath();
        boolean hidlDies =
                death.what.equals("all") ? situation.has(HIDL) : death.service.backend == HIDL;
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
            events.tell("afterDeathsOfAll", "deaths", died, "listeners", Native.listeners(),
                    "notifications", Native.notifications());
            Native.groupProcesses("device");
        }
        return hidlDies;
    }

    /** Makes so many calls. */
    private void call(long all) throws Exception {
        start(all);
        await();
    }

    /** Begins with at most so many calls, shared among all callers. */
    private void start(long most) {
        for (Caller caller : callers) {
            caller.mayCall = true;
            long share = (most + callers.indexOf(caller)) / callers.size();
            calling.add(threads.submit(() -> caller.callAny(share)));
        }
    }

    private void stop() throws Exception {
        for (Caller caller : callers) caller.mayCall = false;
        await();
    }

    private void await() throws Exception {
        for (Future<Long> calls : calling) made += calls.get();
        calling.clear();
    }

    private Death chooseDeath() {
        List<Service> mortal = situation.services.values()
                                       .stream()
                                       .filter(service -> service.backend != null)
                                       .toList();
        String what = deathsOfAll > 0 ? "all" : random.nextBoolean() ? "process" : "one";
        return new Death(mortal.get(random.nextInt(mortal.size())), what);
    }

    /** Only over AIDL: a call on a dead HIDL service ends the process, as on a device. */
    private void dieUnderCalls(Death death, long spareCalls) throws Exception {
        happened = "during the death of " + death;
        situation.aidlInTurmoil();
        start(spareCalls);
        pause();
        death.kill();
        pause();
        death.restart();
        DEVICE.settle();
        stop();
    }

    private void dieBetweenCalls(Death death, long spareCalls, boolean hidlDies) throws Exception {
        death.kill();
        happened = "away after the death of " + death;
        situation.away();
        call(spareCalls / 2);
        if (isOver()) return;
        happened = "on the return from the death of " + death;
        situation.coming();
        boolean underCalls = !death.what.equals("all") && random.nextBoolean();
        if (underCalls) start(spareCalls - spareCalls / 2);
        long listeners = Native.listeners();
        long begin = System.nanoTime();
        death.restart();
        DEVICE.settle();
        long microseconds = (System.nanoTime() - begin) / 1000;
        if (underCalls) stop();
        if (underCalls || !hidlDies) return;
        events.tell("restart", "listeners", listeners, "what", death.what, "microseconds",
                microseconds);
    }

    /** Of "one" service, of a "process" with several, or of "all", which are in one process. */
    private record Death(Service service, String what) {
        @Override
        public String toString() {
            String one = service.name + " over " + service.backend;
            return what.equals("one") ? one : "the process of " + one;
        }

        void kill() {
            if (what.equals("one")) DEVICE.kill(service.backend, service.name);
            if (!what.equals("one")) DEVICE.killProcess(service.name);
        }

        void restart() {
            if (what.equals("one")) DEVICE.restart(service.backend, service.name);
            if (!what.equals("one")) DEVICE.restartProcess(service.name);
        }
    }

    private void pause() {
        if (random.nextBoolean()) LockSupport.parkNanos(random.nextInt(300_000));
    }

    /** What each call leaves behind; told at the end, since to tell makes the compiler busy. */
    private void measureEachCall() throws Exception {
        List<Growth> growths = new ArrayList<>();
        for (Call call : table) {
            Growth growth = new Growth(MEASURED);
            for (int n = 0; n < MEASUREMENTS && !isOver(); n++) {
                long before = Native.bytesInUse();
                callers.get(0).callUniformly(call, MEASURED);
                growth.add(MEASURED, Native.bytesInUse() - before);
            }
            growths.add(growth);
            beat();
        }
        for (int i = 0; i < table.size() && !isOver(); i++) {
            Call call = table.get(i);
            Route route = call.service.route(call.service.may);
            Keeps onPurpose = route == Route.ABSENT ? Keeps.TEXTS_WHEN_ABSENT : Keeps.TEXTS;
            events.tell("kept", "method", call.method, "route", route, "onPurpose",
                    call.keeps == onPurpose, "bytesPerCall", growths.get(i).typical(), "calls",
                    growths.get(i).count);
        }
    }

    private void sample() throws IOException {
        Histogram times = new Histogram(2);
        for (Caller caller : callers) {
            times.add(caller.recent);
            caller.recent.reset();
        }
        events.tell("sample", "seconds", elapsed(), "calls", made, "deaths", died, "resident",
                Events.resident(), "inUse", Native.bytesInUse(), "liveServices",
                Native.liveServices(), "deathLinks", Native.deathLinks(), "listeners",
                Native.listeners(), "notifications", Native.notifications(), "threads",
                Events.entries("task"), "files", Events.entries("fd"), "times",
                Events.times(times));
    }

    private void tell(String what, Growth growth) throws IOException {
        events.tell("grown", "what", what, "count", growth.count, "typicalBytesEach",
                growth.typical(), "totalBytes", growth.total);
    }

    private void tellTimes() throws IOException {
        for (Call call : table) {
            for (Route route : Route.values()) {
                Histogram times = call.times.get(route);
                if (times.getTotalCount() == 0) continue;
                events.tell("latency", "method", call.method, "route", route, "times",
                        Events.times(times));
            }
        }
    }
}
