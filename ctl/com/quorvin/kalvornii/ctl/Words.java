package com.quorvin.kalvornii.ctl;

import java.util.ArrayList;
import java.util.HexFormat;
import java.util.List;
import java.util.regex.Pattern;

/**
 * The words of a line, quoted as in a shell: 'literally', "with \" and \\", $'with \n, \t, \' and
 * \x41', and \ before a single character. Nothing is expanded. A # at the start of a word begins a
 * comment.
 */
public final class Words {
    /** What a file of samples tells of the call above: word and fact, or more of the last fact. */
    public static final Pattern FACT = Pattern.compile(
            "\\s+(?:((?:aidl |hidl )?(?:asks|returns|logs|broken|absent|fills|keeps))\\b *"
            + "|(?=\\|))(.*)");

    private final String line;
    private int at;

    private Words(String line) {
        this.line = line;
    }

    /** The words before and after the first = that is a word of its own. */
    public static List<List<String>> parts(String line) throws UsageException {
        return new Words(line).parts();
    }

    private List<List<String>> parts() throws UsageException {
        List<List<String>> parts = new ArrayList<>(List.of(new ArrayList<>()));
        for (;;) {
            while (at < line.length() && isBlank(line.charAt(at))) at++;
            if (at == line.length() || line.charAt(at) == '#') return parts;
            int start = at;
            String word = word();
            if (parts.size() == 1 && line.substring(start, at).equals("=")) {
                parts.add(new ArrayList<>());
            } else {
                parts.get(parts.size() - 1).add(word);
            }
        }
    }

    private static boolean isBlank(char c) {
        return c == ' ' || c == '\t' || c == '\r';
    }

    private String word() throws UsageException {
        StringBuilder text = new StringBuilder();
        while (at < line.length() && !isBlank(line.charAt(at))) {
            char c = line.charAt(at++);
            boolean ansi = c == '$' && at < line.length() && line.charAt(at) == '\'';
            if (ansi) at++;
            if (c == '\'' || c == '"' || ansi) {
                quoted(text, c);
            } else {
                text.append(c == '\\' ? next("a \\ has nothing after it") : c);
            }
        }
        return text.toString();
    }

    /** Up to the closing quote. */
    private void quoted(StringBuilder text, char kind) throws UsageException {
        String open = "a quote is not closed";
        char end = kind == '$' ? '\'' : kind;
        for (char c = next(open); c != end; c = next(open)) {
            if (c != '\\' || kind == '\'') {
                text.append(c);
            } else if (kind == '$') {
                escape(text, next(open));
            } else {
                char escaped = next(open);
                if ("\"\\$`".indexOf(escaped) < 0) text.append(c);
                text.append(escaped);
            }
        }
    }

    private void escape(StringBuilder text, char c) throws UsageException {
        int known = "ntr\\'\"".indexOf(c);
        if (known >= 0) {
            text.append("\n\t\r\\'\"".charAt(known));
        } else if (c == 'x') {
            text.append((char) hex(2));
        } else if (c == 'u') {
            text.append((char) hex(4));
        } else {
            throw new UsageException("\\" + c
                    + " is not known in $'...': \\n, \\t, \\r, \\\\, \\', "
                    + "\\\", \\xHH and \\uHHHH are");
        }
    }

    private int hex(int digits) throws UsageException {
        StringBuilder text = new StringBuilder();
        while (text.length() < digits) text.append(next("a quote is not closed"));
        try {
            return HexFormat.fromHexDigits(text);
        } catch (IllegalArgumentException e) {
            throw new UsageException(
                    "$'...' has \\x or \\u without its " + digits + " hexadecimal digits");
        }
    }

    private char next(String missing) throws UsageException {
        if (at == line.length()) throw new UsageException(missing);
        return line.charAt(at++);
    }

    /** The text as one word of a line. */
    static String quote(String text) {
        if (text.chars().anyMatch(c -> c < ' ' || c == 0x7f)) return "$'" + escaped(text) + "'";
        boolean plain =
                !text.isEmpty() && !text.equals("=") && text.chars().allMatch(Words::isPlain);
        return plain ? text : "'" + text.replace("'", "'\\''") + "'";
    }

    private static boolean isPlain(int c) {
        return Character.isLetterOrDigit(c) || "-_=+:,./@%".indexOf(c) >= 0;
    }

    private static String escaped(String text) {
        StringBuilder line = new StringBuilder();
        for (char c : text.toCharArray()) {
            int known = "\n\t\r\\'".indexOf(c);
            if (known >= 0) {
                line.append('\\').append("ntr\\'".charAt(known));
            } else if (c < ' ' || c == 0x7f) {
                line.append(String.format("\\x%02x", (int) c));
            } else {
                line.append(c);
            }
        }
        return line.toString();
    }
}
