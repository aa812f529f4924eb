package com.quorvin.kalvornii.soak;

import com.quorvin.kalvornii.soak.Situation.Way;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.function.ToLongFunction;

/** A soak's report as one page that needs nothing else. */
final class Page {
    private static final String BLUE = "#1f5fbf";
    private static final String RED = "#c2371f";
    private static final String GREEN = "#2e8540";
    private static final double MEBIBYTE = 1024 * 1024;
    private static final String STYLE = """
            body { font: 15px/1.5 system-ui, sans-serif; color: #1c2430; background: #fff;
                   max-width: 1320px; margin: 2em auto; padding: 0 1.5em; }
            h1 { font-size: 1.6em; margin-bottom: 0; } h2 { margin: 2em 0 .4em; font-size: 1.2em; }
            p { max-width: 62em; } .quiet { color: #5b6675; }
            .facts { display: flex; flex-wrap: wrap; gap: 1em; margin: 1.2em 0; }
            .facts div { border: 1px solid #d5dbe3; border-top: 4px solid #2e8540;
                         border-radius: 4px; padding: .6em 1em; }
            .facts .bad { border-top-color: #c2371f; }
            .facts b { display: block; font-size: 1.5em; }
            .charts { display: grid; gap: .3em 1em; align-items: center; }
            .charts h3 { margin: 0; font-size: .95em; } svg { width: 100%; height: auto; }
            .grid { stroke: #e3e7ec; } .line { fill: none; stroke-width: 1.6; }
            .dots { fill: none; stroke-width: 4; stroke-linecap: round; stroke-opacity: .55; }
            svg text { font-size: 10px; fill: #5b6675; } .y { text-anchor: end; }
            table { border-collapse: collapse; font-variant-numeric: tabular-nums; }
            th, td { padding: .15em .8em; border-bottom: 1px solid #e3e7ec; text-align: right;
                     white-space: nowrap; }
            th { position: sticky; top: 0; background: #fff; color: #5b6675; font-weight: 600; }
            td:first-child, th:first-child, td.t, th.t { text-align: left; }
            tr.new td { border-top: 1px solid #aab4c0; }
            pre { background: #f4f6f8; padding: 1em; overflow: auto; font-size: 12px; }
            .key { display: inline-block; width: .8em; height: .8em; border-radius: 50%; }
            """;

    private final Report report;
    private final StringBuilder html = new StringBuilder();

    Page(Report report) {
        this.report = report;
    }

    String html() {
        html.append("<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
                + "<title>Soak</title><style>\n").append(STYLE).append("</style></head><body>\n");
        heading();
        failures();
        devices();
        listeners();
        kept();
        latencies();
        return html.append("</body></html>\n").toString();
    }

    private void put(String format, Object... values) {
        html.append(String.format(Locale.ROOT, format, values)).append('\n');
    }

    static String escape(String text) {
        return text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;");
    }

    private void heading() {
        put("<h1>Soak of lib_kalvorn.so</h1><p class=\"quiet\">%s; seed %d; end: %s</p>",
                escape(Report.machine()), report.settings.seed(), report.end);
        put("<div class=\"facts\">");
        fact(report.calls() > 0, "calls in %.0f s".formatted(report.seconds),
                "%,d", report.calls());
        fact(true, "deaths of services and processes", "%,d", report.deaths());
        fact(report.wrong() == 0, "wrong answers", "%d", report.wrong());
        fact(!Boolean.FALSE.equals(report.doesNotGrow()), "growth per million calls", "%s", report.growth());
        fact(report.referencesLeft() == 0, "references left by deaths", "%d",
                report.referencesLeft());
        fact(!Boolean.FALSE.equals(report.isFlat()), "resident size of the last halves moved by",
                "%s", report.moved());
        put("</div>");
    }

    private void fact(boolean good, String what, String format, Object value) {
        put("<div%s><b>%s</b>%s</div>", good ? "" : " class=\"bad\"",
                String.format(Locale.ROOT, format, value), what);
    }

