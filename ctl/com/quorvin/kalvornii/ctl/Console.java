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
 * Where the command writes and reads, in UTF-8 whatever the locale. The scripts that start it tell of
 * the terminal: KALVORN_COLUMNS is its width when standard output is one, and KALVORN_ASK is set
 * when standard input is one.
 */
final class Console {
    final PrintStream out = stream(FileDescriptor.out);
    final BufferedReader in = new BufferedReader(new InputStreamReader(System.in, UTF_8));
    private final PrintStream err = stream(FileDescriptor.err);

    private static PrintStream stream(FileDescriptor descriptor) {
        try {
            return new PrintStream(new FileOutputStream(descriptor), true, "UTF-8");
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
