package com.quorvin.kalvornii.ctl;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.quorvin.kalvornii.BigDataValue;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import org.junit.jupiter.api.Test;

/** Arguments and results, as words of a line and as values. */
class ValuesTest {
    private static final String[] TEXTS = {"", " ", "plain", "two words", "'", "\"", "\\",
            "$HOME `x`", "#", "=", "a=b", "-v", "null", "\\null", "\\\\null", "Null", "nullable",
            "é 測試 💡", "a\nb\t\r\u0001\u007f'\\", "a'b\"c"};

    private static List<String> words(String line) throws UsageException {
        return Words.parts(line).get(0);
    }

    @Test
    void quotesAsAShell() throws UsageException {
        assertEquals(List.of("a", "b c", "d'e", "", "f \"g\\h\\n", "#"),
                words(" a\t'b c'  d\\'e '' \"f \\\"g\\\\h\\n\" \\# # comment 'open"));
        assertEquals(List.of("one word", "a#b", "$x"), words("one' 'word a#b $x"));
        assertEquals(List.of("1\n\t\r\\'\"Aé"), words("$'1\\n\\t\\r\\\\\\'\\\"\\x41\\u00e9'"));
        assertEquals(List.of(), words("  # nothing"));
    }

    @Test
    void refusesWhatAShellWouldContinue() {
        for (String line : List.of("'a", "\"a", "\"a\\", "$'a", "a\\", "$'\\q'", "$'\\x4'")) {
            assertThrows(UsageException.class, () -> Words.parts(line), line);
        }
    }

    @Test
    void takesEveryTextThatItShows() throws UsageException {
        for (String text : TEXTS) {
            assertEquals(text, Values.parse(String.class, Values.show(text)));
            List<List<String>> parts = Words.parts("x " + Values.words(text));
            assertEquals(1, parts.size(), text);
            assertEquals(2, parts.get(0).size(), text);
            assertEquals(text, Values.parse(String.class, parts.get(0).get(1)));
            assertEquals(1, Values.words(text).lines().count());
        }
        assertNull(Values.parse(String.class, Values.show(null)));
        assertEquals("null", Values.show(null));
        assertEquals("\\null", Values.show("null"));
        assertEquals("1 -2", Values.show(new int[] {1, -2}));
    }

    @Test
    void takesNumbersAsAPersonWritesThem() throws UsageException {
        Object[][] numbers = {{"0", 0}, {"-0", 0}, {"010", 10}, {"2147483647", Integer.MAX_VALUE},
                {"-2147483648", Integer.MIN_VALUE}, {"0x10", 16}, {"-0X1f", -31},
                {"0xffffffff", -1}, {"-0x80000000", Integer.MIN_VALUE}};
        for (Object[] number : numbers) {
            assertEquals(number[1], Values.parse(int.class, (String) number[0]));
        }
        for (String word : List.of("", "-", "x", "1x", "0x", "1.0", "2147483648", "-2147483649",
                     "0x100000000", "-0x80000001", "null", "+1", " 1", "\u0663")) {
            assertThrows(UsageException.class, () -> Values.parse(int.class, word), word);
        }
    }

    @Test
    void takesBytesAsHexadecimalDigits() throws UsageException {
        assertArrayEquals(
                new byte[] {0x0a, (byte) 0xff}, (byte[]) Values.parse(byte[].class, "0aFf"));
        assertArrayEquals(new byte[0], (byte[]) Values.parse(byte[].class, ""));
        assertNull(Values.parse(byte[].class, "null"));
        for (String word : List.of("a", "0af", "0x0a", "zz", "-1", "\u0663\u0663")) {
            assertThrows(UsageException.class, () -> Values.parse(byte[].class, word), word);
        }
    }

    private static Object[] parse(String method, String... words) throws UsageException {
        return Contract.read().find(method).parse(List.of(words));
    }

    @Test
    void fillsRecords() throws UsageException {
        BigDataValue value = (BigDataValue) parse(
                "bigdatavalue", "value=a=b", "itemId=0x10", "description=", "bsn=null")[0];
        assertEquals("a=b", value.value);
        assertEquals(16, value.itemId);
        assertEquals(0, value.cycle);
        assertEquals("", value.description);
        assertEquals("", value.firmware);
        assertNull(value.bsn);
        assertEquals("", ((BigDataValue) parse("bigdatavalue")[0]).station);
        assertNull(parse("bigdatavalue", "null")[0]);
    }

    @Test
    void writesJson() {
        BigDataValue record = new BigDataValue();
        record.value = "a\"\\\n\u001f\u2028\ud83d";  // the last is half of a character
        Map<String, Object> members = new LinkedHashMap<>();
        members.put("none", null);
        members.put("all", new Object[] {1, "é 💡", new byte[] {10, -1}, new int[] {1, -2}, record});
        String json = Json.of(members);
        assertTrue(json.startsWith("{\"none\":null,\"all\":[1,\"é 💡\",\"0aff\",[1,-2],{"), json);
        assertTrue(json.contains("\"value\":\"a\\\"\\\\\\n\\u001f\u2028\\ud83d\""), json);
        assertTrue(json.contains("\"bsn\":null"), json);
    }
}
