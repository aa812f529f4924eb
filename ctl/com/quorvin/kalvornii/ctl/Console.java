package com.quorvin.kalvornii.ctl;

import static java.nio.charset.StandardCharsets.UTF_8;

import java.io.BufferedReader;
import java.io.FileDescriptor;
import java.io.FileOutputStream;
import java.io.IOException;
import java.io.InputStreamReader;
import java.io.PrintStream;
import java.io.UnsupportedEncodingException;

/**
 * Where the command writes and reads, in UTF-8 whatever the locale. The scripts that start it tell
 * of the terminal: KALVORN_COLUMNS is its width when standard output is one, and KALVORN_ASK is set
 * when standard input is one.
 */
final class Console {
    private final Output output = new Output();
    final PrintStream out = stream(output);
    final BufferedReader in = new BufferedReader(new InputStreamReader(System.in, UTF_8));
    private final PrintStream err = stream(new FileOutputStream(FileDescriptor.err));

    /** Standard output that keeps why it failed, which a PrintStream does not tell. */
    private static final class Output extends FileOutputStream {
        private String trouble;

        Output() {
            super(FileDescriptor.out);
        }

        @Override
        public void write(byte[] bytes, int from, int length) throws IOException {
            try {
                super.write(bytes, from, length);
            } catch (IOException e) {
                trouble = e.getMessage();
                throw e;
            }
        }
    }

    private static PrintStream stream(FileOutputStream file) {
        try {
            return new PrintStream(file, true, "UTF-8");
        } catch (UnsupportedEncodingException e) {
            throw new IllegalStateException(e);
        }
    }

    /** Says something about the command itself, on standard error. */
    void tell(String message) {
        err.println("kalvornctl: " + message);
    }

    /** A line for standard error as it is. */
    void show(String line) {
        err.println(line);
    }

    /** Why results were lost; null when none were, or nobody reads on. */
    String lost() {
        boolean isUnread = output.trouble != null && output.trouble.contains("Broken pipe");
        return isUnread ? null : output.trouble;
    }

    boolean isTerminal() {
        return System.getenv("KALVORN_COLUMNS") != null;
    }

    /** The terminal's width, at least 40. */
    int columns() {
        try {
            return Math.max(40, Integer.parseInt(System.getenv("KALVORN_COLUMNS")));
        } catch (NumberFormatException e) {
            return 80;
        }
    }

    boolean canAsk() {
        return System.getenv("KALVORN_ASK") != null;
    }

    /** Whether the answer to a question is yes. */
    boolean ask(String question) {
        err.print(question + " [y/N] ");
        try {
            String answer = in.readLine();
            return answer != null && answer.trim().matches("[yY]([eE][sS])?");
        } catch (IOException e) {
            return false;
        }
    }
}
