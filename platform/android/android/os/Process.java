package android.os;

import java.io.IOException;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;

/** Stands in for the platform's class, with the methods that are used. */
public class Process {
    /** The id of this process. */
    public static final int myPid() {
        return (int) ProcessHandle.current().pid();
    }

    /** The id of the calling thread, as the log names it. */
    public static final int myTid() {
        try {
            Path self = Files.readSymbolicLink(Path.of("/proc/thread-self"));
            return Integer.parseInt(self.getFileName().toString());
        } catch (IOException e) {
            throw new UncheckedIOException(e);
        }
    }
}
