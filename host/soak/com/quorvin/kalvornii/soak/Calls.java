package com.quorvin.kalvornii.soak;

import com.quorvin.kalvornii.BigDataOperation;
import com.quorvin.kalvornii.BigDataValue;
import com.quorvin.kalvornii.KvNativeInterface;
import com.quorvin.kalvornii.soak.Stored.Kind;
import java.lang.reflect.Modifier;
import java.util.ArrayList;
import java.util.List;
import java.util.TreeSet;

/**
 * Every method, with what it answers on the simulated device: when its service is healthy, and over
 * AIDL when the service dies during the call. Over HIDL no call is under way when a service dies.
 */
final class Calls {
    private final List<Call> calls = new ArrayList<>();

    private Calls() {}

    /** @throws IllegalStateException when a method is missing, or one is too many */
    static List<Call> all() {
        Calls calls = new Calls();
        calls.addFactory();
        calls.addStoredTexts();
        calls.addPeripherals();
        calls.addDisplays();
        calls.addPower();
        calls.addAidlOnly();
        calls.addLocal();
        calls.check();
        return List.copyOf(calls.calls);
    }

    private void check() {
        TreeSet<String> declared = new TreeSet<>();
        for (var method : KvNativeInterface.class.getDeclaredMethods()) {
            if (Modifier.isNative(method.getModifiers())) declared.add(method.getName());
        }
        TreeSet<String> listed = new TreeSet<>();
        for (Call call : calls) listed.add(call.method);
        if (!declared.equals(listed)) {
            TreeSet<String> missing = new TreeSet<>(declared);
            missing.removeAll(listed);
            listed.removeAll(declared);
            throw new IllegalStateException("Calls.java lacks " + missing
                    + " or has a method too many: " + listed);
        }
    }

    private Call number(String method, String service, int healthy, int broken,
            Call.OfNumber.Deed deed) {
        return add(new Call.OfNumber(method, service, healthy, broken, deed));
    }

    private Call text(String method, String service, String healthy, String broken,
            Call.OfText.Deed deed) {
        return add(new Call.OfText(method, service, healthy, broken, deed));
    }

    private void stores(String method, Kind kind, int broken, Call.OfNumber.Deed deed) {
        add(new Call.OfStoring(method, kind, broken, deed));
    }

    private void reads(String method, Kind kind, Call.OfText.Deed deed) {
        add(new Call.OfStoredText(method, kind, deed));
    }

    private Call add(Call call) {
        calls.add(call);
        return call;
    }

    private void addFactory() {
        String f = "factory";
        text("nativeSocTest", f, "success:value=0", "success:value=0",
                (kv, c) -> kv.nativeSocTest(c.first(), c.second()));
        text("nativeSocTest", f, "0", "0", (kv, c) -> kv.nativeSocTest("secure_flash", c.first()));
        text("nativeSocTest", f, "0", "0", (kv, c) -> kv.nativeSocTest("secure_weaver", c.first()));
        text("nativeDdrTest", f, "success", "success",
                (kv, c) -> kv.nativeDdrTest(c.first(), c.second(), c.third()));
        text("nativeDdrTest", f, "busy", "busy",
                (kv, c) -> kv.nativeDdrTest(c.first(), c.second(), "getstate"));
        text("nativeEmmcTest", f, "success", "success",
                (kv, c) -> kv.nativeEmmcTest(c.first(), c.second(), c.third()));
        number("nativeStorageJoblessTest", f, 0, 0,
                (kv, c) -> kv.nativeStorageJoblessTest(c.first(), c.second()))
                .filling(() -> KvNativeInterface.currentValue, "idle 0.8 W", "idle 0.8 W");
        number("nativeStorageTestJudge", f, 0, 0, (kv, c) -> kv.nativeStorageTestJudge(c.first()))
                .filling(() -> KvNativeInterface.currentValue, "412 MB/s", "412 MB/s");
        number("nativeDdrMapperTest", f, 0, 0, (kv, c) -> kv.nativeDdrMapperTest(c.first()));
        text("nativeGetSocInfo", f, "soc-8c", "", (kv, c) -> kv.nativeGetSocInfo(c.first()));
        number("nativeSetSocInfo", f, 0, 0,
                (kv, c) -> kv.nativeSetSocInfo(c.first(), c.second()));
        text("nativeFpgaTest", f, "fpga ok", "", (kv, c) -> kv.nativeFpgaTest(c.first()));
        text("nativeI2cTest", f, "pass", "", (kv, c) -> kv.nativeI2cTest())
                .filling(() -> KvNativeInterface.i2cInfo, "bus0:0x38 bus2:0x6b",
                        "bus0:0x38 bus2:0x6b");
        text("nativeGetBoardName", f, "KV-MAIN-V3", "", (kv, c) -> kv.nativeGetBoardName());
        number("nativeOemWatchdogSetFunc", f, 0, 0,
                (kv, c) -> kv.nativeOemWatchdogSetFunc(c.first()));
        number("nativeOemJtagtosdSetFunc", f, 0, 0,
                (kv, c) -> kv.nativeOemJtagtosdSetFunc(c.first()));
        text("nativeSetCommand", f, "done", "",
                (kv, c) -> kv.nativeSetCommand(c.first(), c.second()));
        text("nativeSetWifiCommand", f, "wlan0 up", "",
                (kv, c) -> kv.nativeSetWifiCommand(c.first(), c.second()));
        text("nativeSocVoltageOffsetById", f, "-12mV", "",
                (kv, c) -> kv.nativeSocVoltageOffsetById(c.value()));
        number("nativeLockOrReleaseBigCpu", f, 0, -1,
                (kv, c) -> kv.nativeLockOrReleaseBigCpu(c.value()));
        number("nativeSetLightSleep", f, 0, -1, (kv, c) -> kv.nativeSetLightSleep(c.value()));
        number("nativeSetTestCycle", f, 0, 0,
                (kv, c) -> kv.nativeSetTestCycle(c.value() & 63, c.value() & 31));
        number("nativeSetTestCycle", f, 0, 0, (kv, c) -> kv.nativeSetTestCycle(c.value(), -100));
        add(new Call.OfPair("nativeSetTestItemName", f, 0, -1,
                (kv, c) -> kv.nativeSetTestItemName("emmc", c.shortText())))
                .keeping(Call.Keeps.TEXTS_WHEN_ABSENT);
        number("nativeGetManufactureMode", f, 1, -1, (kv, c) -> kv.nativeGetManufactureMode());
        number("nativeGetVerifySignatureResult", f, 0, KvNativeInterface.SERVICE_ABSENT,
                (kv, c) -> kv.nativeGetVerifySignatureResult(c.bytes));
        number("nativeSendBigDataOperation", f, 0, 0,
                (kv, c) -> kv.nativeSendBigDataOperation(c.operation)).keeping(Call.Keeps.TEXTS);
        number("nativeSendBigDataValue", f, 0, 0,
                (kv, c) -> kv.nativeSendBigDataValue(c.measured)).keeping(Call.Keeps.TEXTS);
    }

