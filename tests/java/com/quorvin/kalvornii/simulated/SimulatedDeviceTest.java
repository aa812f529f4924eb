package com.quorvin.kalvornii.simulated;

import static com.quorvin.kalvornii.KvNativeInterface.SERVICE_ABSENT;
import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.AIDL;
import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.HIDL;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.quorvin.kalvornii.KvNativeInterface;
import java.time.Duration;
import java.util.List;
import java.util.stream.Collectors;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;

class SimulatedDeviceTest {
    private final KvNativeInterface kv = new KvNativeInterface();

    @BeforeEach
    void restore() {
        SimulatedDevice.restore();
    }

    private static void refused(String naming, Runnable call) {
        String message = assertThrows(IllegalArgumentException.class, call::run).getMessage();
        assertTrue(message.contains(naming), message);
    }

    @Test
    void namesWhatIsRightInsteadOfWhatIsWrong() {
        String all = String.join(", ", SimulatedDevice.services());
        refused("aidl, hidl, mixed, bare", () -> SimulatedDevice.start("Mixed"));
        refused(all, () -> SimulatedDevice.holder("Factory"));
        refused(all, () -> SimulatedDevice.holder(null));
        refused(all, () -> SimulatedDevice.runs(""));
        refused("touch, sensors, light", () -> SimulatedDevice.kill(HIDL, "factory"));
        refused("radio, display_factory", () -> SimulatedDevice.kill(AIDL, "satellite"));
        refused("fingerprint, chip", () -> SimulatedDevice.restart(HIDL, "sim"));
        refused("sim, satellite", () -> SimulatedDevice.declare(AIDL, "factory@1.0"));
        refused("AIDL or HIDL", () -> SimulatedDevice.kill(null, "factory"));
        refused(all, () -> SimulatedDevice.killProcess("nobody"));
        refused(all, () -> SimulatedDevice.restartProcess(null));
        refused("readNv, ", () -> SimulatedDevice.answer("nativeReadNvValue", 0, ""));
        refused("1000000 bytes", () -> SimulatedDevice.answer("readNv", 0, "x".repeat(1000001)));
        refused("null", () -> SimulatedDevice.answer("readNv", 0, null));
        refused("U+0000", () -> SimulatedDevice.answer("readNv", 0, "cut\0off"));
        refused("surrogate", () -> SimulatedDevice.answer("readNv", 0, "\uD83D \uDE00"));
        refused("surrogate", () -> SimulatedDevice.answer("i2cTest", 0, "", "\uDE00"));
        refused("null", () -> SimulatedDevice.answer("i2cTest", 0, "", null));
        refused("readNv, ", () -> SimulatedDevice.fail(AIDL, null));
        refused("readNv, ", () -> SimulatedDevice.fail(HIDL, "setLightsBrightness"));
        refused("AIDL or HIDL", () -> SimulatedDevice.fail(null, "readNv"));
        assertThrows(IllegalStateException.class, () -> SimulatedDevice.start("aidl"));
        SimulatedDevice.start("mixed");
    }

    @Test
    void hasReleasedEverythingOfABackendWhenAKillReturns() {
        SimulatedDevice.kill(AIDL, "factory");
        assertNull(SimulatedDevice.holder("power"));
        assertEquals(AIDL, SimulatedDevice.runs("power"));
        assertEquals(HIDL, SimulatedDevice.holder("light"));

        SimulatedDevice.kill(HIDL, "light");
        assertNull(SimulatedDevice.holder("sensors"));
        assertEquals(SERVICE_ABSENT, kv.nativeSetLedBrightness(1, 1));

        SimulatedDevice.restart(HIDL, "light");
        SimulatedDevice.restart(AIDL, "factory");
        SimulatedDevice.settle();
        assertEquals(AIDL, SimulatedDevice.holder("power"));
        assertEquals(HIDL, SimulatedDevice.holder("sensors"));
    }

    @Test
    void killsWhatSharesAProcess() {
        SimulatedDevice.killProcess("sensors");
        assertNull(SimulatedDevice.runs("touch"));
        assertNull(SimulatedDevice.runs("light"));
        refused("factory, display, power", () -> SimulatedDevice.killProcess("light"));
        SimulatedDevice.restartProcess("light");
        SimulatedDevice.settle();
        assertEquals(HIDL, SimulatedDevice.holder("touch"));
    }

