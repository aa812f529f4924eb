package com.quorvin.kalvornii.ctl;

import static java.nio.charset.StandardCharsets.ISO_8859_1;

import java.io.File;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/** The file of the library: the one that is mapped, else the one that would be loaded. */
final class LibraryFile {
    private static final String NAME = System.mapLibraryName("_kalvorn");
    /** The ELF note: two sizes, type 1, the owner, the version. */
    private static final Pattern NOTE =
            Pattern.compile("\10\0\0\0.\0\0\0\1\0\0\0Kalvorn\0([^\0]+)\0", Pattern.DOTALL);

    private LibraryFile() {}

    /** The version that the library was built with; null when no library is found. */
    static String version() {
        for (String place : (mapped() + ":" + expected()).split(":")) {
            String version = versionIn(Paths.get(place));
            if (version != null) return version;
        }
        return null;
    }

    private static String mapped() {
        try {
            return Files.lines(Paths.get("/proc/self/maps"))
                    .filter(line -> line.endsWith("/" + NAME))
                    .map(line -> line.substring(line.indexOf('/')))
                    .findFirst()
                    .orElse("");
        } catch (IOException e) {
            return "";
        }
    }

    private static String expected() {
        String separator = File.separator + NAME + ":";
        return System.getProperty("java.library.path", "").replace(":", separator) + separator;
    }

    private static String versionIn(Path file) {
        try {
            Matcher note = NOTE.matcher(new String(Files.readAllBytes(file), ISO_8859_1));
            return note.find() ? note.group(1) : null;
        } catch (IOException e) {
            return null;
        }
    }
}
