package com.quorvin.kalvornii.ctl;

import java.util.List;
import java.util.Map;

/** "status". */
final class StatusCommand {
    private static final String ROW = "%-15s  %-4s  %-84s  %s";  // 84: the longest instance
    private static final String NARROW_ROW = "%-15s  %-4s  %s";

    private StatusCommand() {}

    static int status(Options options, Console console) throws UsageException, Failure {
        options.allow(1, "--json", "--timeout");
        String name = options.words.isEmpty() ? null : options.words.get(0);
        if (name != null) new Services().find(name);
        Deaths deaths = new Deaths();
        Library library = Library.withLog(console, options.limit(), deaths);
        library.log.close();
        List<Services.Service> shown =
                name == null ? library.services.all() : List.of(library.services.find(name));
        for (Services.Service service : shown) {
            String died = deaths.timeOf(service);
            console.line(options.has("--json") ? Json.of(members(service, died))
                                               : row(service, died, console));
        }
        boolean isAbsent = name != null && shown.get(0).backend().equals("none");
        return isAbsent ? Main.ABSENT : Main.DONE;
    }

    private static Map<String, Object> members(Services.Service service, String died) {
        String backend = service.backend().equals("none") ? null : service.backend();
        return Json.members("service", service.name, "backend", backend, "instance",
                service.instance(), "said", service.said(), "died", died);
    }

    /** On a narrow terminal a line for each part that would not fit beside the others. */
    private static String row(Services.Service service, String died, Console console) {
        String said = (died == null ? "" : "died at " + died + "; ") + service.said();
        String row = String.format(ROW, service.name, service.backend(), service.instance(), said);
        if (!console.isTerminal() || row.length() <= console.columns()) return row;
        return String.format(NARROW_ROW, service.name, service.backend(), service.instance()) + "\n"
                + String.format(NARROW_ROW, "", "", said);
    }
}
