package com.quorvin.kalvornii.ctl;

import java.util.ArrayList;
import java.util.List;

/** "watch". */
final class WatchCommand {
    private static final long STEP_MILLISECONDS = 100;

    private final Options options;
    private final Console console;
    private final Deaths deaths = new Deaths();
    private final List<String> backends = new ArrayList<>();
    private Library library;

    WatchCommand(Options options, Console console) {
        this.options = options;
        this.console = console;
    }

    int watch() throws UsageException, Failure {
        options.allow(0);
        library = Library.withLog(console, Limit.NONE, deaths);
        Screen screen = console.isTerminal() ? new Screen(console, library.services) : null;
        List<String> events = new ArrayList<>();
        String time = Deaths.now();
        while (!console.isCut()) {  // somebody reads on
            if (screen != null) {
                screen.show(events);
            } else {
                events.addAll(changes(time));
                events.forEach(console::line);
            }
            events.clear();
            time = next(events);
        }
        return Main.DONE;
    }

    /** Waits until something happens, and adds deaths; returns when that was. */
    private String next(List<String> events) throws Failure {
        for (;;) {
            LogLine line = library.log.next(STEP_MILLISECONDS);
            if (library.log.trouble() != null) {
                throw new Failure(Main.NOT_LOADED, library.log.trouble());
            }
            deaths.link(library.services);
            for (Deaths.Death death : deaths.take()) {
                events.add(change(death.time(), death.service(), "died"));
            }
            if (line != null) {
                library.services.take(line);
                if (isNotice(line)) events.add(line.time + "  " + line.text);
            }
            if (line != null) return line.time;
            if (!events.isEmpty()) return Deaths.now();
        }
    }

    /** The services that have another backend than the last time. */
    private List<String> changes(String time) {
        List<String> changes = new ArrayList<>();
        List<Services.Service> services = library.services.all();
        for (int i = 0; i < services.size(); i++) {
            String backend = services.get(i).backend();
            if (i == backends.size()) backends.add("");
            if (backend.equals(backends.set(i, backend))) continue;
            changes.add(change(time, services.get(i).name, backend));
        }
        return changes;
    }

    private static String change(String time, String service, String what) {
        return String.format("%s  %-15s  %s", time, service, what);
    }

    private static boolean isNotice(LogLine line) {
        return line.text.startsWith("serviceDied,")
                || line.text.startsWith("enter into ProcessServiceDied");
    }
}