    private void failures() {
        put("<h2>What failed</h2>");
        boolean nothing = true;
        for (DeviceResult device : report.devices) {
            for (Finding.Wrong wrong : device.wrong()) {
                put("<p><b>%s</b> on the device %s, after %d deaths (%s): %s</p>", wrong.method(),
                        device.device, wrong.afterDeaths(), wrong.circumstances(),
                        escape(wrong.verdict()));
            }
            if (device.failure != null) {
                put("<p>The device %s: </p><pre>%s</pre>", device.device, escape(device.failure));
            }
            if (!device.log.isEmpty()) {
                put("<pre>%s</pre>", escape(String.join("\n", device.log)));
            }
            nothing &= device.isRight();
        }
        for (Finding.Kept call : report.unexpected()) {
            put("<p><b>%s</b> (%s) leaves %.1f bytes behind, and should %s.</p>", call.method(),
                    words(call.way()), call.bytesPerCall(),
                    call.onPurpose() ? "keep its texts" : "leave nothing");
            nothing = false;
        }
        if (nothing) put("<p>Nothing.</p>");
    }

    private void devices() {
        put("""
                <h2>Over calls and deaths</h2>
                <p>Each device has a process of its own, one after the other, in which two threads
                call. In the beginning all services die at once, then single ones and processes with
                several. The Java heap has a fixed size, all of it is touched at the start, and its
                collector returns nothing; freed native memory is not kept apart for each thread.
                What grows is the library, the simulated device or the virtual machine's own memory;
                the steps in the native heap are the latter, whose compiler takes and gives by the
                megabyte. The table therefore tells what the typical stretch of calls, and the
                typical death, left behind.</p>""");
        put("<div class=\"charts\" style=\"grid-template-columns: "
                + "9em repeat(%d, minmax(0, 340px))\">", report.devices.size());
        put("<span></span>");
        for (DeviceResult device : report.devices) put("<h3>%s</h3>", device.device);
        row("Resident size", Finding.Sample::resident, " MiB", MEBIBYTE);
        row("Native heap in use", Finding.Sample::inUse, " MiB", MEBIBYTE);
        row("Service objects in memory (a proxy holds its own)", Finding.Sample::liveServices, "",
                1);
        row("Death links", Finding.Sample::deathLinks, "", 1);
        row("Threads", Finding.Sample::threads, "", 1);
        row("File descriptors", Finding.Sample::files, "", 1);
        put("</div>");
        put("""
                <table><tr><th class="t">last half</th><th>resident moved by</th>
                <th class="t">of</th><th>count</th><th>typical bytes each</th>
                <th>all bytes, with the virtual machine's</th></tr>""");
        for (DeviceResult device : report.devices) {
            String first = "<tr class=\"new\"><td>%s</td><td>%.2f %%</td>".formatted(device.device,
                    device.residentMoved() * 100);
            for (Finding.Grown grown : device.growth()) {
                put("%s<td class=\"t\">%s</td><td>%,d</td><td>%,.3f</td><td>%,d</td></tr>", first,
                        grown.what(), grown.count(), grown.typicalBytesEach(), grown.totalBytes());
                first = "<tr><td></td><td></td>";
            }
        }
        put("</table>");
    }

    private void row(String title, ToLongFunction<Finding.Sample> column, String unit,
            double scale) {
        put("<h3>%s</h3>", title);
        for (DeviceResult device : report.devices) {
            Chart chart = new Chart(unit);
            device.samples().forEach(sample -> chart.point(BLUE, sample.calls(),
                    column.applyAsLong(sample) / scale));
            long calls = device.state.calls();
            put("%s", chart.svg(title + ", " + device.device, "0 calls\n0 deaths",
                    tick(calls / 2, device), tick(calls, device)));
        }
    }

    private static String tick(long calls, DeviceResult device) {
        long deaths = device.samples().stream().filter(sample -> sample.calls() <= calls)
                .mapToLong(Finding.Sample::deaths).max().orElse(0);
        return String.format(Locale.ROOT, "%,d\n%,d", calls, deaths);
    }

