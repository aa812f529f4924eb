package com.quorvin.kalvornii.ctl;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/** The project's sources, which the tests compare with; kalvorn.source is their folder. */
final class Source {
    private Source() {}

    static Path path(String name) {
        return Path.of(System.getProperty("kalvorn.source"), name);
    }

    static String read(String name) throws IOException {
        return Files.readString(path(name));
    }

    /** The groups of each match. */
    static List<List<String>> matches(String pattern, String text) {
        List<List<String>> found = new ArrayList<>();
        Matcher matcher = Pattern.compile(pattern).matcher(text);
        while (matcher.find()) {
            List<String> groups = new ArrayList<>();
            for (int i = 1; i <= matcher.groupCount(); i++) groups.add(matcher.group(i));
            found.add(groups);
        }
        return found;
    }
}
