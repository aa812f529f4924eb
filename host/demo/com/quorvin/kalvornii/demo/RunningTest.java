package com.quorvin.kalvornii.demo;

import com.quorvin.kalvornii.BigDataOperation;
import com.quorvin.kalvornii.BigDataValue;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.HexFormat;
import java.util.List;
import java.util.Map;
import java.util.function.Supplier;

/** A running test on the simulated device, from the load of the library to the end of ageing. */
public final class RunningTest {
    private static final int STATION = 5;
    private static final int CYCLE = 12;
    private static final String BOARD = "KV7A0042";

    private final Session session;

    private RunningTest(Session session) {
        this.session = session;
    }

    /**
     * Plays the session on the device named by the first argument; the colour is on when
     * KALVORN_COLOUR is set, and the file KALVORN_MISC is the misc partition.
     */
    public static void main(String[] arguments) throws IOException {
        boolean colour = System.getenv("KALVORN_COLOUR") != null;
        if (!SimulatedDevice.start(arguments[0], colour)) {
            throw new IllegalArgumentException("no device " + arguments[0]);
        }
        try {
            legend(arguments[0]);
            new RunningTest(load()).play();
        } finally {
            SimulatedDevice.stop();
        }
    }

    private static void legend(String device) {
        SimulatedDevice.print("", "Running test on the device \"" + device + "\"", Session.BOLD);
        Session.blank();
        SimulatedDevice.print("seconds  ", "call(arguments)" + " ".repeat(41) + "= result", "");
        Session.say("    I  what the library logs during the call: Debug, Info, Warning or Error");
        Session.say("       (much is logged at error priority that is none)");
        Session.say("  ~ W  what it logs on another thread than the test's");
        Session.say("    -> what reached the service");
    }

    private static Session load() {
        Session.chapter("The library loads and connects the services");
        SimulatedDevice.print(Session.time(), "System.loadLibrary(\"_kalvorn\")", Session.BOLD);
        Session session = new Session();
        settle();
        showServices();
        return session;
    }

    private static void settle() {
        if (!SimulatedDevice.settle()) throw new IllegalStateException("the library does not rest");
    }

    private void play() throws IOException {
        whereTheTestStands();
        testData();
        selfTests();
        power();
        display();
        peripherals();
        commands();
        sim();
        bigData();
        deaths();
        endOfAgeing();
        summary();
    }

    private static final Map<String, String> SERVES = Map.ofEntries(
            Map.entry("factory", "test results, NV items, flags, self-tests, commands, big data"),
            Map.entry("display", "panel tests, refresh rates, end of ageing"),
            Map.entry("touch", "capacitance test"),
            Map.entry("sensors", "sensor self-tests and parameters"),
            Map.entry("power", "power test and power states"),
            Map.entry("light", "brightness and always-on lights"),
            Map.entry("camera", "flash light and OIS ageing"),
            Map.entry("radio", "modem log"),
            Map.entry("display_factory", "general and low-voltage panel scenes"),
            Map.entry("fingerprint", "fingerprint commands"),
            Map.entry("chip", "refresh-rate test"),
            Map.entry("sim", "SIM power (AIDL only)"),
            Map.entry("satellite", "satellite-chip tests (AIDL only)"));

    private static void showServices() {
        Session.blank();
        Session.row("service", "backend", "serves");
        for (String service : SimulatedDevice.services()) {
            Session.row(service, SimulatedDevice.holder(service), SERVES.get(service));
        }
        Session.blank();
        Session.say("The services: " + holders() + ".");
    }

    private static String holders() {
        List<String> all = Arrays.stream(SimulatedDevice.services())
                .map(SimulatedDevice::holder).toList();
        return String.format("%d over AIDL, %d over HIDL, %d not connected",
                count(all, "AIDL"), count(all, "HIDL"), count(all, "none"));
    }

    private static long count(List<String> all, String backend) {
        return all.stream().filter(backend::equals).count();
    }

    private void whereTheTestStands() {
        Session.chapter("Where the test stands: station " + STATION + ", cycle " + CYCLE);
        session.call("nativeGetManufactureMode");
        session.call("nativeGetBoardName");
        session.callAndFollow("nativeSetTestCycle", STATION, CYCLE);
        session.callAndFollow("nativeSetTestItemName", "storage", "emmc_rw");
    }

