package com.quorvin.kalvornii.ctl;

import java.util.ArrayList;
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** What help.txt says: of the whole, and of each command after a line "@ COMMAND". */
final class Help {
    private static final String[] PARTS =
            Resource.read("/com/quorvin/kalvornii/ctl/help.txt").split("(?m)^@ ");

    private Help() {}

    static String general() {
        return PARTS[0];
    }

    /** The commands' own texts, by the commands. */
    static Map<String, String> commands() {
        Map<String, String> commands = new LinkedHashMap<>();
        for (int i = 1; i < PARTS.length; i++) {
            String[] part = PARTS[i].split("\n", 2);
            commands.put(part[0], part[1]);
        }
        return commands;
    }

    static UsageException unknown(String command) {
        return new UsageException("no command \"" + command + "\"; --help tells which");
    }

    /** The options of all commands, as the general help lists them. */
    static List<String> options() {
        List<String> options = new ArrayList<>();
        for (String line : general().split("\n")) {
            if (line.startsWith("  -"))
                Collections.addAll(options, line.trim().split("[ ,].*", 2)[0]);
        }
        return options;
    }
}
