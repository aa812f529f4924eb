package com.quorvin.kalvornii.simulated;

import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.AIDL;
import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.HIDL;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNull;

import com.quorvin.kalvornii.KvNativeInterface;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** A device that a file tells of. */
class DeviceFileTest {
    private static SimulatedDevice device;
    private final KvNativeInterface kv = new KvNativeInterface();

    @BeforeAll
    static void start(@TempDir Path folder) throws IOException {
        Path file = folder.resolve("station 7");
        Files.write(file,
                List.of("# Seen at station 7", "aidl factory power", "hidl light factory@1.0", "",
                        "late aidl satellite", "process factory power\r",
                        "  factory.getVersionName -> 0 'KV -> 7'\r",
                        "once aidl factory.setTestResult(3, \"a -> (b) -> c\") -> -4", "wait 0.2",
                        "restart AIDL satellite", "readNv -> 0 late"));
        device = SimulatedDevice.start(file);
    }

    @Test
    void isWhatTheFileSays() throws InterruptedException {
        assertEquals("KV -> 7", kv.nativeGetBoardName());  // the load has waited for the satellite
        assertEquals("cp ok", kv.nativeChipTtTestCp("cp"));
        assertEquals(HIDL, device.holder("light"));
        assertNull(device.runs("display"));
        device.killProcess("power");
        assertNull(device.runs("factory"));

        device.restore();
        assertEquals(AIDL, device.holder("factory"));
        assertEquals(AIDL, device.holder("satellite"));
        for (int expected : new int[] {-4, 0}) {
            assertEquals(expected, kv.nativeSetTestResult("a -> (b) -> c", 3));
        }
        device.restore();  // the answers of the file count anew
        assertEquals(-4, kv.nativeSetTestResult("a -> (b) -> c", 3));
        assertEquals("KV -> 7", kv.nativeGetBoardName());
    }
}
