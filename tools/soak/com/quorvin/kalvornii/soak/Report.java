package com.quorvin.kalvornii.soak;

import static java.nio.charset.StandardCharsets.UTF_8;

import com.quorvin.kalvornii.soak.Situation.Way;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.TreeMap;

/** What a soak has seen, as a page, as JSON, and in a few lines. */
final class Report {
    /** The percentiles that are told. */
    static final Map<String, Double> SHARES =
            new TreeMap<>(Map.of("p50", 0.5, "p90", 0.9, "p99", 0.99, "p99.9", 0.999));
    private static final double FLAT = 0.01;
    /** In bytes for a call; what is kept of one call in a thousand is more. */
    private static final double NOTHING = 0.02;

    final Main.Settings settings;
    final List<DeviceResult> devices;
    final double seconds;
    final String end;
    final Map<String, Map<Way, Histogram>> durations = new LinkedHashMap<>();
    final List<Finding.Kept> kept = new ArrayList<>();

    Report(Main.Settings settings, List<DeviceResult> devices, double seconds, String end) {
        this.settings = settings;
        this.devices = devices;
        this.seconds = seconds;
        this.end = end;
        for (DeviceResult device : devices) {
            device.all(Finding.Latency.class).forEach(found -> durations
                    .computeIfAbsent(found.method(), method -> new TreeMap<>())
                    .computeIfAbsent(found.way(), way -> new Histogram()).add(found.durations()));
            device.all(Finding.Kept.class).forEach(this::keep);
        }
    }

    /** Of several measurements of a call the least, as a rule on several devices. */
    private void keep(Finding.Kept found) {
        for (int i = 0; i < kept.size(); i++) {
            Finding.Kept known = kept.get(i);
            if (!known.method().equals(found.method()) || known.way() != found.way()) continue;
            if (Math.abs(found.bytesPerCall()) < Math.abs(known.bytesPerCall())) kept.set(i, found);
            return;
        }
        kept.add(found);
    }

    long calls() {
        return devices.stream().mapToLong(device -> device.state.calls()).sum();
    }

    /** The calls that measured what each keeps. */
    private long measured() {
        return devices.stream().flatMap(device -> device.all(Finding.Kept.class).stream())
                .mapToLong(Finding.Kept::calls).sum();
    }

    long deaths() {
        return devices.stream().mapToLong(device -> device.state.deaths()).sum();
    }

    int wrong() {
        return devices.stream().mapToInt(device -> device.wrong().size()).sum();
    }

    /** What keeps memory that it should not, or does not where it should. */
    List<Finding.Kept> unexpected() {
        return kept.stream().filter(call -> !call.isExpected()).toList();
    }

    /** The greatest typical growth of any device in bytes; null when there were too few calls. */
    private Double growthPerMillionCalls() {
        return devices.stream().flatMap(device -> device.growth().stream())
                .filter(grown -> grown.what().equals("calls"))
                .map(grown -> grown.typicalBytesEach() * 1e6).max(Double::compare).orElse(null);
    }

    String growth() {
        Double bytes = growthPerMillionCalls();
        return bytes == null ? "not measured" : String.format(Locale.ROOT, "%,.0f bytes", bytes);
    }

    /** By which share the resident size moved; null when there were too few calls to tell. */
    private Double residentMoved() {
        return isMeasured() ? devices.stream().map(DeviceResult::residentMoved)
                .max(Double::compare).orElse(null) : null;
    }

    String moved() {
        Double share = residentMoved();
        return share == null ? "not measured" : String.format(Locale.ROOT, "%.2f %%", share * 100);
    }

    private boolean isMeasured() {
        return growthPerMillionCalls() != null;
    }

    long referencesLeft() {
        return devices.stream().mapToLong(DeviceResult::referencesLeft).max().orElse(0);
    }

    /** Null, as the next, when there were too few calls to tell. */
    Boolean isFlat() {
        return isMeasured() ? residentMoved() <= FLAT : null;
    }

    Boolean doesNotGrow() {
        if (!isMeasured()) return null;
        return growthPerMillionCalls() <= NOTHING * 1e6 && unexpected().isEmpty();
    }

    void write() throws IOException {
        Files.writeString(page(), new Page(this).html(), UTF_8);
        Files.writeString(settings.folder().resolve("soak.json"), Json.of(members(), "\n") + "\n");
    }

    private Path page() {
        return settings.folder().resolve("soak.html");
    }

    String summary() {
        return String.format(Locale.ROOT, """
                %,d calls (and %,d to measure what each keeps), %,d deaths, %d wrong in %.0f s: %s
                growth per million calls: %s; references left by deaths: %d
                resident size of the last halves moved by: %s
                %s
                """, calls(), measured(), deaths(), wrong(), seconds, end,
                growth(), referencesLeft(), moved(), page());
    }

    private Map<String, Object> members() {
        return Json.object("end", end, "seconds", seconds, "seed", settings.seed(),
                "machine", machine(), "calls", calls(), "measuringCalls", measured(),
                "deaths", deaths(), "wrongAnswers", wrong(),
                "growthPerMillionCalls", growthPerMillionCalls(), "residentMoved", residentMoved(),
                "referencesLeft", referencesLeft(), "isFlat", isFlat(),
                "doesNotGrow", doesNotGrow(),
                "keepsUnexpectedly", unexpected().stream().map(Finding.Kept::method).toList(),
                "devices", devices.stream().map(Report::members).toList(),
                "kept", kept, "latencyNanoseconds", latencies());
    }

    private static Map<String, Object> members(DeviceResult device) {
        return Json.object("device", device.device,
                "end", device.failure == null ? device.end : device.failure,
                "calls", device.state.calls(), "deaths", device.state.deaths(),
                "wrong", device.wrong(), "log", device.log,
                "growthOfLastHalf", device.growth(), "residentMoved", device.residentMoved(),
                "afterDeathsOfAllServicesAtOnce", device.all(Finding.AfterDeathsOfAll.class),
                "samples", device.samples(), "restarts", device.all(Finding.Restart.class));
    }

    private List<Object> latencies() {
        List<Object> rows = new ArrayList<>();
        durations.forEach((method, ways) -> ways.forEach((way, histogram) -> {
            Map<String, Object> row = Json.object("method", method, "way", way,
                    "calls", histogram.count());
            SHARES.forEach((name, share) -> row.put(name, histogram.percentile(share)));
            row.put("max", histogram.greatest());
            rows.add(row);
        }));
        return rows;
    }

    /** The processor, and how many of it there are. */
    static String machine() {
        int cores = Runtime.getRuntime().availableProcessors();
        String processor = System.getProperty("os.arch");
        try (var lines = Files.lines(Path.of("/proc/cpuinfo"), UTF_8)) {
            processor = lines.filter(line -> line.startsWith("model name")).findFirst()
                    .map(line -> line.substring(line.indexOf(':') + 1).strip()).orElse(processor);
        } catch (IOException e) {
            // the name of the architecture has to do
        }
        return processor + ", " + cores + (cores == 1 ? " core" : " cores");
    }
}
