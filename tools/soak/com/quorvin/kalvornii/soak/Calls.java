package com.quorvin.kalvornii.soak;

import com.quorvin.kalvornii.KvNativeInterface;
import com.quorvin.kalvornii.soak.Stored.Kind;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

/**
 * Every method, with what it answers on the simulated device: when its service is healthy, and over
 * AIDL when the service dies during the call. Over HIDL no call is under way when a service dies.
 */
final class Calls {
    private final List<Call> calls = new ArrayList<>();

    private Calls() {}

    static List<Call> all() {
        Calls calls = new Calls();
        calls.addFactory();
        calls.addStoredTexts();
        calls.addPeripherals();
        calls.addDisplays();
        calls.addPower();
        calls.addAidlOnly();
        calls.addLocal();
        return calls.calls;
    }

    private Call add(String method, String service, Object healthy, Object broken, Call.Deed deed) {
        Call call = new Call(method, service, healthy, broken, deed);
        calls.add(call);
        return call;
    }

    private void addFactory() {
        String f = "factory";
        add("nativeSocTest", f, "success:value=0", "success:value=0",
                (kv, c) -> kv.nativeSocTest(c.first(), c.second()));
        add("nativeSocTest", f, "0", "0", (kv, c) -> kv.nativeSocTest("secure_flash", c.first()));
        add("nativeSocTest", f, "0", "0", (kv, c) -> kv.nativeSocTest("secure_weaver", c.first()));
        add("nativeDdrTest", f, "success", "success",
                (kv, c) -> kv.nativeDdrTest(c.first(), c.second(), c.third()));
        add("nativeDdrTest", f, "busy", "busy",
                (kv, c) -> kv.nativeDdrTest(c.first(), c.second(), "getstate"));
        add("nativeEmmcTest", f, "success", "success",
                (kv, c) -> kv.nativeEmmcTest(c.first(), c.second(), c.third()));
        add("nativeStorageJoblessTest", f, 0, 0,
                (kv, c) -> kv.nativeStorageJoblessTest(c.first(), c.second()))
                .filling(() -> KvNativeInterface.currentValue, "idle 0.8 W", "idle 0.8 W");
        add("nativeStorageTestJudge", f, 0, 0, (kv, c) -> kv.nativeStorageTestJudge(c.first()))
                .filling(() -> KvNativeInterface.currentValue, "412 MB/s", "412 MB/s");
        add("nativeDdrMapperTest", f, 0, 0, (kv, c) -> kv.nativeDdrMapperTest(c.first()));
        add("nativeGetSocInfo", f, "soc-8c", "", (kv, c) -> kv.nativeGetSocInfo(c.first()));
        add("nativeSetSocInfo", f, 0, 0, (kv, c) -> kv.nativeSetSocInfo(c.first(), c.second()));
        add("nativeFpgaTest", f, "fpga ok", "", (kv, c) -> kv.nativeFpgaTest(c.first()));
        add("nativeI2cTest", f, "pass", "", (kv, c) -> kv.nativeI2cTest())
                .filling(() -> KvNativeInterface.i2cInfo, "bus0:0x38 bus2:0x6b",
                        "bus0:0x38 bus2:0x6b");
        add("nativeGetBoardName", f, "KV-MAIN-V3", "", (kv, c) -> kv.nativeGetBoardName());
        add("nativeOemWatchdogSetFunc", f, 0, 0, (kv, c) -> kv.nativeOemWatchdogSetFunc(c.first()));
        add("nativeOemJtagtosdSetFunc", f, 0, 0, (kv, c) -> kv.nativeOemJtagtosdSetFunc(c.first()));
        add("nativeSetCommand", f, "done", "",
                (kv, c) -> kv.nativeSetCommand(c.first(), c.second()));
        add("nativeSetWifiCommand", f, "wlan0 up", "",
                (kv, c) -> kv.nativeSetWifiCommand(c.first(), c.second()));
        add("nativeSocVoltageOffsetById", f, "-12mV", "",
                (kv, c) -> kv.nativeSocVoltageOffsetById(c.value()));
        add("nativeLockOrReleaseBigCpu", f, 0, -1,
                (kv, c) -> kv.nativeLockOrReleaseBigCpu(c.value()));
        add("nativeSetLightSleep", f, 0, -1, (kv, c) -> kv.nativeSetLightSleep(c.value()));
        add("nativeSetTestCycle", f, 0, 0,
                (kv, c) -> kv.nativeSetTestCycle(c.value() & 63, c.value() & 31));
        add("nativeSetTestCycle", f, 0, 0, (kv, c) -> kv.nativeSetTestCycle(c.value(), -100));
        add("nativeSetTestItemName", f, 0, -1,
                (kv, c) -> second(kv.nativeSetTestItemName("emmc", c.shortText())))
                .keeping(Call.Keeps.TEXTS_WHEN_ABSENT);
        add("nativeGetManufactureMode", f, 1, -1, (kv, c) -> kv.nativeGetManufactureMode());
        add("nativeGetVerifySignatureResult", f, 0, KvNativeInterface.SERVICE_ABSENT,
                (kv, c) -> kv.nativeGetVerifySignatureResult(c.bytes));
        add("nativeSendBigDataOperation", f, 0, 0,
                (kv, c) -> kv.nativeSendBigDataOperation(c.operation)).keeping(Call.Keeps.TEXTS);
        add("nativeSendBigDataValue", f, 0, 0,
                (kv, c) -> kv.nativeSendBigDataValue(c.measured)).keeping(Call.Keeps.TEXTS);
    }

