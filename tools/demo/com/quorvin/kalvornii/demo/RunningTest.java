package com.quorvin.kalvornii.demo;

import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.AIDL;
import static com.quorvin.kalvornii.simulated.SimulatedDevice.Backend.HIDL;
import static java.nio.charset.StandardCharsets.US_ASCII;

import com.quorvin.kalvornii.samples.Sample;
import com.quorvin.kalvornii.simulated.SimulatedDevice;
import com.quorvin.kalvornii.simulated.SimulatedDevice.Backend;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.HexFormat;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.function.Supplier;

/** A running test on the simulated device, from the load of the library to the end of ageing. */
public final class RunningTest {
    private final Session session;
    private RunningTest(Session session) {
        this.session = session;
    }

    /**
     * Plays the session on the device named by the first argument, which the second describes; the
     * colour is on when KALVORN_COLOUR is set, and the file KALVORN_MISC is the misc partition.
     * Ends with 1 when something did not come as the session expects it.
     */
    public static void main(String[] arguments) throws IOException {
        boolean colour = System.getenv("KALVORN_COLOUR") != null;
        Screen.open(colour);
        SimulatedDevice.start(arguments[0]);
        legend(arguments[0], arguments[1]);
        Session.chapter("The library loads and connects the services");
        Screen.print(Session.time(), "System.loadLibrary(\"_kalvorn\")", Session.BOLD);
        if (!new RunningTest(new Session()).play()) System.exit(1);
    }

    private static void legend(String device, String text) {
        Screen.print("", "Running test on the device \"" + device + "\": " + text, Session.BOLD);
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
        section("Where the test stands: station 5, cycle 12");
        section("Test results, NV items, running-test info, flags");
        selfTests("Self-tests of the chips and the storage");
        section("Power, CPU, sleep and modem log");
        section("Display panel, refresh rate and frame interpolation");
        section("Sensors, camera, touch panel and lights");
        section("Commands, fingerprint and signature");
        session.call("0affa55a", "nativeReadNvValue", 11);
        section("SIM, satellite chip and MCU");
        section("Big data");
        deaths();
        endOfAgeing("End of ageing, and the request for recovery");
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
        for (String service : SimulatedDevice.get().services()) {
            session.check("SERVES in RunningTest.java tells of " + service, true,
                    SERVES.containsKey(service));
            Session.row(service, Session.holder(service), SERVES.getOrDefault(service, ""));
        }
        Session.blank();
        Session.say("The services: " + Session.holders() + ".");
        session.checkConnected();
    }

    private void settle() {
        SimulatedDevice.get().settle();
    }

    /** A chapter, of the samples below its title. */
    private void section(String title) {
        Session.chapter(title);
        for (Sample sample : session.section(title)) {
            doBefore(sample.method.getName());
            session.play(sample.method.getName());
        }
    }

    /** What is called besides the samples. */
    private void doBefore(String method) {
        switch (method) {
            case "nativeWriteNvValue":
                Session.say("Test 99 never ran: a service answers failure, of which Java sees "
                        + "null.");
                session.call(null, "nativeGetTestResult", 99);
                break;
            case "nativeSetLightSleep":
                session.call(0, "nativeLockOrReleaseBigCpu", 0);
                break;
            case "nativeDisplayGeneralTest":
                Object shown = session.sample("nativeDisplayTest").result;
                session.call(shown, "nativeDisplayTest", "checksum1");
                Session.say("A scene that the table does not know goes out as the unknown one.");
                session.call(shown, "nativeDisplayTest", "Red");
                session.follow();
                break;
            case "sendCmdToFingerprintHalNative":
                session.call(0, method, 12, null);
                break;
            default:
        }
    }

    /** A self-test: its name, the result of a sound chip, and how to run it. */
    private record Item(String method, String name, Object sound, Supplier<Object> run) {}

    private Item item(String name, Object sound, String method, Object... arguments) {
        return new Item(method, name, sound, () -> session.call(sound, method, arguments));
    }

    /** That of the method's sample. */
    private Item item(String name, String method) {
        return new Item(method, name, session.sample(method).result, () -> session.play(method));
    }

    private static Item answered(int code, String scripted, Item item) {
        return new Item(item.method, item.name, item.sound, () -> {
            SimulatedDevice.get().on(scripted).times(1).answer(code);
            return item.run.get();
        });
    }

    private void selfTests(String title) {
        Session.chapter(title);
        Session.say("The device is told to fail its first eMMC run; the test repeats it.");
        Item emmc = item("eMMC, again", "nativeEmmcTest");
        List<Item> items = new ArrayList<>(List.of(item("SoC", "nativeSocTest"),
                answered(7, "socTest",
                        item("SoC, secure flash", "7", "nativeSocTest", "secure_flash", "read")),
                item("SoC information", "nativeGetSocInfo"),
                item("SoC information set", "nativeSetSocInfo"),
                item("SoC voltage offset", "nativeSocVoltageOffsetById"),
                item("DDR memory", "nativeDdrTest"),
                item("DDR memory, under way", "busy", "nativeDdrTest", "ddr_rw", "", "getstate"),
                answered(1, "ddrTest",
                        item("DDR memory, finished", "done", "nativeDdrTest", "ddr_rw", "",
                                "getstate")),
                item("DDR mapper", "nativeDdrMapperTest"),
                answered(1, "emmcTest",
                        new Item(emmc.method, "eMMC", emmc.sound,
                                ()
                                        -> session.call("failed", emmc.method,
                                                session.sample(emmc.method).arguments))),
                emmc, item("storage, idle", "nativeStorageJoblessTest"),
                item("storage, judged", "nativeStorageTestJudge"), item("FPGA", "nativeFpgaTest"),
                item("I2C buses", "nativeI2cTest"), item("watchdog", "nativeOemWatchdogSetFunc"),
                item("JTAG to SD", "nativeOemJtagtosdSetFunc")));
        for (Sample sample : session.section(title)) {
            String method = sample.method.getName();
            if (items.stream().noneMatch(item -> item.method.equals(method))) {
                items.add(item(method, method));
            }
        }
        for (int i = 0; i < items.size(); i++) {
            Item item = items.get(i);
            Object result = item.run.get();
            Session.progress(i + 1, items.size(), item.name, result, item.sound);
        }
    }

