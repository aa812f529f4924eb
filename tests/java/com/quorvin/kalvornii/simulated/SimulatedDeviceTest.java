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
import java.util.concurrent.FutureTask;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.TimeoutException;
import java.util.stream.Collectors;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;

class SimulatedDeviceTest {
    private final SimulatedDevice device = SimulatedDevice.get();
    private final KvNativeInterface kv = new KvNativeInterface();

    @BeforeEach
    void restore() {
        device.restore();
    }

    private static void refused(String naming, Runnable call) {
        String message = assertThrows(IllegalArgumentException.class, call::run).getMessage();
        assertTrue(message.contains(naming), message);
    }

    @Test
    void namesWhatIsRightInsteadOfWhatIsWrong() {
        String all = String.join(", ", device.services());
        refused("aidl, bare, hidl, mixed", () -> SimulatedDevice.start("Mixed"));
        refused(all, () -> device.holder("Factory"));
        refused(all, () -> device.holder(null));
        refused(all, () -> device.runs(""));
        refused("touch, sensors, light", () -> device.kill(HIDL, "factory"));
        refused("radio, display_factory", () -> device.kill(AIDL, "satellite"));
        refused("fingerprint, chip", () -> device.restart(HIDL, "sim"));
        refused(all, () -> device.declare(AIDL, "factory@1.0"));
        refused("AIDL or HIDL", () -> device.kill(null, "factory"));
        refused(all, () -> device.killProcess("nobody"));
        refused(all, () -> device.restartProcess(null));
        refused("readNv, ", () -> device.on("nativeReadNvValue").answer(0, ""));
        refused("1000000 bytes", () -> device.on("readNv").answer(0, "x".repeat(1000001)));
        refused("null", () -> device.on("readNv").answer(0, (String) null));
        refused("U+0000", () -> device.on("readNv").answer(0, "cut\0off"));
        refused("surrogate", () -> device.on("readNv").answer(0, "\uD83D \uDE00"));
        refused("surrogate", () -> device.on("i2cTest").answer(0, "", "\uDE00"));
        refused("null", () -> device.on("i2cTest").answer(0, "", null));
        refused("two texts", () -> device.on("i2cTest").answer(0, "", "", ""));
        refused("readNv, ", () -> device.on(null).hang());
        refused("readNv, ", () -> device.on("hidl setLightsBrightness").fail());
        refused("no service \"fan\"; there are: " + all, () -> device.on("fan.readNv").fail());
        refused("no service sim over hidl", () -> device.on("hidl sim.setSimPowerState").hang());
        refused("not a call", () -> device.on("aidl factory.readNv(7").answer(0));
        refused("at least once", () -> device.on("readNv").times(0));
        refused("ends the process", () -> device.on("light.setLightsBrightness").fail());
        assertThrows(IllegalStateException.class, () -> SimulatedDevice.start("aidl"));
        SimulatedDevice.start("mixed");
    }

    @Test
    void hasReleasedEverythingOfABackendWhenAKillReturns() {
        device.kill(AIDL, "factory");
        assertNull(device.holder("power"));
        assertEquals(AIDL, device.runs("power"));
        assertEquals(HIDL, device.holder("light"));

        device.kill(HIDL, "light");
        assertNull(device.holder("sensors"));
        assertEquals(SERVICE_ABSENT, kv.nativeSetLedBrightness(1, 1));

        device.restart(HIDL, "light");
        device.restart(AIDL, "factory");
        device.settle();
        assertEquals(AIDL, device.holder("power"));
        assertEquals(HIDL, device.holder("sensors"));
    }

    @Test
    void killsWhatSharesAProcess() {
        device.killProcess("sensors");
        assertNull(device.runs("touch"));
        assertNull(device.runs("light"));
        refused("factory, display, power", () -> device.killProcess("light"));
        device.restartProcess("light");
        device.settle();
        assertEquals(HIDL, device.holder("touch"));
    }

    @Test
    void makesTheLibraryWaitForAServiceDeclaredLate() {
        device.declare(AIDL, "satellite");
        device.kill(AIDL, "radio");
        device.restart(AIDL, "radio");
        assertThrows(IllegalStateException.class, () -> device.settle(Duration.ofMillis(50)));
        device.restart(AIDL, "satellite");
        device.settle();
        assertEquals("cp ok", kv.nativeChipTtTestCp("cp"));
    }

    /** What runs, and what is held. */
    private List<String> state() {
        return device.services()
                .stream()
                .map(name -> name + device.runs(name) + device.holder(name))
                .collect(Collectors.toList());
    }

    private void addOverHidl() {
        device.restart(HIDL, "camera");
        device.declare(HIDL, "chip");
        device.killProcess("light");
    }