    private void addStoredTexts() {
        String f = "factory";
        add("nativeSetTestResult", f, 0, -1, (kv, c) -> kv.nativeSetTestResult(c.storing, c.id()))
                .writing(Kind.RESULT);
        add("nativeGetTestResult", f, null, "", (kv, c) -> kv.nativeGetTestResult(c.id()))
                .reading(Kind.RESULT);
        add("nativeWriteNvValue", f, 0, 0, (kv, c) -> kv.nativeWriteNvValue(c.storing, c.id()))
                .writing(Kind.NV_ITEM);
        add("nativeReadNvValue", f, null, "", (kv, c) -> kv.nativeReadNvValue(c.id()))
                .reading(Kind.NV_ITEM);
        add("nativeSetKvInfoToOem", f, 0, 0, (kv, c) -> kv.nativeSetKvInfoToOem(c.id(), c.storing))
                .writing(Kind.NV_ITEM);
        add("nativeGetKvInfoFromOem", f, null, "", (kv, c) -> kv.nativeGetKvInfoFromOem(c.id()))
                .reading(Kind.NV_ITEM);
        add("nativeSetControlFlag", f, 0, -1, (kv, c) -> kv.nativeSetControlFlag(c.id(), c.storing))
                .writing(Kind.FLAG);
        add("nativeGetControlFlag", f, null, "", (kv, c) -> kv.nativeGetControlFlag(c.id()))
                .reading(Kind.FLAG);
    }

    private void addPeripherals() {
        add("nativeGetCapacitanceTestResult", "touch", 0, 0,
                (kv, c) -> kv.nativeGetCapacitanceTestResult(c.value()));
        add("sendCmdToFingerprintHalNative", "fingerprint", 0, -1,
                (kv, c) -> kv.sendCmdToFingerprintHalNative(c.value(), c.bytes));
        add("sendCmdToFingerprintHalNative", "fingerprint", 0, -1,
                (kv, c) -> kv.sendCmdToFingerprintHalNative(c.value(), null));
        add("nativeSetFlashLight", "camera", 0, 0,
                (kv, c) -> kv.nativeSetFlashLight(c.value(), c.value()));
        add("nativeGetOisAgingResult", "camera", 0, 0, (kv, c) -> kv.nativeGetOisAgingResult());
        add("nativeSetSensorSelfTest", "sensors", 0, 0,
                (kv, c) -> kv.nativeSetSensorSelfTest(c.value(), c.value()));
        add("nativeGetSensorSelfTestResult", "sensors", 1, 0,
                (kv, c) -> kv.nativeGetSensorSelfTestResult(c.value()));
        add("nativeGetSensorPara", "sensors", "0.01,0.02,9.81", "",
                (kv, c) -> kv.nativeGetSensorPara(c.value(), 1, 2, 64));
        add("nativeSetLedBrightness", "light", 0, 0,
                (kv, c) -> kv.nativeSetLedBrightness(c.value(), c.value()));
        add("nativeSetLedAlwaysOnStatus", "light", 0, 0,
                (kv, c) -> kv.nativeSetLedAlwaysOnStatus(c.value(), c.value()));
        add("nativeSetModemLogState", "radio", 0, -1,
                (kv, c) -> kv.nativeSetModemLogState(c.value()));
    }

