package com.quorvin.kalvornii.demo;

import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.AIDL;
import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.HIDL;
import static java.nio.charset.StandardCharsets.US_ASCII;

import com.quorvin.kalvornii.BigDataOperation;
import com.quorvin.kalvornii.BigDataValue;
import com.quorvin.kalvornii.simulated.SimulatedDevice;
import com.quorvin.kalvornii.simulated.SimulatedDevice.Backend;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.HexFormat;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.function.Supplier;

/** A running test on the simulated device, from the load of the library to the end of ageing. */
public final class RunningTest {
    private static final int STATION = 5;
    private static final int CYCLE = 12;
    private static final String BOARD = "KV7A0042";

    private final Session session;
    private final Session.Service factory;
    private final Session.Service display;
    private final Session.Service touch;
    private final Session.Service sensors;
    private final Session.Service power;
    private final Session.Service light;
    private final Session.Service camera;
    private final Session.Service radio;
    private final Session.Service displayFactory;
    private final Session.Service fingerprint;
    private final Session.Service chip;
    private final Session.Service sim;
    private final Session.Service satellite;
    private final Session.Service library;

    private RunningTest(Session session) {
        this.session = session;
        factory = session.service("factory");
        display = session.service("display");
        touch = session.service("touch");
        sensors = session.service("sensors");
        power = session.service("power");
        light = session.service("light");
        camera = session.service("camera");
        radio = session.service("radio");
        displayFactory = session.service("display_factory");
        fingerprint = session.service("fingerprint");
        chip = session.service("chip");
        sim = session.service("sim");
        satellite = session.service("satellite");
        library = session.library();
    }

    /**
     * Plays the session on the device named by the first argument; the colour is on when
     * KALVORN_COLOUR is set, and the file KALVORN_MISC is the misc partition. Ends with 1 when
     * something did not come as the session expects it.
     */
    public static void main(String[] arguments) throws IOException {
        boolean colour = System.getenv("KALVORN_COLOUR") != null;
        Screen.open(colour);
        SimulatedDevice.start(arguments[0]);
        legend(arguments[0]);
        Session.chapter("The library loads and connects the services");
        Screen.print(Session.time(), "System.loadLibrary(\"_kalvorn\")", Session.BOLD);
        if (!new RunningTest(new Session()).play()) System.exit(1);
    }

    private static final Map<String, String> DEVICES = Map.of("aidl", "every service over AIDL",
            "hidl", "every service that HIDL has", "mixed",
            "sensors, light and touch over HIDL, no satellite chip, the rest over AIDL", "bare",
            "no service at all");

    private static void legend(String device) {
        Screen.print("", "Running test on the device \"" + device + "\": " + DEVICES.get(device),
                Session.BOLD);
        Session.blank();
        Screen.print("seconds  ", Session.beside("call(arguments)", "result"), "");
        note("    I  ",
                "what the library logs during the call: Debug, Info, Warning or Error; "
                        + "much is logged at error priority that is none");
        note("  ~ W  ", "what it logs on another thread than the test's");
        note("    -> ", "what reached the service, where that says more than the call");
        note("  ** ", "what happens to the device, and what the library made of it");
        note("  !! ", "what should not be; the demo then ends with a failure");
    }

    private static void note(String sign, String meaning) {
        Screen.print(" ".repeat(9) + sign, meaning, "");
    }

    /** False when something did not come as expected. */
    private boolean play() throws IOException {
        services();
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
        return summary();
    }

    private static final Map<String, String> SERVES = Map.ofEntries(
            Map.entry("factory", "test results, NV items, flags, self-tests, commands, big data"),
            Map.entry("display", "panel tests, refresh rates, end of ageing"),
            Map.entry("touch", "capacitance test"),
            Map.entry("sensors", "sensor self-tests and parameters"),
            Map.entry("power", "power test and power states"),
            Map.entry("light", "brightness and always-on lights"),
            Map.entry("camera", "flash light and OIS ageing"), Map.entry("radio", "modem log"),
            Map.entry("display_factory", "general and low-voltage panel scenes"),
            Map.entry("fingerprint", "fingerprint commands"),
            Map.entry("chip", "refresh-rate test"), Map.entry("sim", "SIM power (AIDL only)"),
            Map.entry("satellite", "satellite-chip tests (AIDL only)"));

    private void services() {
        settle();
        Session.blank();
        Session.say("\"... is null\" means that this backend does not have the service: HIDL is "
                + "asked after AIDL, and the methods of a service that neither has answer -9999 or "
                + "\"INVALID_SERVICE\".");
        if (Session.anyHolds(HIDL)) {
            Session.say("\"ReinitHal ... preexisting:1\" announces a HIDL service that was there "
                    + "before; only one that comes later makes the library connect again.");
        }
        Session.blank();
        Session.row("service", "backend", "serves");
        for (String service : SimulatedDevice.services()) {
            session.check("SERVES in RunningTest.java tells of " + service, true,
                    SERVES.containsKey(service));
            Session.row(service, Session.holder(service), SERVES.getOrDefault(service, ""));
        }
        Session.blank();
        Session.say("The services: " + Session.holders() + ".");
        session.checkConnected();
    }