    private void addStoredTexts() {
        stores("nativeSetTestResult", Kind.RESULT, -1,
                (kv, c) -> kv.nativeSetTestResult(c.storing, c.id()));
        reads("nativeGetTestResult", Kind.RESULT, (kv, c) -> kv.nativeGetTestResult(c.id()));
        stores("nativeWriteNvValue", Kind.NV_ITEM, 0,
                (kv, c) -> kv.nativeWriteNvValue(c.storing, c.id()));
        reads("nativeReadNvValue", Kind.NV_ITEM, (kv, c) -> kv.nativeReadNvValue(c.id()));
        stores("nativeSetKvInfoToOem", Kind.NV_ITEM, 0,
                (kv, c) -> kv.nativeSetKvInfoToOem(c.id(), c.storing));
        reads("nativeGetKvInfoFromOem", Kind.NV_ITEM, (kv, c) -> kv.nativeGetKvInfoFromOem(c.id()));
        stores("nativeSetControlFlag", Kind.FLAG, -1,
                (kv, c) -> kv.nativeSetControlFlag(c.id(), c.storing));
        reads("nativeGetControlFlag", Kind.FLAG, (kv, c) -> kv.nativeGetControlFlag(c.id()));
    }

    private void addPeripherals() {
        number("nativeGetCapacitanceTestResult", "touch", 0, 0,
                (kv, c) -> kv.nativeGetCapacitanceTestResult(c.value()));
        number("sendCmdToFingerprintHalNative", "fingerprint", 0, -1,
                (kv, c) -> kv.sendCmdToFingerprintHalNative(c.value(), c.bytes));
        number("sendCmdToFingerprintHalNative", "fingerprint", 0, -1,
                (kv, c) -> kv.sendCmdToFingerprintHalNative(c.value(), null));
        number("nativeSetFlashLight", "camera", 0, 0,
                (kv, c) -> kv.nativeSetFlashLight(c.value(), c.value()));
        number("nativeGetOisAgingResult", "camera", 0, 0, (kv, c) -> kv.nativeGetOisAgingResult());
        number("nativeSetSensorSelfTest", "sensors", 0, 0,
                (kv, c) -> kv.nativeSetSensorSelfTest(c.value(), c.value()));
        number("nativeGetSensorSelfTestResult", "sensors", 1, 0,
                (kv, c) -> kv.nativeGetSensorSelfTestResult(c.value()));
        text("nativeGetSensorPara", "sensors", "0.01,0.02,9.81", "",
                (kv, c) -> kv.nativeGetSensorPara(c.value(), 1, 2, 64));
        number("nativeSetLedBrightness", "light", 0, 0,
                (kv, c) -> kv.nativeSetLedBrightness(c.value(), c.value()));
        number("nativeSetLedAlwaysOnStatus", "light", 0, 0,
                (kv, c) -> kv.nativeSetLedAlwaysOnStatus(c.value(), c.value()));
        number("nativeSetModemLogState", "radio", 0, -1,
                (kv, c) -> kv.nativeSetModemLogState(c.value()));
    }

