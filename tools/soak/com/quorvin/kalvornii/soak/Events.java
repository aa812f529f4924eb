package com.quorvin.kalvornii.soak;

import static java.nio.charset.StandardCharsets.UTF_8;

import com.google.gson.Gson;
import com.google.gson.GsonBuilder;
import java.io.File;
import java.io.FileWriter;
import java.io.IOException;
import java.io.Writer;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.LinkedHashMap;
import java.util.Map;
import org.HdrHistogram.Histogram;

/** What a run tells: a file with a line of JSON for each event. */
final class Events {
    private final Gson json = new GsonBuilder().serializeNulls().create();
    private final Writer file;
    private final String device;

    Events(Path path, String device) throws IOException {
        file = new FileWriter(path.toFile(), UTF_8);
        this.device = device;
    }

    void tell(String kind, Object... namesAndValues) throws IOException {
        file.write(json.toJson(Map.of("device", device, kind, object(namesAndValues))) + "\n");
        file.flush();
    }

    private static Map<String, Object> object(Object... namesAndValues) {
        Map<String, Object> object = new LinkedHashMap<>();
        for (int i = 0; i < namesAndValues.length; i += 2) {
            object.put((String) namesAndValues[i], namesAndValues[i + 1]);
        }
        return object;
    }

    /** In nanoseconds. */
    static Map<String, Object> times(Histogram times) {
        return object("calls", times.getTotalCount(), "p50", times.getValueAtPercentile(50), "p90",
                times.getValueAtPercentile(90), "p99", times.getValueAtPercentile(99), "p999",
                times.getValueAtPercentile(99.9), "max", times.getMaxValue());
    }

    static long resident() throws IOException {
        return 4096 * Long.parseLong(Files.readString(Path.of("/proc/self/statm")).split(" ")[1]);
    }

    /** How many of them the process has. */
    static long entries(String folder) {
        return new File("/proc/self", folder).list().length;
    }
}
