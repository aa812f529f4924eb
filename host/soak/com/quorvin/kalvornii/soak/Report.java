package com.quorvin.kalvornii.soak;

import static java.nio.charset.StandardCharsets.UTF_8;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;

/** What a soak has seen, as a page, as JSON, and in a few lines. */
final class Report {
    static final double FLAT = 0.01;
    /** In bytes for a call; what is kept of one call in a thousand is more. */
    static final double NOTHING = 0.02;

    final Main.Settings settings;
    final List<DeviceResult> devices;
    final double seconds;
    final String end;
    final Map<String, Map<Caller.Way, Histogram>> durations = new LinkedHashMap<>();
    final List<DeviceResult.Kept> kept = new ArrayList<>();

    Report(Main.Settings settings, List<DeviceResult> devices, double seconds, String end) {
        this.settings = settings;
        this.devices = devices;
        this.seconds = seconds;
        this.end = end;
        for (DeviceResult device : devices) {
            device.durations.forEach((method, ways) -> ways.forEach((way, histogram) -> durations
                    .computeIfAbsent(method, name -> new LinkedHashMap<>())
                    .computeIfAbsent(way, name -> new Histogram()).add(histogram)));
            device.kept.forEach(this::keep);
        }
    }

    /** Of several measurements of a call the least, as a rule on several devices. */
    private void keep(DeviceResult.Kept found) {
        for (int i = 0; i < kept.size(); i++) {
            DeviceResult.Kept known = kept.get(i);
            boolean isSame = known.method().equals(found.method())
                    && known.way().equals(found.way());
            if (!isSame) continue;
            if (Math.abs(found.bytes()) < Math.abs(known.bytes())) kept.set(i, found);
            return;
        }
        kept.add(found);
    }

    long calls() {
        return devices.stream().mapToLong(device -> device.calls).sum();
    }

    long measured() {
        return devices.stream().mapToLong(device -> device.measured).sum();
    }

    long deaths() {
        return devices.stream().mapToLong(device -> device.deaths).sum();
    }

    int wrong() {
        return devices.stream().mapToInt(device -> device.wrong.size()).sum();
    }

    /** What keeps memory that it should not, or does not where it should. */
    List<DeviceResult.Kept> unexpected() {
        return kept.stream().filter(call -> !call.isExpected()).toList();
    }

    /** The greatest typical growth of any device in bytes; null when there were too few calls. */
    Double growthPerMillionCalls() {
        return devices.stream().map(device -> device.growth.get("calls"))
                .filter(grown -> grown != null).map(grown -> grown.typical() * 1e6)
                .max(Double::compare).orElse(null);
    }

    String growth() {
        Double bytes = growthPerMillionCalls();
        return bytes == null ? "not measured" : String.format(Locale.ROOT, "%,.0f bytes", bytes);
    }

    double residentMoved() {
        return devices.stream().mapToDouble(DeviceResult::residentMoved).max().orElse(0);
    }

    long referencesLeft() {
        return devices.stream().mapToLong(DeviceResult::referencesLeft).max().orElse(0);
    }

    boolean isFlat() {
        return residentMoved() <= FLAT;
    }

    boolean doesNotGrow() {
        Double bytes = growthPerMillionCalls();
        return (bytes == null || bytes <= NOTHING * 1e6) && unexpected().isEmpty();
    }

    Path page() {
        return settings.folder().resolve("soak.html");
    }

    void write() throws IOException {
        Files.writeString(page(), new Page(this).html(), UTF_8);
        Files.writeString(settings.folder().resolve("soak.json"), Json.of(members()), UTF_8);
    }

    String summary() {
        return String.format(Locale.ROOT, """
                %,d calls (and %,d to measure what each keeps), %,d deaths, %d wrong in %.0f s: %s
                growth per million calls: %s; references left by deaths: %d
                resident size of the last halves within %.2f %%
                %s
                """, calls(), measured(), deaths(), wrong(), seconds, end,
                growth(), referencesLeft(), residentMoved() * 100, page());
    }

