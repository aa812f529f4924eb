package com.quorvin.kalvornii.ctl;

/** Bytes as hexadecimal text. */
final class HexText {
    private HexText() {}

    static byte[] parse(String text) throws UsageException {
        if (text.length() % 2 != 0) {
            throw new UsageException("two hexadecimal digits a byte, not the odd " + text.length());
        }
        byte[] bytes = new byte[text.length() / 2];
        for (int i = 0; i < bytes.length; i++) {
            int high = digit(text.charAt(2 * i));
            int low = digit(text.charAt(2 * i + 1));
            if (high < 0 || low < 0) throw new UsageException("hexadecimal digits only");
            bytes[i] = (byte) (16 * high + low);
        }
        return bytes;
    }

    static String of(byte[] bytes) {
        StringBuilder text = new StringBuilder();
        for (byte b : bytes) text.append(String.format("%02x", b));
        return text.toString();
    }

    /** The value of a digit, -1 for what is none; letters and digits of other scripts are none. */
    static int digit(char c) {
        return c < 0x80 ? Character.digit(c, 16) : -1;
    }
}
