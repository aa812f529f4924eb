package com.quorvin.kalvornii.soak;

import java.util.ArrayList;
import java.util.List;
import java.util.Locale;

/** A soak's report as one page that needs nothing else. */
final class Page {
    static final double[] SHARES = {0.5, 0.9, 0.99, 0.999};

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
                escape(Machine.describe()), report.settings.seed(), report.end);
        put("<div class=\"facts\">");
        fact(report.calls() > 0, "calls in %.0f s".formatted(report.seconds),
                "%,d", report.calls());
        fact(true, "deaths of services and processes", "%,d", report.deaths());
        fact(report.wrong() == 0, "wrong answers", "%d", report.wrong());
        fact(report.doesNotGrow(), "growth per million calls", "%s", report.growth());
        fact(report.referencesLeft() == 0, "references left by deaths", "%d",
                report.referencesLeft());
        fact(report.isFlat(), "resident size of the last halves moved by", "%.2f %%",
                report.residentMoved() * 100);
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
            for (DeviceResult.Wrong wrong : device.wrong) {
                put("<p><b>%s</b> on the device %s, after %s deaths (%s): %s</p>", wrong.method(),
                        device.device, wrong.deaths(), wrong.happened(), escape(wrong.verdict()));
            }
            if (device.failure != null) {
                put("<p>The device %s: </p><pre>%s</pre>", device.device, escape(device.failure));
            }
            if (!device.log.isEmpty()) {
                put("<pre>%s</pre>", escape(String.join("\n", device.log)));
            }
            nothing &= device.isRight();
        }
        for (DeviceResult.Kept call : report.unexpected()) {
            put("<p><b>%s</b> (%s) leaves %.1f bytes behind, and %s.</p>", call.method(),
                    call.way(), call.bytes(), call.onPurpose() ? "should keep its texts" : "should "
                    + "leave nothing");
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
        row("Resident size", DeviceResult.RESIDENT, " MiB", MEBIBYTE);
        row("Native heap in use", DeviceResult.IN_USE, " MiB", MEBIBYTE);
        row("Service objects in memory (a proxy holds its own)", DeviceResult.LIVE_SERVICES, "", 1);
        row("Death links", DeviceResult.DEATH_LINKS, "", 1);
        row("HIDL listeners", DeviceResult.LISTENERS, "", 1);
        row("Threads", DeviceResult.THREADS, "", 1);
        row("File descriptors", DeviceResult.FILES, "", 1);
        put("</div>");
        put("""
                <table><tr><th class="t">last half</th><th>resident moved by</th>
                <th class="t">of</th><th>count</th><th>typical bytes each</th>
                <th>all bytes, with the virtual machine's</th></tr>""");
        for (DeviceResult device : report.devices) {
            String first = "<tr class=\"new\"><td>%s</td><td>%.2f %%</td>".formatted(device.device,
                    device.residentMoved() * 100);
            for (var grown : device.growth.entrySet()) {
                put("%s<td class=\"t\">%s</td><td>%,d</td><td>%,.3f</td><td>%,d</td></tr>", first,
                        grown.getKey(), grown.getValue().count(), grown.getValue().typical(),
                        grown.getValue().total());
                first = "<tr><td></td><td></td>";
            }
        }
        put("</table>");
    }

    private void row(String title, int column, String unit, double scale) {
        put("<h3>%s</h3>", title);
        for (DeviceResult device : report.devices) {
            Chart chart = new Chart(unit).line(BLUE, values(device.samples, DeviceResult.CALLS, 1),
                    values(device.samples, column, scale));
            long[] last = device.samples.isEmpty() ? new long[12]
                    : device.samples.get(device.samples.size() - 1);
            String title2 = title + ", " + device.device;
            put("%s", chart.ticks("0 calls\n0 deaths", tick(last[0] / 2, device),
                    tick(last[0], device)).svg(title2));
        }
    }

    private static String tick(long calls, DeviceResult device) {
        long deaths = 0;
        for (long[] sample : device.samples) {
            if (sample[DeviceResult.CALLS] <= calls) deaths = sample[DeviceResult.DEATHS];
        }
        return String.format(Locale.ROOT, "%,d\n%,d", calls, deaths);
    }

    private static double[] values(List<long[]> samples, int column, double scale) {
        return samples.stream().mapToDouble(sample -> sample[column] / scale).toArray();
    }

    // HIDL listeners add up on purpose, and each restart hears of all.
    private void listeners() {
        DeviceResult device = report.devices.stream()
                .filter(candidate -> candidate.device.equals("hidl")).findFirst().orElse(null);
        if (device == null || device.restarts.isEmpty()) return;
        put("""
                <h2>HIDL listeners, which add up</h2>
                <p>Each connection of a HIDL service registers a listener and takes none back, on
                purpose; each registration of a service is told to all listeners of its interface.
                Restarts take longer with their number, as much as the listeners have to be
                told:""");
        if (device.afterDeathsOfAll != null) {
            put(" after %,d deaths of all services at once there were %,d listeners, and %,d "
                    + "notifications had come", device.afterDeathsOfAll[0],
                    device.afterDeathsOfAll[1], device.afterDeathsOfAll[2]);
            if (device.afterDeathsOfAll[0] == 40) {
                put(" (on a real platform 451 and 9,471 after 40 restarts of a process with all "
                        + "eleven services)");
            }
        }
        html.setLength(html.length() - 1);
        put(".</p>");
        put("<div class=\"charts\" style=\"grid-template-columns: repeat(2, minmax(0, 480px))\">");
        String key = " <span class=\"key\" style=\"background:%s\"></span> of ";
        put("<h3>Time of a restart over listeners:" + key + "all services," + key + "a process,"
                + key + "one service; the slowest twentieth at the upper edge</h3>", RED, BLUE,
                GREEN);
        put("<h3>Notifications over deaths</h3>");
        double[] sorted = device.restarts.stream()
                .mapToDouble(DeviceResult.Restart::milliseconds).sorted().toArray();
        Chart times = new Chart(" ms").upTo(sorted[sorted.length * 19 / 20]);
        long most = 0;
        for (String[] kind : new String[][] {{"all", RED}, {"process", BLUE}, {"one", GREEN}}) {
            List<DeviceResult.Restart> restarts = new ArrayList<>(device.restarts);
            restarts.removeIf(restart -> !restart.what().equals(kind[0]));
            times.dots(kind[1],
                    restarts.stream().mapToDouble(restart -> restart.listeners()).toArray(),
                    restarts.stream().mapToDouble(DeviceResult.Restart::milliseconds).toArray());
            for (DeviceResult.Restart restart : restarts) {
                most = Math.max(most, restart.listeners());
            }
        }
        put("%s", times.ticks("0 listeners", Chart.number(most / 2), Chart.number(most))
                .svg("Time of a restart over listeners"));
        put("%s", new Chart("").line(BLUE, values(device.samples, DeviceResult.DEATHS, 1),
                values(device.samples, DeviceResult.NOTIFICATIONS, 1))
                .ticks("0 deaths", Chart.number(device.deaths / 2), Chart.number(device.deaths))
                .svg("Notifications over deaths"));
        put("</div>");
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
        for (DeviceResult.Kept call : report.kept) {
            if (!call.onPurpose()) continue;
            double days = call.bytes() <= 0 ? 0 : 100 * MEBIBYTE / call.bytes() / 86400;
            put("<tr><td>%s</td><td class=\"t\">%s</td><td>%.1f</td><td>%.1f days</td></tr>",
                    call.method(), words(call.way()), call.bytes(), days);
        }
        put("</table>");
    }

    private static String words(String way) {
        return switch (way) {
            case "ABSENT" -> "absent";
            case "NO_SERVICE" -> "no service";
            default -> way;
        };
    }

    static String name(double share) {
        return "p" + String.format(Locale.ROOT, "%s", share * 100).replaceAll("\\.0$", "");
    }

    private void latencies() {
        put("""
                <h2>Time of a call, in microseconds</h2>
                <p>As Java sees it, two threads at once on the simulated device, whose services are
                in the same process; to 6 %%. Calls made while a service died or came back are
                not in it.</p>""");
        put("<table><tr><th class=\"t\">method</th><th class=\"t\">served over</th><th>calls</th>");
        for (double share : SHARES) put("<th>%s</th>", name(share));
        put("<th>max</th></tr>");
        report.durations.forEach((method, ways) -> {
            String first = "<tr class=\"new\"><td>" + method + "</td>";
            for (Caller.Way way : Caller.Way.values()) {
                Histogram histogram = ways.get(way);
                if (histogram == null) continue;
                put("%s<td class=\"t\">%s</td><td>%,d</td>", first, words(way.name()),
                        histogram.count());
                for (double share : SHARES) {
                    put("<td>%,.1f</td>", histogram.percentile(share) / 1000.0);
                }
                put("<td>%,.0f</td></tr>", histogram.greatest() / 1000.0);
                first = "<tr><td></td>";
            }
        });
        put("</table>");
    }
}