    private void addDisplays() {
        add("nativeDisplayTest", "display", "shown", "",
                (kv, c) -> kv.nativeDisplayTest(c.first())).keeping(Call.Keeps.TEXTS);
        add("nativeDisplayGeneralTest", "display_factory", "ok", "",
                (kv, c) -> kv.nativeDisplayGeneralTest(c.first())).keeping(Call.Keeps.TEXTS);
        add("nativeSetEndTimeOfAgeing", "display", 0, 0, (kv, c) -> kv.nativeSetEndTimeOfAgeing());
        add("nativeGetScreenFpsConfigByScenes", "display", "60,90,120", "",
                (kv, c) -> kv.nativeGetScreenFpsConfigByScenes(c.value()));
        add("nativeSetScreenFps", "display", 0, -1, (kv, c) -> kv.nativeSetScreenFps(c.value()));
        add("nativeStartHertzTest", "chip", "60-120", "", (kv, c) -> kv.nativeStartHertzTest());
        add("nativeStopHertzTest", "chip", 0, 0, (kv, c) -> kv.nativeStopHertzTest());
        add("nativeGetHertzTestResult", "chip", 0, 0, (kv, c) -> kv.nativeGetHertzTestResult());
    }

    private void addPower() {
        add("nativeSetPowerState", "power", 0, 0,
                (kv, c) -> kv.nativeSetPowerState(c.first(), c.second()));
        add("nativeGetPowerState", "power", "charging", "",
                (kv, c) -> kv.nativeGetPowerState(c.first()));
        add("nativePowerTest", "power", 0, 0,
                (kv, c) -> kv.nativePowerTest(c.first(), c.second(), c.third(), "100"))
                .filling(() -> KvNativeInterface.currentValue, "", "312");
    }

    private void addAidlOnly() {
        add("nativeSetSimPowerState", "sim", 0, 0, (kv, c) -> kv.nativeSetSimPowerState(c.value()));
        String s = "satellite";
        add("nativeChipTtTestCp", s, "cp ok", "", (kv, c) -> kv.nativeChipTtTestCp(c.first()))
                .keeping(Call.Keeps.TEXTS);
        add("nativeChipTtRssiTest", s, "-97 dBm", "",
                (kv, c) -> kv.nativeChipTtRssiTest(c.first())).keeping(Call.Keeps.TEXTS);
        add("nativeChipTtTestPa", s, "pa ok", "", (kv, c) -> kv.nativeChipTtTestPa(c.first()))
                .keeping(Call.Keeps.TEXTS);
        add("nativeChipTtTestPdet", s, "pdet ok", "",
                (kv, c) -> kv.nativeChipTtTestPdet(c.first())).keeping(Call.Keeps.TEXTS);
    }

    private void addLocal() {
        add("nativeWriteMiscToRecovery", null, 0, 0, (kv, c) -> kv.nativeWriteMiscToRecovery());
        add("nativeSendCommandMcu", null, 0, 0,
                (kv, c) -> kv.nativeSendCommandMcu(c.value(), c.value(), c.bytes));
        add("nativeUnregisterCallback", null, 0, 0,
                (kv, c) -> kv.nativeUnregisterCallback(c.value(), c.value()));
        // The display chip remembers one mode, which others would change under the first caller.
        add("nativeSetInperpolateFrameMode", null, 0, 0,
                (kv, c) -> kv.nativeSetInperpolateFrameMode(c.mode = 1 + c.slot, 120))
                .onOneThread();
        add("nativeGetInperpolateFrameCurMode", null, 0, 0,
                (kv, c) -> kv.nativeGetInperpolateFrameCurMode()
                        - (c.mode == 0 ? 0 : c.mode * 1000 + 120))
                .onOneThread();
        add("nativeGetInperpolateFrameTestResult", null, 0, 0,
                (kv, c) -> kv.nativeGetInperpolateFrameTestResult() + (c.mode == 0 ? 3 : 0))
                .onOneThread();
        add("nativeInperpolateFrameRecoverFreshRate", null, 0, 0,
                (kv, c) -> kv.nativeInperpolateFrameRecoverFreshRate() + (c.mode = 0))
                .onOneThread();
    }

    /**
     * The second of two calls' answers. A service that died in the first is dead in the second, so
     * that the first is either the same, or 0 of a service that was there.
     */
    private static Object second(int[] pair) {
        boolean fits = pair != null && pair.length == 2
                && (pair[0] == pair[1] || (pair[0] == 0 && pair[1] == -1));
        return fits ? (Object) pair[1] : Arrays.toString(pair);
    }
}
