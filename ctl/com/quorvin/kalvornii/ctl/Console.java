package com.quorvin.kalvornii.ctl;

import java.io.FileDescriptor;
import java.io.FileOutputStream;
import java.io.FilterOutputStream;
import java.io.IOException;
import java.io.InputStream;
import java.io.OutputStream;
import java.io.PrintStream;
import java.io.UnsupportedEncodingException;
import java.util.Map;

/**
 * Where the command writes and reads, in UTF-8 whatever the locale. The scripts that start it tell
 * of the terminal: KALVORN_TERMINALS has the digits of those standard streams that are one, and
 * KALVORN_SIZE is "ROWS COLUMNS" when standard output is.
 */
final class Console {
    final Lines in;
    private final Output output;
    private final PrintStream out;
    private final PrintStream err;
    private final String terminals;
    private final int[] size;

    /** Standard output that keeps why it failed, which a PrintStream does not tell. */
    private static final class Output extends FilterOutputStream {
        private String trouble;

        Output(OutputStream out) {
            super(out);
        }

        @Override
        public void write(byte[] bytes, int from, int length) throws IOException {
            try {
                out.write(bytes, from, length);
            } catch (IOException e) {
                trouble = e.getMessage();
                throw e;
            }
        }
    }

    Console() {
        this(System.in, new FileOutputStream(FileDescriptor.out),
                new FileOutputStream(FileDescriptor.err), System.getenv());
    }

    Console(InputStream in, OutputStream out, OutputStream err, Map<String, String> environment) {
        this.in = new Lines(in);
        output = new Output(out);
        this.out = stream(output);
        this.err = stream(err);
        terminals = environment.getOrDefault("KALVORN_TERMINALS", "");
        size = size(environment.getOrDefault("KALVORN_SIZE", ""));
    }

    private static PrintStream stream(OutputStream stream) {
        try {
            return new PrintStream(stream, true, "UTF-8");
        } catch (UnsupportedEncodingException e) {
            throw new IllegalStateException(e);
        }
    }

    private static int[] size(String told) {
        String[] words = told.matches("[1-9]\\d{0,3} [1-9]\\d{0,3}") ? told.split(" ")
                                                                     : new String[] {"24", "80"};
        return new int[] {Integer.parseInt(words[0]), Integer.parseInt(words[1])};
    }

    /** A line of the result; on a terminal what would control it is escaped. */
    void line(String line) {
        out.println(isTerminal() ? escaped(line) : line);
    }

    /** What has the terminal's controls in it, or is known to have none. */
    void raw(String text) {
        out.print(text);
        out.flush();
    }

    /** Says something about the command itself, on standard error. */
    void tell(String message) {
        note("kalvornctl: " + message);
    }

    /** A line for standard error as it is. */
    void note(String line) {
        err.println(terminals.contains("2") ? escaped(line) : line);
    }

    /** The text without control characters other than the newlines that this command puts in. */
    static String escaped(String text) {
        StringBuilder line = new StringBuilder();
        for (char c : text.toCharArray()) {
            line.append(c == '\n' || !Character.isISOControl(c)
                            ? String.valueOf(c)
                            : String.format("\\x%02x", (int) c));
        }
        return line.toString();
    }

    /** Why results were lost; null when none were, or nobody reads on. */
    String lost() {
        boolean isUnread = output.trouble != null && output.trouble.contains("Broken pipe");
        return isUnread ? null : output.trouble;
    }

    /** Whether nothing that is written arrives any more. */
    boolean isCut() {
        return out.checkError();
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

    boolean canAsk() {
        return terminals.contains("0");
    }

    /** Whether the answer to a question is yes. */
    boolean ask(String question) {
        err.print(question + " [y/N] ");
        err.flush();
        try {
            String answer = in.next();
            return answer != null && answer.trim().matches("[yY]([eE][sS])?");
        } catch (IOException e) {
            return false;
        }
    }
}
