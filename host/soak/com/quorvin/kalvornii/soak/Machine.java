package com.quorvin.kalvornii.soak;

import static java.nio.charset.StandardCharsets.UTF_8;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;

/** The machine that a report is about. */
final class Machine {
    private Machine() {}

    static String describe() {
        int cores = Runtime.getRuntime().availableProcessors();
        return cpu() + ", " + cores + (cores == 1 ? " core" : " cores");
    }

    private static String cpu() {
        try (var lines = Files.lines(Path.of("/proc/cpuinfo"), UTF_8)) {
            return lines.filter(line -> line.startsWith("model name")).findFirst()
                    .map(line -> line.substring(line.indexOf(':') + 1).strip())
                    .orElse(System.getProperty("os.arch"));
        } catch (IOException e) {
            return System.getProperty("os.arch");
        }
    }
}
