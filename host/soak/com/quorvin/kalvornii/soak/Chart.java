package com.quorvin.kalvornii.soak;

import java.util.ArrayList;
import java.util.List;
import java.util.Locale;

/** A small chart as SVG: values over calls or other numbers, both axes from 0. */
final class Chart {
    private static final int WIDTH = 320;
    private static final int HEIGHT = 132;
    private static final int LEFT = 56;
    private static final int TOP = 10;
    private static final int BOTTOM = 34;
    private static final int RIGHT = 14;

    private record Series(String colour, double[] xs, double[] ys, boolean dots) {}

    private final List<Series> series = new ArrayList<>();
    private final List<String> ticks = new ArrayList<>();
    private final String unit;
    private double right = 1;
    private double top;
    private double limit = Double.MAX_VALUE;

    /** @param unit behind the numbers on the left, " MiB" say */
    Chart(String unit) {
        this.unit = unit;
    }

    /** What is above that is drawn at the upper edge. */
    Chart upTo(double value) {
        limit = value;
        return this;
    }

    Chart line(String colour, double[] xs, double[] ys) {
        return add(new Series(colour, xs, ys, false));
    }

    Chart dots(String colour, double[] xs, double[] ys) {
        return add(new Series(colour, xs, ys, true));
    }

    /** Texts below the axis, at equal distances from its beginning to its end. */
    Chart ticks(String... texts) {
        ticks.addAll(List.of(texts));
        return this;
    }

    private Chart add(Series added) {
        series.add(added);
        for (double x : added.xs) right = Math.max(right, x);
        for (double y : added.ys) top = Math.max(top, Math.min(limit, y));
        return this;
    }

    String svg(String title) {
        if (top <= 0) top = 1;
        double step = step();
        top = Math.ceil(top / step) * step;
        StringBuilder svg = new StringBuilder(String.format(Locale.ROOT,
                "<svg viewBox=\"0 0 %d %d\" role=\"img\" aria-label=\"%s\"><title>%s</title>",
                WIDTH, HEIGHT, title, title));
        for (double value = 0; value <= top + step / 2; value += step) {
            svg.append(String.format(Locale.ROOT, "<line class=\"grid\" x1=\"%d\" x2=\"%d\" "
                    + "y1=\"%.1f\" y2=\"%.1f\"/><text class=\"y\" x=\"%d\" y=\"%.1f\">%s%s</text>",
                    LEFT, WIDTH - RIGHT, y(value), y(value), LEFT - 5, y(value) + 3,
                    number(value), unit));
        }
        for (Series drawn : series) draw(svg, drawn);
        for (int i = 0; i < ticks.size(); i++) {
            double x = LEFT + (double) i / (ticks.size() - 1) * (WIDTH - LEFT - RIGHT);
            String anchor = i == 0 ? "start" : i == ticks.size() - 1 ? "end" : "middle";
            String[] lines = ticks.get(i).split("\n");
            for (int n = 0; n < lines.length; n++) {
                svg.append(String.format(Locale.ROOT,
                        "<text class=\"x\" text-anchor=\"%s\" x=\"%.1f\" y=\"%d\">%s</text>",
                        anchor, x, HEIGHT - BOTTOM + 13 + 12 * n, lines[n]));
            }
        }
        return svg.append("</svg>").toString();
    }

    private void draw(StringBuilder svg, Series drawn) {
        if (drawn.xs.length == 0) return;
        StringBuilder path = new StringBuilder();
        for (int i = 0; i < drawn.xs.length; i++) {
            if (drawn.dots) {
                path.append(String.format(Locale.ROOT, "M%.1f %.1fh0", x(drawn.xs[i]),
                        y(drawn.ys[i])));
            } else {
                path.append(String.format(Locale.ROOT, "%s%.1f %.1f", i == 0 ? "M" : "L",
                        x(drawn.xs[i]), y(drawn.ys[i])));
            }
        }
        svg.append(String.format(Locale.ROOT, "<path class=\"%s\" stroke=\"%s\" d=\"%s\"/>",
                drawn.dots ? "dots" : "line", drawn.colour, path));
    }

    private double step() {
        double power = Math.pow(10, Math.floor(Math.log10(top)));
        for (double factor : new double[] {0.5, 1, 2, 5}) {
            if (top / (power * factor) <= 4) return power * factor;
        }
        return power * 10;
    }

    private double x(double value) {
        return LEFT + value / right * (WIDTH - LEFT - RIGHT);
    }

    private double y(double value) {
        return HEIGHT - BOTTOM - Math.min(value, top) / top * (HEIGHT - BOTTOM - TOP);
    }

    static String number(double value) {
        String format = value == Math.rint(value) ? "%,.0f" : "%,.1f";
        return String.format(Locale.ROOT, format, value);
    }
}
