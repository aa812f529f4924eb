package com.quorvin.kalvornii.soak;

import java.util.ArrayList;
import java.util.List;
import java.util.Locale;

/** A small chart as SVG, of a line or of dots; both axes from 0. */
final class Chart {
    private static final int WIDTH = 320;
    private static final int HEIGHT = 132;
    private static final int LEFT = 56;
    private static final int TOP = 10;
    private static final int BOTTOM = 34;
    private static final int RIGHT = 14;

    private record Point(String colour, double x, double y) {}

    private final StringBuilder svg = new StringBuilder();
    private final List<Point> points = new ArrayList<>();
    private final String unit;
    private boolean dots;
    private double limit = Double.MAX_VALUE;
    private double right;
    private double top;

    /** @param unit behind the numbers on the left, " MiB" say */
    Chart(String unit) {
        this.unit = unit;
    }

    /** What is above that is drawn at the upper edge. */
    Chart ofDotsUpTo(double value) {
        dots = true;
        limit = value;
        return this;
    }

    void point(String colour, double x, double y) {
        points.add(new Point(colour, x, y));
    }

    /** @param ticks below the axis, at equal distances from its beginning to its end */
    String svg(String title, String... ticks) {
        right = points.stream().mapToDouble(Point::x).reduce(1, Math::max);
        double most = points.stream().mapToDouble(Point::y).reduce(0, Math::max);
        double step = step(most > 0 ? Math.min(most, limit) : 1);
        put("<svg viewBox=\"0 0 %d %d\" role=\"img\" aria-label=\"%s\"><title>%s</title>", WIDTH,
                HEIGHT, title, title);
        for (double value = 0; value <= top + step / 2; value += step) {
            put("<line class=\"grid\" x1=\"%d\" x2=\"%d\" y1=\"%.1f\" y2=\"%.1f\"/>"
                    + "<text class=\"y\" x=\"%d\" y=\"%.1f\">%s%s</text>", LEFT, WIDTH - RIGHT,
                    y(value), y(value), LEFT - 5, y(value) + 3, number(value), unit);
        }
        drawPoints();
        for (int i = 0; i < ticks.length; i++) {
            double x = LEFT + (double) i / (ticks.length - 1) * (WIDTH - LEFT - RIGHT);
            String anchor = i == 0 ? "start" : i == ticks.length - 1 ? "end" : "middle";
            int y = HEIGHT - BOTTOM + 1;
            for (String line : ticks[i].split("\n")) {
                put("<text class=\"x\" text-anchor=\"%s\" x=\"%.1f\" y=\"%d\">%s</text>", anchor, x,
                        y += 12, line);
            }
        }
        return svg.append("</svg>").toString();
    }

    private void put(String format, Object... values) {
        svg.append(String.format(Locale.ROOT, format, values));
    }

    private void drawPoints() {
        for (String colour : points.stream().map(Point::colour).distinct().toList()) {
            put("<path class=\"%s\" stroke=\"%s\" d=\"", dots ? "dots" : "line", colour);
            String move = "M";
            for (Point point : points) {
                if (!point.colour.equals(colour)) continue;
                put(dots ? "M%.1f %.1fh0" : move + "%.1f %.1f", x(point.x), y(point.y));
                move = "L";
            }
            put("\"/>");
        }
    }

    /** The distance of the lines; the top is one of them then. */
    private double step(double most) {
        double step = Math.pow(10, Math.floor(Math.log10(most))) / 2;
        for (double factor : new double[] {2, 2, 2.5, 2}) {
            if (most / step > 4) step *= factor;
        }
        top = Math.ceil(most / step) * step;
        return step;
    }

    private double x(double value) {
        return LEFT + value / right * (WIDTH - LEFT - RIGHT);
    }

    private double y(double value) {
        return HEIGHT - BOTTOM - Math.min(value, top) / top * (HEIGHT - BOTTOM - TOP);
    }

    static String number(double value) {
        return String.format(Locale.ROOT, value == Math.rint(value) ? "%,.0f" : "%,.1f", value);
    }
}