    private void waitForAServiceThatNeverComes() {
        device.declare(AIDL, "satellite");
        device.kill(AIDL, "radio");
    }

    private void dieAndComeBack() {
        device.kill(AIDL, "sim");
        device.restart(AIDL, "sim");
        device.settle();
    }

    @Test
    void isAsAtItsStartWhateverHappened() {
        List<String> atStart = state();
        for (Runnable happening :
                List.<Runnable>of(this::addOverHidl, this::waitForAServiceThatNeverComes,
                        ()
                                -> device.killProcess("factory"),
                        () -> device.restart(AIDL, "satellite"))) {
            happening.run();
            device.restore();
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
                device.receivedInAll());
        dieAndComeBack();
        assertEquals(List.of(), device.received());
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
        device.on("readNv").times(1).answer(0, "Prüfstand 測試 \uD83D\uDE00");
        device.on("i2cTest").times(1).answer(0, "pass", "bus9");
        device.on("aidl setTestResult").times(1).fail();
        assertEquals("Prüfstand 測試 \uD83D\uDE00", kv.nativeReadNvValue(7));
        assertEquals("pass", kv.nativeI2cTest());
        assertEquals("bus9", KvNativeInterface.i2cInfo);
        assertEquals(-1, kv.nativeSetTestResult("ä", 7));
        assertEquals(List.of("aidl factory.readNv(7)", "aidl factory.i2cTest(1024)",
                             "aidl factory.setTestResult(7, \"ä\")"),
                device.received());
    }

    @Test
    void answersWhatIsSaidOfFewerCallsFirst() {
        device.on("readNv").answer(0, "any");
        device.on("factory.readNv(7)").answer(0, "older");
        device.on("factory.readNv(7)").answer(0, "newer");
        device.on("hidl readNv").times(1).answer(0, "hidl");
        device.on("readNv").times(2).answer(0, "first");
        device.on("aidl factory.readNv(8)").times(1).answer(0, "more precise");
        assertEquals("more precise", kv.nativeReadNvValue(8));
        assertEquals("first", kv.nativeReadNvValue(8));
        assertEquals("first", kv.nativeReadNvValue(7));
        assertEquals("newer", kv.nativeReadNvValue(7));
        assertEquals("newer", kv.nativeReadNvValue(7));
        assertEquals("any", kv.nativeReadNvValue(8));
        device.on("writeNv(1, \"a, b\")").answer(-5);
        assertEquals(-5, kv.nativeWriteNvValue("a, b", 1));
        assertEquals(0, kv.nativeWriteNvValue("a", 1));
    }

    /** Calls in a thread of its own, which has reached the service when this returns. */
    private FutureTask<String> reaching(String call) throws InterruptedException {
        FutureTask<String> task = new FutureTask<>(() -> kv.nativeGetBoardName());
        new Thread(task).start();
        while (!device.received().contains(call)) Thread.sleep(1);
        return task;
    }

    @Test
    void hangsUntilReleasedOrDeadOrRestored() throws Exception {
        String call = "aidl factory.getVersionName()";
        device.on(call).hang();
        FutureTask<String> released = reaching(call);
        assertThrows(TimeoutException.class, () -> released.get(50, TimeUnit.MILLISECONDS));
        device.release();
        assertEquals("KV-MAIN-V3", released.get());

        FutureTask<String> dead = reaching(call);
        device.kill(AIDL, "factory");
        assertEquals("", dead.get());

        device.restore();
        device.on(call).hang();
        FutureTask<String> restored = reaching(call);
        device.restore();
        assertEquals("KV-MAIN-V3", restored.get());
    }

    @Test
    void answersLate() {
        device.on("setSimPowerState").times(1).after(Duration.ofMillis(100)).answer(6);
        device.on("setSimPowerState").times(1).after(Duration.ofMillis(100)).answerAsUsual();
        long start = System.nanoTime();
        assertEquals(6, kv.nativeSetSimPowerState(1));
        assertEquals(0, kv.nativeSetSimPowerState(1));
        assertTrue(System.nanoTime() - start >= 200_000_000);
    }

    @Test
    void forgetsWhenItIsRestored() {
        kv.nativeWriteNvValue("kept", 8);
        device.on("getVersionName").times(1).answer(0, "another board");
        device.on("hidl handleSensorPara").times(1).fail();
        device.kill(AIDL, "display");
        device.restore();
        assertEquals(List.of(), device.receivedInAll());
        assertNull(kv.nativeReadNvValue(8));
        assertEquals("KV-MAIN-V3", kv.nativeGetBoardName());
        assertEquals("shown", kv.nativeDisplayTest("red"));
        assertEquals("0.01,0.02,9.81", kv.nativeGetSensorPara(1, 2, 3, 64));
    }
}
