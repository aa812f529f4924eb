package com.quorvin.kalvornii.soak;

import static java.nio.charset.StandardCharsets.UTF_8;

import java.io.IOException;
import java.io.ObjectInputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.TimeUnit;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/**
 * Soaks the library: one process after the other for the devices, then the report. Arguments, as
 * ./soak gives them: project, folder, calls, deaths, seconds, seed, planted method or "", columns
 * of the terminal or 0, devices.
 */
final class Main {
    /** What part of the calls and deaths each device gets. */
    private static final Map<String, int[]> SHARES = Map.of("aidl", new int[] {40, 40}, "hidl",
            new int[] {30, 30}, "mixed", new int[] {25, 30}, "bare", new int[] {5, 0});
    private static final long SILENCE_SECONDS = 120;

    // Beside the report, while a device is soaked or when that failed.
    private static final String LOG = ".log-ring";
    private static final String ERRORS = ".stderr";
    private static final String CRASH = ".crash";

    private final Path project;
    private final Settings settings;
    private final Progress progress;
    private final List<DeviceResult> results = new ArrayList<>();
    private final CountDownLatch ended = new CountDownLatch(1);
    private Process process;
    private boolean stopped;
    private volatile boolean interrupted;
    private volatile long lastHeard;

    /** What was asked for. */
    record Settings(Path folder, long calls, long deaths, long seconds, long seed, String plant,
            List<String> devices) {}

    private Main(String[] arguments) {
        project = Path.of(arguments[0]);
        settings = new Settings(Path.of(arguments[1]), Long.parseLong(arguments[2]),
                Long.parseLong(arguments[3]), Long.parseLong(arguments[4]),
                Long.parseLong(arguments[5]), arguments[6],
                List.of(arguments[8].split(",")));
        progress = new Progress(settings.calls, settings.seconds, Integer.parseInt(arguments[7]));
    }

    public static void main(String[] arguments) throws IOException, InterruptedException {
        Main soak = new Main(arguments);
        Runtime.getRuntime().addShutdownHook(new Thread(soak::onInterrupt));
        int status;
        try {
            status = soak.run();
        } finally {
            soak.ended.countDown();
        }
        if (!soak.interrupted) System.exit(status);
    }

    /** Runs on Ctrl-C, and at every other end too; the machine ends when it returns. */
    private void onInterrupt() {
        if (ended.getCount() == 0) return;
        interrupted = true;
        stop();
        try {
            if (!ended.await(30, TimeUnit.SECONDS)) kill();
        } catch (InterruptedException e) {
            kill();
        }
    }

    private int run() throws IOException, InterruptedException {
        Files.createDirectories(settings.folder);
        Thread clock = new Thread(this::watch, "clock");
        clock.setDaemon(true);
        clock.start();
        for (String device : settings.devices) {
            if (isStopped() || !allRight()) break;
            DeviceResult result = new DeviceResult(device);
            results.add(result);
            soak(result);
        }
        progress.end();
        for (DeviceResult result : results) tell(result);
        Report report = new Report(settings, results, progress.seconds(), endedBy());
        report.write();
        System.out.print(report.summary());
        return allRight() ? 0 : 1;
    }

    private String endedBy() {
        if (interrupted) return "interrupted";
        if (results.stream().anyMatch(result -> result.failure != null)) return "failure";
        if (!allRight()) return "wrong answer";
        return isStopped() ? "time limit" : "done";
    }

    private boolean allRight() {
        return results.stream().allMatch(DeviceResult::isRight);
    }

    private synchronized boolean isStopped() {
        return stopped;
    }

    private synchronized void stop() {
        stopped = true;
        if (process == null) return;
        try {
            process.getOutputStream().close();
        } catch (IOException e) {
            // it has ended
        }
    }

    private synchronized void kill() {
        if (process != null) process.destroyForcibly();
    }

    private void watch() {
        try {
            while (true) {
                Thread.sleep(200);
                if (progress.seconds() > settings.seconds) stop();
                long silence = System.nanoTime() - lastHeard;
                if (lastHeard != 0 && silence > SILENCE_SECONDS * 1_000_000_000) kill();
            }
        } catch (InterruptedException e) {
            throw new IllegalStateException(e);
        }
    }