    private void deaths() {
        Session.chapter("A service dies in the middle of the test");
        boolean aidl = SimulatedDevice.get().holder("factory") == AIDL;
        boolean hidl = SimulatedDevice.get().holder("light") == HIDL;
        if (!aidl && !hidl) Session.say("No service is up on this device, so none can die.");
        if (aidl) aidlDeath();
        if (aidl && hidl) Session.blank();
        if (hidl) hidlDeath();
        Backend display = SimulatedDevice.get().holder("display");
        if (display != null) processDeath(display);
    }

    private void aidlDeath() {
        Session.say("The next cycle stores two results. The factory service dies between them.");
        session.call(0, "nativeSetTestCycle", 5, 13);
        session.call(0, "nativeSetTestResult", "PASS;first", 21);

        Session.event("the factory service dies (AIDL)");
        SimulatedDevice.get().kill(AIDL, "factory");
        sleep(50);  // for the lines of the restart, up to where it waits
        Session.event("the library has released all AIDL services: " + Session.holders());
        session.checkReleased(AIDL);
        Session.say("Its binder thread waits for the factory service, then reconnects them all. "
                + "Meanwhile calls take the HIDL path, and fail where HIDL has no such service, "
                + "here the power service too: it lives, but has been released with the others.");
        session.call(0, "nativeSetTestResult", "PASS;second", 22);
        session.play("nativeGetPowerState");
        if (SimulatedDevice.get().holder("light") == HIDL) {
            Session.say("The light is held over HIDL and serves on.");
            session.call(0, "nativeSetLedBrightness", 1, 64);
        }
        Session.say("The test tries again until the service is back.");
        sleep(250);
        session.call(0, "nativeSetTestResult", "PASS;second", 22);
        sleep(250);

        Session.event("the factory service is back");
        SimulatedDevice.get().restart(AIDL, "factory");
        reconnected();
        session.call(0, "nativeSetTestResult", "PASS;second", 22);
        session.call("PASS;first", "nativeGetTestResult", 21);
        session.play("nativeGetPowerState");
    }

    private void hidlDeath() {
        Session.say("A light is switched on, then off. The light service dies in between.");
        session.call(0, "nativeSetLedBrightness", 1, 255);

        Session.event("the light service dies (HIDL)");
        SimulatedDevice.get().kill(HIDL, "light");
        settle();
        Session.event("the library has released all HIDL services: " + Session.holders());
        session.checkReleased(HIDL);
        Session.say("Calls fail with their own values; the sensors live, but are released too.");
        session.call(0, "nativeSetLedBrightness", 1, 0);
        session.play("nativeGetSensorPara");
        if (SimulatedDevice.get().holder("factory") == AIDL) {
            Session.say("The factory service is held over AIDL and serves on.");
            session.play("nativeReadNvValue");
        }
        sleep(250);

        Session.event("the light service is back and registers anew");
        SimulatedDevice.get().restart(HIDL, "light");
        reconnected();
        session.call(0, "nativeSetLedBrightness", 1, 0);
        session.play("nativeGetSensorPara");
    }

    private void processDeath(Backend backend) {
        Session.blank();
        Session.say("The two display services run in one process, as on many devices.");
        Session.event("their process dies (" + backend + ")");
        SimulatedDevice.get().killProcess("display");
        sleep(50);
        if (backend == AIDL) {
            Session.say("Each death has a notice, on a thread of its own. The first to come "
                    + "releases the services, which takes the other back if it is not under way "
                    + "yet; each that comes reconnects what it finds released.");
        } else {
            Session.say("The first notice releases the services and takes the second one back.");
        }
        session.play("nativeDisplayTest");
        sleep(250);

        Session.event("the process is back");
        SimulatedDevice.get().restartProcess("display");
        reconnected();
        session.play("nativeDisplayTest");
        session.play("nativeDisplayGeneralTest");
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

    private void endOfAgeing(String title) throws IOException {
        Path misc = Path.of(System.getenv("KALVORN_MISC"));
        byte[] expected = new byte[1024];
        Arrays.fill(expected, (byte) 0xff);
        Files.write(misc, expected);
        section(title);
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
                session.calls(), session.methods(), session.unanswered()));
        List<String> faults = session.faults();
        Session.say(faults.isEmpty() ? "Everything came as expected." : "Not as expected:");
        for (String fault : faults) Session.fault(fault);
        return faults.isEmpty();
    }
}