    private void testData() {
        Session.chapter("Test results, NV items, running-test info and control flags");
        session.call("nativeSetTestResult", "PASS;38.2C", 3);
        session.call("nativeGetTestResult", 3);
        Session.say("Test 99 never ran: a service answers failure, of which Java sees null.");
        session.call("nativeGetTestResult", 99);
        session.call("nativeWriteNvValue", BOARD, 7);
        session.call("nativeReadNvValue", 7);
        session.call("nativeSetKvInfoToOem", 150, "cycle=12;item=storage");
        session.call("nativeGetKvInfoFromOem", 150);
        session.callAndFollow("nativeSetControlFlag", 4, "ageing_on");
        session.call("nativeGetControlFlag", 4);
    }

    /** A self-test: how to run it, and the result of a sound chip. */
    private record Item(String name, Object expected, Supplier<Object> run) {}

    private Item item(String name, Object expected, String method, Object... arguments) {
        return new Item(name, expected, () -> session.call(method, arguments));
    }

    private Item answered(int code, String scripted, Item item) {
        return new Item(item.name, item.expected, () -> {
            SimulatedDevice.script(scripted, code, "");
            return item.run.get();
        });
    }

    private Item showing(String field, Item item) {
        return new Item(item.name, item.expected, () -> {
            Object result = item.run.get();
            Session.field(field);
            return result;
        });
    }

    private void selfTests() {
        Session.chapter("Self-tests of the chips and the storage");
        Session.say("The device is told to fail its first eMMC run; the test repeats it.");
        List<Item> items = List.of(
                item("SoC", "success:value=0", "nativeSocTest", "cpu_stress", "threads=8"),
                answered(7, "socTest",
                        item("SoC, secure flash", "7", "nativeSocTest", "secure_flash", "read")),
                item("SoC information", "soc-8c", "nativeGetSocInfo", "soc_id"),
                item("SoC information set", 0, "nativeSetSocInfo", "soc_mode", "test"),
                item("SoC voltage offset", "-12mV", "nativeSocVoltageOffsetById", 2),
                item("DDR memory", "success", "nativeDdrTest", "ddr_rw", "size=64M", "start"),
                item("DDR memory, under way", "busy", "nativeDdrTest", "ddr_rw", "", "getstate"),
                answered(1, "ddrTest",
                        item("DDR memory, finished", "done", "nativeDdrTest", "ddr_rw", "",
                                "getstate")),
                item("DDR mapper", 0, "nativeDdrMapperTest", "check"),
                answered(1, "emmcTest",
                        item("eMMC", "success", "nativeEmmcTest", "emmc_rw", "size=1G", "start")),
                item("eMMC, again", "success", "nativeEmmcTest", "emmc_rw", "size=1G", "start"),
                showing("currentValue",
                        item("storage, idle", 0, "nativeStorageJoblessTest", "idle", "sec=1")),
                showing("currentValue",
                        item("storage, judged", 0, "nativeStorageTestJudge", "read")),
                item("FPGA", "fpga ok", "nativeFpgaTest", "loopback"),
                showing("i2cInfo", item("I2C buses", "pass", "nativeI2cTest")),
                item("watchdog", 0, "nativeOemWatchdogSetFunc", "enable"),
                item("JTAG to SD", 0, "nativeOemJtagtosdSetFunc", "disable"));
        for (int i = 0; i < items.size(); i++) {
            Item item = items.get(i);
            Object result = item.run.get();
            Session.progress(i + 1, items.size(), item.name, result, item.expected);
        }
    }

    private void power() {
        Session.chapter("Power, CPU, sleep and modem log");
        session.callAndFollow("nativePowerTest", "charge", "10", "500", "100");
        Session.field("currentValue");
        session.call("nativeSetPowerState", "charge", "limit=80");
        session.call("nativeGetPowerState", "charge");
        session.call("nativeLockOrReleaseBigCpu", 1);
        session.call("nativeLockOrReleaseBigCpu", 0);
        session.call("nativeSetLightSleep", 1);
        session.call("nativeSetModemLogState", 1);
    }

