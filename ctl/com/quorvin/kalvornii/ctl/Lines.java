package com.quorvin.kalvornii.ctl;

import static java.nio.charset.StandardCharsets.UTF_8;

import java.io.BufferedInputStream;
import java.io.ByteArrayOutputStream;
import java.io.Closeable;
import java.io.IOException;
import java.io.InputStream;
import java.nio.ByteBuffer;
import java.nio.charset.CharacterCodingException;

/** The lines of a stream. Only \n ends one: Java's own readers end them at a \r too. */
final class Lines implements Closeable {
    private final InputStream bytes;

    Lines(InputStream bytes) {
        this.bytes = new BufferedInputStream(bytes);
    }

    /** The bytes of the next line; null at the end. */
    private byte[] nextBytes() throws IOException {
        ByteArrayOutputStream line = new ByteArrayOutputStream();
        int b = bytes.read();
        if (b < 0) return null;
        for (; b >= 0 && b != '\n'; b = bytes.read()) line.write(b);
        return line.toByteArray();
    }

    /** The next line, with U+FFFD for what is not UTF-8; null at the end. */
    String next() throws IOException {
        byte[] line = nextBytes();
        return line == null ? null : new String(line, UTF_8);
    }

    /** The next line; null at the end. What is not UTF-8 is refused, and the next one follows. */
    String nextOfUtf8() throws IOException, UsageException {
        byte[] line = nextBytes();
        try {
            return line == null ? null
                                : UTF_8.newDecoder().decode(ByteBuffer.wrap(line)).toString();
        } catch (CharacterCodingException e) {
            throw new UsageException("it has bytes that are not UTF-8");
        }
    }

    @Override
    public void close() throws IOException {
        bytes.close();
    }
}
