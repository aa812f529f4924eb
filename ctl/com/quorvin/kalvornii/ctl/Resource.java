package com.quorvin.kalvornii.ctl;

import static java.nio.charset.StandardCharsets.UTF_8;

import java.io.IOException;
import java.io.InputStream;

/** A text that is packed beside the classes. */
final class Resource {
    private Resource() {}

    static String read(String path) {
        try (InputStream text = Resource.class.getResourceAsStream(path)) {
            if (text == null) throw new IllegalStateException(path + " was not packed in.");
            return new String(text.readAllBytes(), UTF_8);
        } catch (IOException e) {
            throw new IllegalStateException(e);
        }
    }
}