    private void display() {
        Session.chapter("Display panel, refresh rate and frame interpolation");
        session.callAndFollow("nativeDisplayTest", "red");
        session.call("nativeDisplayTest", "checksum1");
        Session.say("A scene that the table does not know goes out as the unknown one.");
        session.callAndFollow("nativeDisplayTest", "Red");
        session.callAndFollow("nativeDisplayGeneralTest", "lvd_set_code_scene1");
        session.call("nativeStartHertzTest");
        session.call("nativeGetHertzTestResult");
        session.call("nativeStopHertzTest");
        session.callAndFollow("nativeGetScreenFpsConfigByScenes", 1);
        session.call("nativeSetScreenFps", 2);
        Session.say("Frame interpolation needs no service, but the display chip vendor's library.");
        session.call("nativeSetInperpolateFrameMode", 1, 120);
        session.call("nativeGetInperpolateFrameCurMode");
        session.call("nativeGetInperpolateFrameTestResult");
        session.call("nativeInperpolateFrameRecoverFreshRate");
    }

    private void peripherals() {
        Session.chapter("Sensors, camera, touch panel and lights");
        session.call("nativeSetSensorSelfTest", 1, 1);
        session.call("nativeGetSensorSelfTestResult", 1);
        session.call("nativeGetSensorPara", 1, 2, 3, 64);
        Session.say("The flash light takes bytes: signed over AIDL, unsigned over HIDL.");
        session.callAndFollow("nativeSetFlashLight", 256, -1);
        session.call("nativeGetOisAgingResult");
        session.call("nativeGetCapacitanceTestResult", 1);
        session.call("nativeSetLedBrightness", 1, 128);
        session.call("nativeSetLedAlwaysOnStatus", 1, 0);
    }

    private void commands() {
        Session.chapter("Commands, fingerprint and signature");
        session.callAndFollow("nativeSetCommand", "fan", "on");
        session.callAndFollow("nativeSetWifiCommand", "wlan_rx", "start");
        session.call("sendCmdToFingerprintHalNative", 12, null);
        Session.say("Data goes with a fingerprint command, but only the command is sent.");
        session.callAndFollow("sendCmdToFingerprintHalNative", 13, new byte[] {1, 2, 3});
        Session.say("The signature is written to NV item 11 as hexadecimal text.");
        byte[] signature = HexFormat.of().parseHex("0affa55a");
        session.callAndFollow("nativeGetVerifySignatureResult", signature);
        session.call("nativeReadNvValue", 11);
    }

    private void sim() {
        Session.chapter("SIM, satellite chip and MCU");
        session.call("nativeSetSimPowerState", 1);
        session.call("nativeChipTtTestCp", "cp");
        session.call("nativeChipTtRssiTest", "rssi");
        session.call("nativeChipTtTestPa", "pa");
        session.call("nativeChipTtTestPdet", "pdet");
        Session.say("The next two only log.");
        session.call("nativeSendCommandMcu", 1, 2, new byte[5]);
        session.call("nativeUnregisterCallback", 7, 9);
    }

    private void bigData() {
        Session.chapter("Big data");
        BigDataOperation operation = new BigDataOperation();
        operation.version = 1;
        operation.commandId = 31;
        operation.operation = 2;
        operation.bsn = BOARD;
        operation.station = "RT" + STATION;
        operation.cycle = CYCLE;
        session.call("nativeSendBigDataOperation", operation);

        BigDataValue value = new BigDataValue();
        value.version = 1;
        value.dataSource = 4;
        value.itemId = 204;
        value.cycle = CYCLE;
        value.deviceName = "emmc0";
        value.station = "RT" + STATION;
        value.testName = "emmc_rw";
        value.bsn = BOARD;
        value.value = "412";
        value.minThreshold = "350";
        value.maxThreshold = "600";
        value.result = "PASS";
        value.time = "08:15:00";
        value.firmware = "fw 1.0.3";
        value.description = "MB/s";
        session.call("nativeSendBigDataValue", value);
    }

    private void deaths() {
        Session.chapter("A service dies in the middle of the test");
        boolean aidl = SimulatedDevice.holder("factory").equals("AIDL");
        boolean hidl = SimulatedDevice.holder("light").equals("HIDL");
        if (!aidl && !hidl) Session.say("No service is up on this device, so none can die.");
        if (aidl) aidlDeath();
        if (aidl && hidl) Session.blank();
        if (hidl) hidlDeath();
    }