    @Test
    void makesTheLibraryWaitForAServiceDeclaredLate() {
        SimulatedDevice.declare(AIDL, "satellite");
        SimulatedDevice.kill(AIDL, "radio");
        SimulatedDevice.restart(AIDL, "radio");
        assertThrows(
                IllegalStateException.class, () -> SimulatedDevice.settle(Duration.ofMillis(50)));
        SimulatedDevice.restart(AIDL, "satellite");
        SimulatedDevice.settle();
        assertEquals("cp ok", kv.nativeChipTtTestCp("cp"));
    }

    /** What runs, and what is held. */
    private static List<String> state() {
        return SimulatedDevice.services()
                .stream()
                .map(name -> name + SimulatedDevice.runs(name) + SimulatedDevice.holder(name))
                .collect(Collectors.toList());
    }

    private static void addOverHidl() {
        SimulatedDevice.restart(HIDL, "camera");
        SimulatedDevice.declare(HIDL, "chip");
        SimulatedDevice.killProcess("light");
    }

    private static void waitForAServiceThatNeverComes() {
        SimulatedDevice.declare(AIDL, "satellite");
        SimulatedDevice.kill(AIDL, "radio");
    }

    private static void dieAndComeBack() {
        SimulatedDevice.kill(AIDL, "sim");
        SimulatedDevice.restart(AIDL, "sim");
        SimulatedDevice.settle();
    }

    @Test
    void isAsAtItsStartWhateverHappened() {
        List<String> atStart = state();
        for (Runnable happening : List.<Runnable>of(SimulatedDeviceTest::addOverHidl,
                     SimulatedDeviceTest::waitForAServiceThatNeverComes,
                     ()
                             -> SimulatedDevice.killProcess("factory"),
                     () -> SimulatedDevice.restart(AIDL, "satellite"))) {
            happening.run();
            SimulatedDevice.restore();
            assertEquals(atStart, state());
            dieAndComeBack();  // so nothing that was declared is waited for
            assertEquals(atStart, state());
        }
    }

    @Test
    void showsWhatTheLibraryAsksByItselfOnlyWhenAskedFor() {
        dieAndComeBack();
        kv.nativeSetSimPowerState(1);
        assertEquals(List.of("aidl fingerprint.createSession(-1, -1000, \"\")",
                             "aidl sim.setSimPowerState(1)"),
                SimulatedDevice.receivedInAll());
        dieAndComeBack();
        assertEquals(List.of(), SimulatedDevice.received());
    }

    @Test
    void givesBackNoFlagOfMoreBytesThanTheCallerTakes() {
        String longest = "\u00e4".repeat(512);
        assertEquals(0, kv.nativeSetControlFlag(1, longest));
        assertEquals(longest, kv.nativeGetControlFlag(1));
        assertEquals(0, kv.nativeSetControlFlag(1, longest + "x"));
        assertEquals("", kv.nativeGetControlFlag(1));
    }

    @Test
    void answersAndFailsAsToldAndShowsWhatItWasAsked() {
        SimulatedDevice.answer("readNv", 0, "Prüfstand 測試 \uD83D\uDE00");
        SimulatedDevice.answer("i2cTest", 0, "pass", "bus9");
        SimulatedDevice.fail(AIDL, "setTestResult");
        assertEquals("Prüfstand 測試 \uD83D\uDE00", kv.nativeReadNvValue(7));
        assertEquals("pass", kv.nativeI2cTest());
        assertEquals("bus9", KvNativeInterface.i2cInfo);
        assertEquals(-1, kv.nativeSetTestResult("ä", 7));
        assertEquals(List.of("aidl factory.readNv(7)", "aidl factory.i2cTest(1024)",
                             "aidl factory.setTestResult(7, \"ä\")"),
                SimulatedDevice.received());
    }

    @Test
    void forgetsWhenItIsRestored() {
        kv.nativeWriteNvValue("kept", 8);
        SimulatedDevice.answer("getVersionName", 0, "another board");
        SimulatedDevice.fail(HIDL, "handleSensorPara");
        SimulatedDevice.kill(AIDL, "display");
        SimulatedDevice.restore();
        assertEquals(List.of(), SimulatedDevice.receivedInAll());
        assertNull(kv.nativeReadNvValue(8));
        assertEquals("KV-MAIN-V3", kv.nativeGetBoardName());
        assertEquals("shown", kv.nativeDisplayTest("red"));
        assertEquals("0.01,0.02,9.81", kv.nativeGetSensorPara(1, 2, 3, 64));
    }
}