    private void settle() {
        SimulatedDevice.settle();
    }

    private void whereTheTestStands() {
        Session.chapter("Where the test stands: station " + STATION + ", cycle " + CYCLE);
        factory.call(1, "nativeGetManufactureMode");
        factory.call("KV-MAIN-V3", "nativeGetBoardName");
        factory.callAndFollow(0, "nativeSetTestCycle", STATION, CYCLE);
        factory.callAndFollow(new int[] {0, 0}, "nativeSetTestItemName", "storage", "emmc_rw");
    }

    private void testData() {
        Session.chapter("Test results, NV items, running-test info, flags");
        factory.call(0, "nativeSetTestResult", "PASS;38.2C", 3);
        factory.call("PASS;38.2C", "nativeGetTestResult", 3);
        Session.say("Test 99 never ran: a service answers failure, of which Java sees null.");
        factory.call(null, "nativeGetTestResult", 99);
        factory.call(0, "nativeWriteNvValue", BOARD, 7);
        factory.call(BOARD, "nativeReadNvValue", 7);
        factory.call(0, "nativeSetKvInfoToOem", 150, "cycle=12;item=storage");
        factory.call("cycle=12;item=storage", "nativeGetKvInfoFromOem", 150);
        factory.callAndFollow(0, "nativeSetControlFlag", 4, "ageing_on");
        factory.call("ageing_on", "nativeGetControlFlag", 4);
    }

    /** A self-test: the result of a sound chip, and how to run it. */
    private record Item(String name, Object sound, Supplier<Object> run) {}

    private Item item(String name, Object sound, String method, Object... arguments) {
        return new Item(name, sound, () -> factory.call(sound, method, arguments));
    }

    private static Item answered(int code, String scripted, Item item) {
        return new Item(item.name, item.sound, () -> {
            SimulatedDevice.answer(scripted, code, "");
            return item.run.get();
        });
    }

    private Item showing(String field, String text, Item item) {
        return new Item(item.name, item.sound, () -> {
            Object result = item.run.get();
            factory.field(text, field);
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
                        new Item("eMMC", "success",
                                ()
                                        -> factory.call("failed", "nativeEmmcTest", "emmc_rw",
                                                "size=1G", "start"))),
                item("eMMC, again", "success", "nativeEmmcTest", "emmc_rw", "size=1G", "start"),
                showing("currentValue", "idle 0.8 W",
                        item("storage, idle", 0, "nativeStorageJoblessTest", "idle", "sec=1")),
                showing("currentValue", "412 MB/s",
                        item("storage, judged", 0, "nativeStorageTestJudge", "read")),
                item("FPGA", "fpga ok", "nativeFpgaTest", "loopback"),
                showing("i2cInfo", "bus0:0x38 bus2:0x6b",
                        item("I2C buses", "pass", "nativeI2cTest")),
                item("watchdog", 0, "nativeOemWatchdogSetFunc", "enable"),
                item("JTAG to SD", 0, "nativeOemJtagtosdSetFunc", "disable"));
        for (int i = 0; i < items.size(); i++) {
            Item item = items.get(i);
            Object result = item.run.get();
            Session.progress(i + 1, items.size(), item.name, result, item.sound);
        }
    }

    private void power() {
        Session.chapter("Power, CPU, sleep and modem log");
        Session.say("A power test measures a value over HIDL; over AIDL there is none.");
        power.callAndFollow(0, "nativePowerTest", "charge", "10", "500", "100");
        power.field(SimulatedDevice.holder("power") == HIDL ? "312" : "", "currentValue");
        power.call(0, "nativeSetPowerState", "charge", "limit=80");
        power.call("charging", "nativeGetPowerState", "charge");
        factory.call(0, "nativeLockOrReleaseBigCpu", 1);
        factory.call(0, "nativeLockOrReleaseBigCpu", 0);
        factory.call(0, "nativeSetLightSleep", 1);
        radio.call(0, "nativeSetModemLogState", 1);
    }

