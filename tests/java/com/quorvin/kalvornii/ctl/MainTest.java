package com.quorvin.kalvornii.ctl;

import static java.nio.charset.StandardCharsets.ISO_8859_1;
import static java.nio.charset.StandardCharsets.UTF_8;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.ByteArrayInputStream;
import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Map;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** What the command says, and its exit status, on the device "mixed". */
class MainTest {
    private final ByteArrayOutputStream out = new ByteArrayOutputStream();
    private final ByteArrayOutputStream err = new ByteArrayOutputStream();
    private Map<String, String> environment = Map.of();

    @TempDir Path folder;

    private int run(byte[] in, String... arguments) {
        out.reset();
        err.reset();
        return Main.run(
                arguments, new Console(new ByteArrayInputStream(in), out, err, environment));
    }

    private int run(String... arguments) {
        return run(new byte[0], arguments);
    }

    private String out() {
        return out.toString(UTF_8);
    }

    private String err() {
        return err.toString(UTF_8);
    }

    /** Rows: the status, what standard error has, and the words of the command. */
    @Test
    void tellsInItsStatusWhatCameOfIt() {
        String[][] rows = {{"0", "", "call sendCmdToFingerprintHalNative -1 null"},
                {"0", "", "call getboardname --json"},
                {"1", "nativeChipTtTestCp: the satellite service is absent", "call testcp x"},
                {"1", "nativeSetTestResult: null was given for value; for the word itself write '\\null'",
                        "call settestresult null 3"},
                {"1", "null was given for value.bsn, value.value;",
                        "call bigdatavalue bsn=null value=null"},
                {"1", "nativeChipTtTestCp: the satellite service is absent", "call testcp null"},
                {"2", "id: a 32-bit number", "call gettestresult x"},
                {"2", "  String nativeGetTestResult(int id)", "call gettestresult"},
                {"2", "\"x\" is one argument too many", "call getboardname x"},
                {"2", "data: two hexadecimal digits a byte", "call mcu 1 2 abc"},
                {"2", "the fields are version, commandId, operation, cycle, bsn, station",
                        "call bigdataoperation x=1"},
                {"2", "field=value is expected, not \"version\"", "call bigdataop version"},
                {"2", "version: a 32-bit number", "call bigdataop version=x"},
                {"2",
                        "is in the names of 3 methods:\n  String nativeStartHertzTest()\n"
                                + "  int nativeStopHertzTest()\n  int nativeGetHertzTestResult()",
                        "call hertz"},
                {"2", "no method has \"nothing\"", "call nothing"},
                {"2", "a METHOD is expected", "call"},
                {"2", "no option \"-x\"; a text that begins with a dash stands after --",
                        "call settestresult -x 3"},
                {"2", "-v was taken as an option; after -- it is a text",
                        "call settestresult -v 3"},
                {"2", "--times: a number from 1", "call --times 0 getboardname"},
                {"2", "--timeout: seconds are expected", "call --timeout -1 getboardname"},
                {"2", "--times needs a value", "call getboardname --times"},
                {"2", "-v shows one call", "call -v --times 2 getboardname"},
                {"2", "\"list\" has no option --yes", "list --yes"},
                {"2", "no method has to do with \"nothing\"", "list nothing"},
                {"2", "one word too many for \"status\"", "status power x"},
                {"2", "no service \"x\"; there are: factory,", "status x"},
                {"2", "a SERVICE is expected", "wait"}, {"2", "no command \"frob\"", "frob"},
                {"2", "no command \"frob\"", "frob --help"}, {"2", "a command is expected", "-v"},
                {"2", "no option \"--frob\"", "--frob"},
                {"2", "bash or zsh is expected", "completion fish"},
                {"2", "cannot read nowhere", "run nowhere"}, {"2", "cannot read . (", "run ."}};
        for (String[] row : rows) {
            int status = run(row[2].split(" "));
            assertEquals(row[0], String.valueOf(status), row[2] + "\n" + err());
            assertTrue(err().contains(row[1]), row[2] + "\n" + err());
            assertEquals(row[1].isEmpty(), err().isEmpty(), row[2] + "\n" + err());
            if (status == 2) assertEquals("", out(), row[2]);
        }
    }

    @Test
    void helpsWithEachCommand() {
        assertEquals(0, run("--help"));
        assertEquals(Help.general(), out());
        assertTrue(Help.options().contains("--timeout") && Help.options().contains("-v"));
        for (String command : Help.commands().keySet()) {
            assertTrue(Help.general().contains("\n  " + command + " "), command);
            assertEquals(0, run("help", command));
            assertTrue(out().startsWith("Usage: kalvornctl " + command), out());
            String text = out();
            run(command, "--help");
            assertEquals(text, out());
        }
        run("help", "i2c");
        assertTrue(out().startsWith("String nativeI2cTest()\n    factory\n"), out());
    }

