package com.quorvin.kalvornii.ctl;

import java.time.LocalTime;
import java.time.format.DateTimeFormatter;
import java.util.ArrayList;
import java.util.List;

/** "status" and "watch". */
final class StatusCommand {
    private static final String ROW = "%-15s  %-4s  %-84s  %s";  // 84: the longest instance
    private static final String NARROW_ROW = "%-15s  %-4s  %s";
    private static final String CHANGE = "%s  %-15s  %s";
    private static final int EVENTS_SHOWN = 5;

    private final Console console;
    private Library library;

    StatusCommand(Console console) {
        this.console = console;
    }

    int status(Options options) throws UsageException, LoadException {
        options.allow(0);
        load();
        library.log.close();
        if (library.services.isAnyAbsent()) library.tellOfAbsence();
        for (Services.Service service : library.services.all()) {
            console.out.println(String.join("\n", rows(service)));
        }
        return Main.DONE;
    }

    private void load() throws LoadException {
        library = new Library(console);
        if (library.log.trouble() != null) {
            throw new LoadException("the library has loaded, but only its log tells of the "
                    + "services, and that cannot be read: " + library.log.trouble());
        }
    }

    /** On a narrow terminal a line for each part that would not fit beside the others. */
    private List<String> rows(Services.Service service) {
        List<String> rows = new ArrayList<>();
        String row = String.format(
                ROW, service.name, service.backend(), service.instance(), service.said());
        if (!console.isTerminal() || row.length() <= console.columns()) {
            rows.add(row);
        } else {
            rows.add(
                    String.format(NARROW_ROW, service.name, service.backend(), service.instance()));
            rows.add(String.format(NARROW_ROW, "", "", service.said()));
        }
        return rows;
    }

    int watch(Options options) throws UsageException, LoadException {
        options.allow(0);
        load();
        if (library.services.isAnyAbsent()) library.tellOfAbsence();
        if (console.isTerminal()) return watchOnTerminal();
        String now = LocalTime.now().format(DateTimeFormatter.ofPattern("HH:mm:ss.SSS"));
        List<String> before = new ArrayList<>();
        for (Services.Service service : library.services.all()) {
            before.add(service.backend());
            console.out.println(String.format(CHANGE, now, service.name, service.backend()));
        }
        while (!console.out.checkError()) {  // somebody reads on
            LogLine line = next();
            if (isDeath(line)) console.out.println(line.time + "  " + line.text);
            List<Services.Service> services = library.services.all();
            for (int i = 0; i < services.size(); i++) {
                String backend = services.get(i).backend();
                if (backend.equals(before.set(i, backend))) continue;
                console.out.println(
                        String.format(CHANGE, line.time, services.get(i).name, backend));
            }
        }
        return Main.DONE;
    }

    private LogLine next() throws LoadException {
        for (;;) {
            LogLine line = library.log.next(1000);
            if (line != null) {
                library.services.take(line);
                return line;
            }
            if (library.log.trouble() != null) throw new LoadException(library.log.trouble());
        }
    }

    private static boolean isDeath(LogLine line) {
        return line.text.startsWith("serviceDied,")
                || line.text.startsWith("enter into ProcessServiceDied");
    }

    private int watchOnTerminal() throws LoadException {
        List<String> events = new ArrayList<>();
        for (;;) {
            StringBuilder screen = new StringBuilder("\033[H\033[J");
            for (Services.Service service : library.services.all()) {
                screen.append(cut(String.format(
                                      NARROW_ROW, service.name, service.backend(), service.said())))
                        .append('\n');
            }
            screen.append('\n');
            for (String event : events) screen.append(cut(event)).append('\n');
            screen.append("Until interrupted (Ctrl-C).");
            console.out.println(screen);
            LogLine line = next();
            if (isDeath(line)) events.add(line.time + "  " + line.text);
            if (events.size() > EVENTS_SHOWN) events.remove(0);
        }
    }

    private String cut(String line) {
        return line.length() < console.columns() ? line : line.substring(0, console.columns() - 1);
    }
}