    private void display() {
        Session.chapter("Display panel, refresh rate and frame interpolation");
        display.callAndFollow("shown", "nativeDisplayTest", "red");
        display.call("shown", "nativeDisplayTest", "checksum1");
        Session.say("A scene that the table does not know goes out as the unknown one.");
        display.callAndFollow("shown", "nativeDisplayTest", "Red");
        displayFactory.callAndFollow("ok", "nativeDisplayGeneralTest", "lvd_set_code_scene1");
        chip.call("60-120", "nativeStartHertzTest");
        chip.call(0, "nativeGetHertzTestResult");
        chip.call(0, "nativeStopHertzTest");
        display.callAndFollow("60,90,120", "nativeGetScreenFpsConfigByScenes", 1);
        display.call(0, "nativeSetScreenFps", 2);
        Session.say("Frame interpolation needs no service, but the display chip vendor's library.");
        library.call(0, "nativeSetInperpolateFrameMode", 1, 120);
        library.call(1120, "nativeGetInperpolateFrameCurMode");
        library.call(0, "nativeGetInperpolateFrameTestResult");
        library.call(0, "nativeInperpolateFrameRecoverFreshRate");
    }

    private void peripherals() {
        Session.chapter("Sensors, camera, touch panel and lights");
        sensors.call(0, "nativeSetSensorSelfTest", 1, 1);
        sensors.call(1, "nativeGetSensorSelfTestResult", 1);
        sensors.call("0.01,0.02,9.81", "nativeGetSensorPara", 1, 2, 3, 64);
        Session.say("The flash light takes bytes: signed over AIDL, unsigned over HIDL.");
        camera.callAndFollow(0, "nativeSetFlashLight", 256, -1);
        camera.call(0, "nativeGetOisAgingResult");
        touch.call(0, "nativeGetCapacitanceTestResult", 1);
        light.call(0, "nativeSetLedBrightness", 1, 128);
        light.call(0, "nativeSetLedAlwaysOnStatus", 1, 0);
    }

    private void commands() {
        Session.chapter("Commands, fingerprint and signature");
        factory.callAndFollow("done", "nativeSetCommand", "fan", "on");
        factory.callAndFollow("wlan0 up", "nativeSetWifiCommand", "wlan_rx", "start");
        fingerprint.call(0, "sendCmdToFingerprintHalNative", 12, null);
        Session.say("Data goes with a fingerprint command, but only the command is sent.");
        fingerprint.callAndFollow(0, "sendCmdToFingerprintHalNative", 13, new byte[] {1, 2, 3});
        Session.say("The signature is written to NV item 11 as hexadecimal text.");
        byte[] signature = HexFormat.of().parseHex("0affa55a");
        factory.callAndFollow(0, "nativeGetVerifySignatureResult", signature);
        factory.call("0affa55a", "nativeReadNvValue", 11);
    }

    private void sim() {
        Session.chapter("SIM, satellite chip and MCU");
        sim.call(0, "nativeSetSimPowerState", 1);
        satellite.call("cp ok", "nativeChipTtTestCp", "cp");
        satellite.call("-97 dBm", "nativeChipTtRssiTest", "rssi");
        satellite.call("pa ok", "nativeChipTtTestPa", "pa");
        satellite.call("pdet ok", "nativeChipTtTestPdet", "pdet");
        Session.say("The next two only log. The second one's native function leaves out a "
                + "parameter on purpose, so that what it logs is not what it was given.");
        library.call(0, "nativeSendCommandMcu", 1, 2, new byte[5]);
        library.call(0, "nativeUnregisterCallback", 7, 9);
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
        factory.call(0, "nativeSendBigDataOperation", operation);

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
        factory.call(0, "nativeSendBigDataValue", value);
    }

    private void deaths() {
        Session.chapter("A service dies in the middle of the test");
        boolean aidl = SimulatedDevice.holder("factory") == AIDL;
        boolean hidl = SimulatedDevice.holder("light") == HIDL;
        if (!aidl && !hidl) Session.say("No service is up on this device, so none can die.");
        if (aidl) aidlDeath();
        if (aidl && hidl) Session.blank();
        if (hidl) hidlDeath();
        if (aidl || hidl) processDeath(SimulatedDevice.holder("display"));
    }

    private void aidlDeath() {
        Session.say("The next cycle stores two results. The factory service dies between them.");
        factory.call(0, "nativeSetTestCycle", STATION, CYCLE + 1);
        factory.call(0, "nativeSetTestResult", "PASS;first", 21);

        Session.event("the factory service dies (AIDL)");
        SimulatedDevice.kill(AIDL, "factory");
        sleep(50);  // for the lines of the restart, up to where it waits
        Session.event("the library has released all AIDL services: " + Session.holders());
        session.checkReleased(AIDL);
        Session.say("Its binder thread waits for the factory service, then reconnects them all. "
                + "Meanwhile calls take the HIDL path, and fail where HIDL has no such service, "
                + "here the power service too: it lives, but has been released with the others.");
        factory.call(0, "nativeSetTestResult", "PASS;second", 22);
        power.call("charging", "nativeGetPowerState", "charge");
        if (SimulatedDevice.holder("light") == HIDL) {
            Session.say("The light is held over HIDL and serves on.");
            light.call(0, "nativeSetLedBrightness", 1, 64);
        }
        Session.say("The test tries again until the service is back.");
        sleep(250);
        factory.call(0, "nativeSetTestResult", "PASS;second", 22);
        sleep(250);

        Session.event("the factory service is back");
        SimulatedDevice.restart(AIDL, "factory");
        reconnected();
        factory.call(0, "nativeSetTestResult", "PASS;second", 22);
        factory.call("PASS;first", "nativeGetTestResult", 21);
        power.call("charging", "nativeGetPowerState", "charge");
    }