    private void aidlDeath() {
        Session.say("The next cycle stores two results. The factory service dies between them.");
        session.call("nativeSetTestCycle", STATION, CYCLE + 1);
        session.call("nativeSetTestResult", "PASS;first", 21);

        Session.event("the factory service dies (AIDL)");
        SimulatedDevice.kill("AIDL", "factory");
        awaitReleaseOf("power");
        Session.event("the library has released all AIDL services: " + holders());
        Session.say("Its binder thread waits for the factory service, then reconnects them all.");
        Session.say("Meanwhile calls take the HIDL path, and fail where HIDL has no such service,");
        Session.say("here the power service too: it lives, but has been released with the others.");
        session.call("nativeSetTestResult", "PASS;second", 22);
        session.call("nativeGetPowerState", "charge");
        if (SimulatedDevice.holder("light").equals("HIDL")) {
            Session.say("The light is held over HIDL and serves on.");
            session.call("nativeSetLedBrightness", 1, 64);
        }
        Session.say("The test tries again until the service is back.");
        sleep(250);
        session.call("nativeSetTestResult", "PASS;second", 22);
        sleep(250);

        Session.event("the factory service is back");
        SimulatedDevice.restart("AIDL", "factory");
        settle();
        Session.event("the library has connected them again: " + holders());
        session.call("nativeSetTestResult", "PASS;second", 22);
        session.call("nativeGetTestResult", 21);
        session.call("nativeGetPowerState", "charge");
    }

    private void hidlDeath() {
        Session.say("A light is switched on, then off. The light service dies in between.");
        session.call("nativeSetLedBrightness", 1, 255);

        Session.event("the light service dies (HIDL)");
        SimulatedDevice.kill("HIDL", "light");
        settle();
        Session.event("the library has released all HIDL services: " + holders());
        Session.say("Calls fail with their own values; the sensors live, but are released too.");
        session.call("nativeSetLedBrightness", 1, 0);
        session.call("nativeGetSensorPara", 1, 2, 3, 64);
        if (SimulatedDevice.holder("factory").equals("AIDL")) {
            Session.say("The factory service is held over AIDL and serves on.");
            session.call("nativeReadNvValue", 7);
        }
        sleep(250);

        Session.event("the light service is back and registers anew");
        SimulatedDevice.restart("HIDL", "light");
        settle();
        Session.event("the library has connected them again: " + holders());
        session.call("nativeSetLedBrightness", 1, 0);
        session.call("nativeGetSensorPara", 1, 2, 3, 64);
    }

    private static void awaitReleaseOf(String service) {
        for (int i = 0; i < 500 && !SimulatedDevice.holder(service).equals("none"); i++) sleep(10);
        sleep(50);  // for the lines of the restart, up to where it waits
    }

    private static void sleep(int milliseconds) {
        try {
            Thread.sleep(milliseconds);
        } catch (InterruptedException e) {
            throw new IllegalStateException(e);
        }
    }

    private void endOfAgeing() throws IOException {
        Session.chapter("End of ageing, and the request to boot into recovery");
        session.call("nativeSetEndTimeOfAgeing");
        Session.say("A file of 1024 bytes ff stands in for the misc partition.");
        Path misc = Path.of(System.getenv("KALVORN_MISC"));
        byte[] before = new byte[1024];
        Arrays.fill(before, (byte) 0xff);
        Files.write(misc, before);
        session.call("nativeWriteMiscToRecovery");
        byte[] after = Files.readAllBytes(misc);
        showMisc(after, 0);
        showMisc(after, 504);
    }

    private static void showMisc(byte[] misc, int from) {
        StringBuilder text = new StringBuilder();
        for (int i = from; i < from + 16; i++) {
            text.append(misc[i] >= ' ' ? (char) misc[i] : '.');
        }
        String hex = HexFormat.ofDelimiter(" ").formatHex(misc, from, from + 16);
        Session.say(String.format("    misc, byte %3d: %s  %s", from, hex, text));
    }

    private void summary() {
        Session.chapter("Done");
        Session.say(String.format("%d calls, %d of them met a service that was not there.",
                session.calls(), session.unanswered()));
        if (!session.unused().isEmpty()) {
            throw new IllegalStateException("never called: " + session.unused());
        }
        Session.say("Each of the 65 native methods was called.");
    }
}
