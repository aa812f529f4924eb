package com.quorvin.kalvornii.ctl;

import static java.nio.charset.StandardCharsets.UTF_8;

import java.io.FileDescriptor;
import java.io.FileOutputStream;
import java.io.IOException;
import java.io.InputStream;
import java.io.OutputStream;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.regex.Pattern;

/**
 * Where the command writes and reads, in UTF-8 whatever the locale. The scripts that start it tell
 * of the terminal: KALVORN_TERMINALS has the digits of those standard streams that are one, and
 * KALVORN_SIZE is "ROWS COLUMNS" when standard output is.
 */
final class Console {
    private static final Pattern CONTROL = Pattern.compile("[\\p{Cc}&&[^\n]]");

    final Lines in;
    private final OutputStream out;
    private final OutputStream err;
    private final String terminals;
    private final int[] size;
    private String trouble;  // why standard output takes no more

    Console() {
        this(System.in, new FileOutputStream(FileDescriptor.out),
                new FileOutputStream(FileDescriptor.err), System.getenv());
    }

    Console(InputStream in, OutputStream out, OutputStream err, Map<String, String> environment) {
        this.in = new Lines(in);
        this.out = out;
        this.err = err;
        terminals = environment.getOrDefault("KALVORN_TERMINALS", "");
        size = size(environment.getOrDefault("KALVORN_SIZE", ""));
    }

    private static int[] size(String told) {
        String[] words = told.matches("[1-9]\\d{0,3} [1-9]\\d{0,3}") ? told.split(" ")
                                                                     : new String[] {"24", "80"};
        return new int[] {Integer.parseInt(words[0]), Integer.parseInt(words[1])};
    }

    /** A line of the result; on a terminal what would control it is escaped. */
    void line(String line) {
        raw((isTerminal() ? escaped(line) : line) + "\n");
    }

    /** What has the terminal's controls in it, or is known to have none. */
    void raw(String text) {
        try {
            if (trouble == null) out.write(text.getBytes(UTF_8));
        } catch (IOException e) {
            trouble = e.getMessage();
        }
    }

    /** Says something about the command itself, on standard error. */
    void tell(String message) {
        note("kalvornctl: " + message);
    }

    /** A line for standard error as it is. */
    void note(String line) {
        tellRaw((terminals.contains("2") ? escaped(line) : line) + "\n");
    }

    private void tellRaw(String text) {
        try {
            err.write(text.getBytes(UTF_8));
        } catch (IOException e) {
            // There is no other place to tell it.
        }
    }

    /** The text without control characters other than the newlines that this command puts in. */
    static String escaped(String text) {
        return CONTROL.matcher(text).replaceAll(
                found -> String.format("\\\\x%02x", (int) found.group().charAt(0)));
    }

    /** Why results were lost; null when none were, or nobody reads on. */
    String lost() {
        return isCut() && !trouble.contains("Broken pipe") ? trouble : null;
    }

    /** Whether nothing that is written arrives any more. */
    boolean isCut() {
        return trouble != null;
    }

    boolean isTerminal() {
        return terminals.contains("1");
    }

    int rows() {
        return size[0];
    }

    /** The terminal's width, at least 40. */
    int columns() {
        return Math.max(40, size[1]);
    }

    /** Words on lines that the terminal has room for, which begin so, the first and the others. */
    List<String> wrapped(String first, String others, String text) {
        List<String> lines = new ArrayList<>();
        StringBuilder line = new StringBuilder(first);
        String blank = "";
        for (String word : text.split(" ")) {
            if (line.length() + 1 + word.length() >= columns()) {
                lines.add(line.toString());
                line = new StringBuilder(others);
                blank = "";
            }
            line.append(blank).append(word);
            blank = " ";
        }
        lines.add(line.toString());
        return lines;
    }

    boolean canAsk() {
        return terminals.contains("0");
    }

    /** Whether the answer to a question is yes. */
    boolean ask(String question) {
        tellRaw(question + " [y/N] ");
        try {
            String answer = in.next();
            return answer != null && answer.trim().matches("[yY]([eE][sS])?");
        } catch (IOException e) {
            return false;
        }
    }
}