    private void hidlDeath() {
        Session.say("A light is switched on, then off. The light service dies in between.");
        light.call(0, "nativeSetLedBrightness", 1, 255);

        Session.event("the light service dies (HIDL)");
        SimulatedDevice.kill(HIDL, "light");
        settle();
        Session.event("the library has released all HIDL services: " + Session.holders());
        session.checkReleased(HIDL);
        Session.say("Calls fail with their own values; the sensors live, but are released too.");
        light.call(0, "nativeSetLedBrightness", 1, 0);
        sensors.call("0.01,0.02,9.81", "nativeGetSensorPara", 1, 2, 3, 64);
        if (SimulatedDevice.holder("factory") == AIDL) {
            Session.say("The factory service is held over AIDL and serves on.");
            factory.call(BOARD, "nativeReadNvValue", 7);
        }
        sleep(250);

        Session.event("the light service is back and registers anew");
        SimulatedDevice.restart(HIDL, "light");
        reconnected();
        light.call(0, "nativeSetLedBrightness", 1, 0);
        sensors.call("0.01,0.02,9.81", "nativeGetSensorPara", 1, 2, 3, 64);
    }

    private void processDeath(Backend backend) {
        Session.blank();
        Session.say("The two display services run in one process, as on many devices.");
        Session.event("their process dies (" + backend + ")");
        SimulatedDevice.killProcess("display");
        sleep(50);
        if (backend == AIDL) {
            Session.say("Each death has a notice, on a thread of its own. The first to come "
                    + "releases the services, which takes the other back if it is not under way "
                    + "yet; each that comes reconnects what it finds released.");
        } else {
            Session.say("The first notice releases the services and takes the second one back.");
        }
        display.call("shown", "nativeDisplayTest", "red");
        sleep(250);

        Session.event("the process is back");
        SimulatedDevice.restartProcess("display");
        reconnected();
        display.call("shown", "nativeDisplayTest", "red");
        displayFactory.call("ok", "nativeDisplayGeneralTest", "lvd_set_code_scene1");
    }

    private void reconnected() {
        settle();
        Session.event("the library has connected them again: " + Session.holders());
        session.checkConnected();
    }

    private static void sleep(int milliseconds) {
        try {
            Thread.sleep(milliseconds);
        } catch (InterruptedException e) {
            throw new IllegalStateException(e);
        }
    }

    private void endOfAgeing() throws IOException {
        Session.chapter("End of ageing, and the request for recovery");
        display.call(0, "nativeSetEndTimeOfAgeing");
        Session.say("A file of 1024 bytes ff stands in for the misc partition; 512 are written.");
        Path misc = Path.of(System.getenv("KALVORN_MISC"));
        byte[] expected = new byte[1024];
        Arrays.fill(expected, (byte) 0xff);
        Files.write(misc, expected);
        library.call(0, "nativeWriteMiscToRecovery");
        byte[] written = Files.readAllBytes(misc);
        for (int from : new int[] {0, 8, 504, 512}) showMisc(written, from);
        byte[] command = Arrays.copyOf("boot-recovery".getBytes(US_ASCII), 512);
        System.arraycopy(command, 0, expected, 0, command.length);
        session.check("the misc partition as it should be", true, Arrays.equals(expected, written));
    }

    private static void showMisc(byte[] misc, int from) {
        StringBuilder text = new StringBuilder();
        for (int i = from; i < from + 8; i++) {
            text.append(misc[i] >= ' ' ? (char) misc[i] : '.');
        }
        String hex = HexFormat.ofDelimiter(" ").formatHex(misc, from, from + 8);
        Session.say(String.format("    byte %3d: %s  %s", from, hex, text));
    }

    private boolean summary() {
        Session.chapter("Done");
        session.check("methods that RunningTest.java never calls", Set.of(), session.unused());
        Session.say(String.format("%d calls of the %d native methods; %d of them met a service "
                        + "that was not there.",
                session.calls(), Session.natives().size(), session.unanswered()));
        List<String> faults = session.faults();
        Session.say(faults.isEmpty() ? "Everything came as expected." : "Not as expected:");
        for (String fault : faults) Session.fault(fault);
        return faults.isEmpty();
    }
}