    /** Rounded so that the devices' shares are the whole. */
    private long share(long whole, String device, int which) {
        long all = 0;
        long before = 0;
        for (String name : settings.devices) {
            if (name.equals(device)) before = all;
            all += SHARES.get(name)[which];
        }
        if (all == 0) return 0;
        return whole * (before + SHARES.get(device)[which]) / all - whole * before / all;
    }

    private void soak(DeviceResult result) throws IOException, InterruptedException {
        for (String ending : List.of(LOG, ERRORS, CRASH)) {
            Files.deleteIfExists(file(result.device, ending));
        }
        synchronized (this) {
            if (stopped) return;
            process = new ProcessBuilder(command(result.device))
                    .redirectError(file(result.device, ERRORS).toFile()).start();
        }
        lastHeard = System.nanoTime();
        hear(result);
        int status = process.waitFor();
        lastHeard = 0;
        if (result.failure == null && (result.end == null || (status != 0) == result.isRight())) {
            result.failure = "its process ended with status " + status;
        }
        if (!result.isRight()) result.log = LogRing.read(file(result.device, LOG));
        Files.deleteIfExists(file(result.device, LOG));
        if (result.failure == null) {
            Files.deleteIfExists(file(result.device, ERRORS));
        } else {
            result.failure += beginning(file(result.device, ERRORS))
                    + beginning(file(result.device, CRASH));
        }
    }

    /** Of a file that may not be there. */
    private static String beginning(Path file) throws IOException {
        if (!Files.exists(file)) return "";
        try (Stream<String> lines = Files.lines(file, UTF_8)) {
            return lines.limit(20).map(line -> "\n  " + line).collect(Collectors.joining());
        }
    }

    private void hear(DeviceResult result) {
        try (ObjectInputStream findings = new ObjectInputStream(process.getInputStream())) {
            while (true) {
                Finding finding = (Finding) findings.readObject();
                lastHeard = System.nanoTime();
                result.take(finding);
                if (finding instanceof Finding.State) show(result);
            }
        } catch (IOException e) {
            // it has ended, as its status tells
        } catch (ClassNotFoundException e) {
            throw new IllegalStateException(e);
        }
    }

    /**
     * The process ignores Ctrl-C, since it is told to stop. Its memory is laid out once and for
     * all: a Java heap of a fixed size, all of it touched, a collector that returns nothing, one
     * compiler that is soon done, and no caches of freed memory for each thread.
     */
    private List<String> command(String device) {
        return List.of("env", "GLIBC_TUNABLES=glibc.malloc.tcache_count=0:glibc.malloc.arena_max=2",
                "CLASSPATH=" + System.getProperty("java.class.path"), "bash", "-c",
                "trap '' INT; exec \"$@\"", "soak", project.resolve("simulate").toString(),
                "--device", device, Path.of(System.getProperty("java.home"), "bin/java").toString(),
                "-Xms48m", "-Xmx48m", "-XX:+AlwaysPreTouch", "-XX:+UseSerialGC",
                "-XX:TieredStopAtLevel=1", "-XX:-UseDynamicNumberOfCompilerThreads",
                "-XX:-UsePerfData", "-XX:ErrorFile=" + file(device, CRASH),
                DeviceRun.class.getName(), String.valueOf(share(settings.calls, device, 0)),
                String.valueOf(share(settings.deaths, device, 1)), String.valueOf(settings.seed),
                file(device, LOG).toString(), settings.plant);
    }

    private Path file(String device, String ending) {
        return settings.folder.resolve(device + ending);
    }

    private void show(DeviceResult now) {
        progress.show(now.device, results.stream().mapToLong(result -> result.state.calls()).sum(),
                results.stream().mapToLong(result -> result.state.deaths()).sum(),
                results.stream().mapToInt(result -> result.wrong().size()).sum(),
                now.state.resident());
    }

    private static void tell(DeviceResult result) {
        for (Finding.Wrong wrong : result.wrong()) {
            System.out.println("Wrong on the device " + result.device + ", after "
                    + wrong.afterDeaths() + " deaths (" + wrong.circumstances() + "): "
                    + wrong.method() + " " + wrong.verdict());
        }
        if (result.failure != null) {
            System.out.println("The device " + result.device + " failed: " + result.failure);
        }
        if (result.log.isEmpty()) return;
        System.out.println("The last " + result.log.size() + " lines of the log:");
        result.log.forEach(System.out::println);
    }
}