    private Map<String, Object> members() {
        Map<String, Object> members = new LinkedHashMap<>();
        members.put("end", end);
        members.put("seconds", seconds);
        members.put("seed", settings.seed());
        members.put("machine", Machine.describe());
        members.put("calls", calls());
        members.put("measuringCalls", measured());
        members.put("deaths", deaths());
        members.put("wrongAnswers", wrong());
        members.put("growthPerMillionCalls", growthPerMillionCalls());
        members.put("residentMoved", residentMoved());
        members.put("referencesLeft", referencesLeft());
        members.put("isFlat", isFlat());
        members.put("doesNotGrow", doesNotGrow());
        members.put("keepsUnexpectedly",
                unexpected().stream().map(DeviceResult.Kept::method).toList());
        members.put("devices", devices.stream().map(Report::members).toList());
        members.put("kept", kept.stream().map(Report::members).toList());
        members.put("latencyNanoseconds", latencies());
        return members;
    }

    private static Map<String, Object> members(DeviceResult device) {
        Map<String, Object> members = new LinkedHashMap<>();
        members.put("device", device.device);
        members.put("end", device.failure == null ? device.end : device.failure);
        members.put("calls", device.calls);
        members.put("deaths", device.deaths);
        members.put("wrong", device.wrong.stream().map(Report::members).toList());
        members.put("log", device.log);
        Map<String, Object> growth = new LinkedHashMap<>();
        device.growth.forEach((what, grown) -> growth.put(what, Map.of("count", grown.count(),
                "typicalBytesEach", grown.typical(), "totalBytes", grown.total())));
        members.put("growthOfLastHalf", growth);
        members.put("residentMoved", device.residentMoved());
        if (device.afterDeathsOfAll != null) {
            Map<String, Object> all = new LinkedHashMap<>();
            all.put("deaths", device.afterDeathsOfAll[0]);
            all.put("listeners", device.afterDeathsOfAll[1]);
            all.put("notifications", device.afterDeathsOfAll[2]);
            members.put("afterDeathsOfAllServicesAtOnce", all);
        }
        members.put("sampleColumns", List.of("calls", "deaths", "milliseconds", "resident", "inUse",
                "liveServices", "deathLinks", "listeners", "notifications", "threads", "files",
                "javaHeap"));
        members.put("samples", device.samples);
        members.put("restartColumns", List.of("number", "listeners", "microseconds"));
        for (String backend : List.of("AIDL", "HIDL")) {
            members.put("restarts" + backend, device.restarts.stream()
                    .filter(restart -> restart.backend().equals(backend))
                    .map(restart -> new long[] {restart.number(), restart.listeners(),
                        restart.microseconds()}).toList());
        }
        return members;
    }

    private static Map<String, Object> members(DeviceResult.Wrong wrong) {
        Map<String, Object> members = new LinkedHashMap<>();
        members.put("method", wrong.method());
        members.put("verdict", wrong.verdict());
        members.put("afterDeaths", Long.parseLong(wrong.deaths()));
        members.put("circumstances", wrong.happened());
        return members;
    }

    private static Map<String, Object> members(DeviceResult.Kept call) {
        Map<String, Object> members = new LinkedHashMap<>();
        members.put("method", call.method());
        members.put("way", call.way());
        members.put("onPurpose", call.onPurpose());
        members.put("bytesPerCall", call.bytes());
        return members;
    }

    private List<Object> latencies() {
        List<Object> rows = new ArrayList<>();
        durations.forEach((method, ways) -> ways.forEach((way, histogram) -> {
            Map<String, Object> row = new LinkedHashMap<>();
            row.put("method", method);
            row.put("way", way.name());
            row.put("calls", histogram.count());
            for (double share : Page.SHARES) row.put(Page.name(share), histogram.percentile(share));
            row.put("max", histogram.greatest());
            rows.add(row);
        }));
        return rows;
    }
}