    @Test
    void showsResultsAndFields() {
        run("call", "gettestresult", "99");
        assertEquals("null\n", out());
        run("call", "storagetestjudge", "read");
        assertEquals("0\ncurrentValue: 412 MB/s\n", out());
        run("call", "--times", "30", "getboardname");
        assertEquals("KV-MAIN-V3\n", out());
        assertTrue(err().matches("    30 calls, in ms: min [0-9.]+, p50 [0-9.]+, p90 [0-9.]+, "
                           + "p99 [0-9.]+, max [0-9.]+\n"),
                err());
    }

    /** Lines as a file has them, with all that a shell quotes, and what they say. */
    @Test
    void runsLines() throws IOException {
        String lines = "\ufeffsettestresult '' 1 = 0\r\n"
                + "gettestresult 1 = ''\n"
                + "settestresult \"a 'b' \\\"c\\\"  d\" 2 = 0        # a comment\n"
                + "gettestresult 2 = 'a '\\''b'\\'' \"c\"  d'\n"
                + "settestresult 'Prüfstand # 測試' 3 = 0\n"
                + "gettestresult 0x3 = Prüfstand\\ #\\ 測試\n"
                + "settestresult '\\null' 4 = 0\n"
                + "gettestresult 4 = '\\null'\n"
                + "settestresult '=' 5 = 0\n"
                + "gettestresult 5 = $'\\x3d'\n"
                + "gettestresult 99 = null\n"
                + "itemname a b = 0 0x0";
        Path file = Files.writeString(folder.resolve("lines"), lines);
        assertEquals(0, run("run", file.toString()), err());
        assertEquals("kalvornctl: 12 calls, 12 as expected\n", err());
        assertTrue(out().contains("nativeGetTestResult 2 = 'a '\\''b'\\'' \"c\"  d'\n"), out());
        String printed = out();
        assertEquals(0, run(printed.getBytes(UTF_8), "run"), err());
        assertEquals(printed, out());
    }

    /** Rows: the status, what standard output and standard error have, and the lines. */
    @Test
    void tellsWhichLinesCannotBeCalled() {
        String[][] rows = {{"2", "nativeGetBoardName = KV-MAIN-V3\n", "line 2: id: a 32-bit number",
                                   "getboardname\ngettestresult x\ngetboardname"},
                {"2", "", "line 1: a quote is not closed", "getboardname 'x"},
                {"2", "", "line 1: after = one word is expected", "getsocinfo a = b c"},
                {"2", "", "line 2: it has bytes that are not UTF-8",
                        "# \u00e4\nsettestresult \u00ff 1"},
                {"4", "# line 1 expected: x\n", "1 call, 0 as expected, 1 with another result\n",
                        "getboardname = x"},
                {"1", "", "1 call, 1 of an absent service\n", "testcp x"},
                {"1", "", "1 call, 1 with null where it must not be\n", "settestresult null 1"},
                {"0", "", "2 calls, 1 as expected\n", "testcp x = INVALID_SERVICE\ngetboardname"}};
        for (String[] row : rows) {
            boolean isUtf8 = row[3].chars().noneMatch(c -> c == '\u00ff');
            int status = run(row[3].replace("\u00e4", isUtf8 ? "\u00e4" : "\u00c3\u00a4")
                                     .getBytes(isUtf8 ? UTF_8 : ISO_8859_1),
                    "run");
            assertEquals(row[0], String.valueOf(status), row[3] + "\n" + err());
            assertTrue(out().endsWith(row[1]), row[3] + "\n" + out());
            assertTrue(err().contains(row[2]), row[3] + "\n" + err());
        }
        assertEquals(
                2, run("gettestresult x\n\ngetboardname".getBytes(UTF_8), "run", "--keep-going"));
        assertTrue(err().endsWith("kalvornctl: 1 call, 1 not made\n"), err());
    }

    @Test
    void keepsAllCharactersOfALog() {
        String text = "a\u2028b\rc\u0085d";
        assertEquals(0, run("call", "-v", "setwificommand", text, "x"));
        assertTrue(
                err().contains("    I setWifiCommand, testScene:" + text + ", cmd:x, buf:"), err());
    }

    @Test
    void escapesWhatWouldControlATerminal() {
        byte[] lines = "settestresult $'\\x1b[31m\\r\\u009b' 1\n".getBytes(UTF_8);
        String[] call = {"call", "-v", "gettestresult", "1"};
        run(lines, "run");
        run(call);
        assertEquals("\u001b[31m\r\u009b\n", out());
        environment = Map.of("KALVORN_TERMINALS", "12", "KALVORN_SIZE", "24 80");
        run(call);
        assertEquals("$'\\x1b[31m\\r\\x9b'\n", out());
        assertTrue(err().contains("out = \\x1b[31m\\x0d\\x9b"), err());
    }
}