    private void addDisplays() {
        text("nativeDisplayTest", "display", "shown", "",
                (kv, c) -> kv.nativeDisplayTest(c.first())).keeping(Call.Keeps.TEXTS);
        text("nativeDisplayGeneralTest", "display_factory", "ok", "",
                (kv, c) -> kv.nativeDisplayGeneralTest(c.first())).keeping(Call.Keeps.TEXTS);
        number("nativeSetEndTimeOfAgeing", "display", 0, 0,
                (kv, c) -> kv.nativeSetEndTimeOfAgeing());
        text("nativeGetScreenFpsConfigByScenes", "display", "60,90,120", "",
                (kv, c) -> kv.nativeGetScreenFpsConfigByScenes(c.value()));
        number("nativeSetScreenFps", "display", 0, -1, (kv, c) -> kv.nativeSetScreenFps(c.value()));
        text("nativeStartHertzTest", "chip", "60-120", "", (kv, c) -> kv.nativeStartHertzTest());
        number("nativeStopHertzTest", "chip", 0, 0, (kv, c) -> kv.nativeStopHertzTest());
        number("nativeGetHertzTestResult", "chip", 0, 0, (kv, c) -> kv.nativeGetHertzTestResult());
    }

    private void addPower() {
        number("nativeSetPowerState", "power", 0, 0,
                (kv, c) -> kv.nativeSetPowerState(c.first(), c.second()));
        text("nativeGetPowerState", "power", "charging", "",
                (kv, c) -> kv.nativeGetPowerState(c.first()));
        number("nativePowerTest", "power", 0, 0,
                (kv, c) -> kv.nativePowerTest(c.first(), c.second(), c.third(), "100"))
                .filling(() -> KvNativeInterface.currentValue, "", "312");
    }

    private void addAidlOnly() {
        number("nativeSetSimPowerState", "sim", 0, 0,
                (kv, c) -> kv.nativeSetSimPowerState(c.value()));
        String s = "satellite";
        text("nativeChipTtTestCp", s, "cp ok", "", (kv, c) -> kv.nativeChipTtTestCp(c.first()))
                .keeping(Call.Keeps.TEXTS);
        text("nativeChipTtRssiTest", s, "-97 dBm", "",
                (kv, c) -> kv.nativeChipTtRssiTest(c.first())).keeping(Call.Keeps.TEXTS);
        text("nativeChipTtTestPa", s, "pa ok", "", (kv, c) -> kv.nativeChipTtTestPa(c.first()))
                .keeping(Call.Keeps.TEXTS);
        text("nativeChipTtTestPdet", s, "pdet ok", "",
                (kv, c) -> kv.nativeChipTtTestPdet(c.first())).keeping(Call.Keeps.TEXTS);
    }

    private void addLocal() {
        number("nativeWriteMiscToRecovery", null, 0, 0, (kv, c) -> kv.nativeWriteMiscToRecovery());
        number("nativeSendCommandMcu", null, 0, 0,
                (kv, c) -> kv.nativeSendCommandMcu(c.value(), c.value(), c.bytes));
        number("nativeUnregisterCallback", null, 0, 0,
                (kv, c) -> kv.nativeUnregisterCallback(c.value(), c.value()));
        // The display chip remembers one mode, which others would change under the first caller.
        number("nativeSetInperpolateFrameMode", null, 0, 0,
                (kv, c) -> kv.nativeSetInperpolateFrameMode(c.mode = 1 + c.slot, 120))
                .onOneThread();
        number("nativeGetInperpolateFrameCurMode", null, 0, 0,
                (kv, c) -> kv.nativeGetInperpolateFrameCurMode()
                        - (c.mode == 0 ? 0 : c.mode * 1000 + 120))
                .onOneThread();
        number("nativeGetInperpolateFrameTestResult", null, 0, 0,
                (kv, c) -> kv.nativeGetInperpolateFrameTestResult() + (c.mode == 0 ? 3 : 0))
                .onOneThread();
        number("nativeInperpolateFrameRecoverFreshRate", null, 0, 0,
                (kv, c) -> kv.nativeInperpolateFrameRecoverFreshRate() + (c.mode = 0))
                .onOneThread();
    }

    static BigDataOperation operation(String text) {
        BigDataOperation operation = new BigDataOperation();
        operation.bsn = operation.station = text;
        operation.cycle = 12;
        return operation;
    }

    static BigDataValue value(String text) {
        BigDataValue value = new BigDataValue();
        for (var field : BigDataValue.class.getFields()) {
            try {
                if (field.getType() == String.class) field.set(value, text);
            } catch (IllegalAccessException e) {
                throw new IllegalStateException(e);
            }
        }
        return value;
    }

    /** A text of this many characters, in ASCII or beyond. */
    static String longText(int length, char first) {
        char[] text = new char[length];
        for (int i = 0; i < length; i++) text[i] = (char) (first + i % 24);
        return new String(text);
    }

    static byte[] bytes(int length) {
        byte[] bytes = new byte[length];
        for (int i = 0; i < length; i++) bytes[i] = (byte) (i * 7);
        return bytes;
    }
}