    // HIDL listeners add up on purpose, and each restart hears of all.
    private void listeners() {
        for (DeviceResult device : report.devices) {
            List<Finding.Restart> restarts = device.all(Finding.Restart.class);
            if (!device.device.equals("hidl") || restarts.isEmpty()) continue;
            put("""
                    <h2>HIDL listeners, which add up</h2>
                    <p>Each connection of a HIDL service registers a listener and takes none back,
                    on purpose; each registration of a service is told to all listeners of its
                    interface. Restarts take longer with their number, as much as the listeners have
                    to be told.</p>""");
            for (Finding.AfterDeathsOfAll all : device.all(Finding.AfterDeathsOfAll.class)) {
                put("<p>After %,d deaths of all services at once there were %,d listeners, and %,d "
                        + "notifications had come%s.</p>", all.deaths(), all.listeners(),
                        all.notifications(), all.deaths() != 40 ? "" : " (on a real platform 451 "
                        + "and 9,471 after 40 restarts of a process with all eleven services)");
            }
            restartTimes(restarts);
        }
    }

    private void restartTimes(List<Finding.Restart> restarts) {
        String key = " <span class=\"key\" style=\"background:%s\"></span> of ";
        put("<h3>Time of a restart over listeners:" + key + "all services," + key + "a process,"
                + key + "one service; the slowest twentieth at the upper edge</h3>", RED, BLUE,
                GREEN);
        long[] sorted =
                restarts.stream().mapToLong(Finding.Restart::microseconds).sorted().toArray();
        Chart times = new Chart(" ms").ofDotsUpTo(sorted[sorted.length * 19 / 20] / 1000.0);
        Map<String, String> colours = Map.of("all", RED, "process", BLUE, "one", GREEN);
        for (Finding.Restart restart : restarts) {
            times.point(colours.get(restart.what()), restart.listeners(),
                    restart.microseconds() / 1000.0);
        }
        long most = restarts.stream().mapToLong(Finding.Restart::listeners).max().orElse(0);
        put("<div style=\"max-width: 480px\">%s</div>",
                times.svg("Time of a restart over listeners", "0 listeners",
                        Chart.number(most / 2), Chart.number(most)));
    }

    private void kept() {
        put("""
                <h2>Methods that keep their texts</h2>
                <p>On purpose they never release what they read from Java: measured with texts of
                sixteen characters, after the calls above. Of the other calls, over each way that
                they are served, %,d of %,d left nothing.</p>""",
                report.kept.stream().filter(call -> !call.onPurpose() && call.isExpected()).count(),
                report.kept.stream().filter(call -> !call.onPurpose()).count());
        put("<table><tr><th class=\"t\">method</th><th class=\"t\">served over</th>"
                + "<th>bytes per call</th><th>100 MiB last, at a call a second</th></tr>");
        for (Finding.Kept call : report.kept) {
            if (!call.onPurpose()) continue;
            double days = 100 * MEBIBYTE / Math.max(1, call.bytesPerCall()) / 86400;
            put("<tr><td>%s</td><td class=\"t\">%s</td><td>%.1f</td><td>%.1f days</td></tr>",
                    call.method(), words(call.way()), call.bytesPerCall(), days);
        }
        put("</table>");
    }

    private static String words(Way way) {
        return switch (way) {
            case ABSENT -> "absent";
            case NO_SERVICE -> "no service";
            default -> way.name();
        };
    }

    private void latencies() {
        put("""
                <h2>Time of a call, in microseconds</h2>
                <p>As Java sees it, two threads at once on the simulated device, whose services are
                in the same process; to 6 %%. Calls made while a service died or came back are
                not in it.</p>""");
        put("<table><tr><th class=\"t\">method</th><th class=\"t\">served over</th><th>calls</th>");
        for (String name : Report.SHARES.keySet()) put("<th>%s</th>", name);
        put("<th>max</th></tr>");
        report.durations.forEach((method, ways) -> {
            String[] first = {"<tr class=\"new\"><td>" + method + "</td>"};
            ways.forEach((way, histogram) -> {
                put("%s<td class=\"t\">%s</td><td>%,d</td>", first[0], words(way),
                        histogram.count());
                for (double share : Report.SHARES.values()) {
                    put("<td>%,.1f</td>", histogram.percentile(share) / 1000.0);
                }
                put("<td>%,.0f</td></tr>", histogram.greatest() / 1000.0);
                first[0] = "<tr><td></td>";
            });
        });
        put("</table>");
    }
}
