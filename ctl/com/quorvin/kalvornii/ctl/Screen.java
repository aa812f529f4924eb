package com.quorvin.kalvornii.ctl;

import java.util.ArrayList;
import java.util.List;
import java.util.stream.Collectors;

/** The services and what happened last, on a terminal, of which nothing scrolls away. */
final class Screen {
    private static final int EVENTS = 5;

    private final Console console;
    private final Services services;
    private final List<String> events = new ArrayList<>();

    Screen(Console console, Services services) {
        this.console = console;
        this.services = services;
    }

    /** Shows all anew, with the last of these and the earlier events. */
    void show(List<String> more) {
        events.addAll(more);
        int rows = console.rows() - 1;  // the cursor stands on the last
        List<String> lines = table();
        if (lines.size() + 2 > rows) lines = summary();
        int most = Math.max(0, Math.min(EVENTS, rows - lines.size() - 1));
        if (events.size() > most) events.subList(0, events.size() - most).clear();
        lines.addAll(events);
        lines.add("Until interrupted (Ctrl-C).");
        console.raw(lines.stream()
                            .limit(rows)
                            .map(line -> cut(Console.escaped(line)) + "\n")
                            .collect(Collectors.joining("", "\033[H\033[J", "")));
    }

    private List<String> table() {
        return services.all()
                .stream()
                .map(service
                        -> String.format(
                                "%-15s  %-4s  %s", service.name, service.backend(), service.said()))
                .collect(Collectors.toCollection(ArrayList::new));
    }

    /** The services by their backends, on as many lines as they take. */
    private List<String> summary() {
        List<String> lines = new ArrayList<>();
        for (String backend : List.of("none", "HIDL", "AIDL")) {
            String names = services.all()
                                   .stream()
                                   .filter(service -> service.backend().equals(backend))
                                   .map(service -> service.name)
                                   .collect(Collectors.joining(" "));
            if (!names.isEmpty()) lines.addAll(console.wrapped(backend + ": ", "      ", names));
        }
        return lines;
    }

    private String cut(String line) {
        return line.length() < console.columns() ? line : line.substring(0, console.columns() - 1);
    }
}
