package com.quorvin.kalvornii.bench;

import static java.util.Map.entry;

import com.quorvin.kalvornii.BigDataOperation;
import com.quorvin.kalvornii.BigDataValue;
import com.quorvin.kalvornii.KvNativeInterface;
import java.util.Map;

/**
 * The measured calls, driven from here: the way into Java is gone once for many calls, and each call
 * comes, as an application's does, from compiled Java. The arguments are those of arguments.h.
 */
final class Calls {
    private Calls() {}

    interface Call {
        void call();
    }

    private static final String TEXT = "rear-camera-calibration";
    private static final byte[] BYTES = {
        0x4b, 0x56, 0x01, 0x02, -97, 0, -1, 0x10, 0x4b, 0x56, 0x01, 0x02, -97, 0, -1, 0x10
    };
    private static final BigDataOperation OPERATION = operation();
    private static final BigDataValue VALUE = value();
    private static final KvNativeInterface LIBRARY = new KvNativeInterface();
    private static final Floor FLOOR = new Floor();

    private static final Map<String, Call> LIBRARY_CALLS =
            Map.ofEntries(
                    entry("nativeGetTestResult", () -> LIBRARY.nativeGetTestResult(1)),
                    entry("nativeSetTestResult", () -> LIBRARY.nativeSetTestResult(TEXT, 1)),
                    entry("nativeSocTest", () -> LIBRARY.nativeSocTest(TEXT, TEXT)),
                    entry("nativeDdrTest", () -> LIBRARY.nativeDdrTest(TEXT, TEXT, TEXT)),
                    entry("nativeEmmcTest", () -> LIBRARY.nativeEmmcTest(TEXT, TEXT, TEXT)),
                    entry("nativeStorageJoblessTest",
                            () -> LIBRARY.nativeStorageJoblessTest(TEXT, TEXT)),
                    entry("nativeStorageTestJudge", () -> LIBRARY.nativeStorageTestJudge(TEXT)),
                    entry("nativeDdrMapperTest", () -> LIBRARY.nativeDdrMapperTest(TEXT)),
                    entry("nativeGetSocInfo", () -> LIBRARY.nativeGetSocInfo(TEXT)),
                    entry("nativeSetSocInfo", () -> LIBRARY.nativeSetSocInfo(TEXT, TEXT)),
                    entry("nativeFpgaTest", () -> LIBRARY.nativeFpgaTest(TEXT)),
                    entry("nativeI2cTest", () -> LIBRARY.nativeI2cTest()),
                    entry("nativeGetBoardName", () -> LIBRARY.nativeGetBoardName()),
                    entry("nativeOemWatchdogSetFunc", () -> LIBRARY.nativeOemWatchdogSetFunc(TEXT)),
                    entry("nativeOemJtagtosdSetFunc", () -> LIBRARY.nativeOemJtagtosdSetFunc(TEXT)),
                    entry("nativeReadNvValue", () -> LIBRARY.nativeReadNvValue(1)),
                    entry("nativeWriteNvValue", () -> LIBRARY.nativeWriteNvValue(TEXT, 1)),
                    entry("nativeSetKvInfoToOem", () -> LIBRARY.nativeSetKvInfoToOem(1, TEXT)),
                    entry("nativeGetKvInfoFromOem", () -> LIBRARY.nativeGetKvInfoFromOem(1)),
                    entry("nativeGetCapacitanceTestResult",
                            () -> LIBRARY.nativeGetCapacitanceTestResult(1)),
                    entry("sendCmdToFingerprintHalNative",
                            () -> LIBRARY.sendCmdToFingerprintHalNative(1, BYTES)),
                    entry("nativeSetFlashLight", () -> LIBRARY.nativeSetFlashLight(1, 1)),
                    entry("nativeGetOisAgingResult", () -> LIBRARY.nativeGetOisAgingResult()),
                    entry("nativeSetSensorSelfTest", () -> LIBRARY.nativeSetSensorSelfTest(1, 1)),
                    entry("nativeGetSensorSelfTestResult",
                            () -> LIBRARY.nativeGetSensorSelfTestResult(1)),
                    entry("nativeGetSensorPara", () -> LIBRARY.nativeGetSensorPara(1, 1, 1, 1)),
                    entry("nativeDisplayTest", () -> LIBRARY.nativeDisplayTest("white")),
                    entry("nativeDisplayGeneralTest",
                            () -> LIBRARY.nativeDisplayGeneralTest("lcd_general")),
                    entry("nativeStartHertzTest", () -> LIBRARY.nativeStartHertzTest()),
                    entry("nativeStopHertzTest", () -> LIBRARY.nativeStopHertzTest()),
                    entry("nativeGetHertzTestResult", () -> LIBRARY.nativeGetHertzTestResult()),
                    entry("nativeSetLedBrightness", () -> LIBRARY.nativeSetLedBrightness(1, 1)),
                    entry("nativeSetEndTimeOfAgeing", () -> LIBRARY.nativeSetEndTimeOfAgeing()),
                    entry("nativeSetPowerState", () -> LIBRARY.nativeSetPowerState(TEXT, TEXT)),
                    entry("nativeGetPowerState", () -> LIBRARY.nativeGetPowerState(TEXT)),
                    entry("nativeSetCommand", () -> LIBRARY.nativeSetCommand(TEXT, TEXT)),
                    entry("nativeSetWifiCommand", () -> LIBRARY.nativeSetWifiCommand(TEXT, TEXT)),
                    entry("nativeSocVoltageOffsetById",
                            () -> LIBRARY.nativeSocVoltageOffsetById(1)),
                    entry("nativeSetLedAlwaysOnStatus",
                            () -> LIBRARY.nativeSetLedAlwaysOnStatus(1, 1)),
                    entry("nativePowerTest", () -> LIBRARY.nativePowerTest(TEXT, TEXT, TEXT, TEXT)),
                    entry("nativeLockOrReleaseBigCpu", () -> LIBRARY.nativeLockOrReleaseBigCpu(1)),
                    entry("nativeSendBigDataOperation",
                            () -> LIBRARY.nativeSendBigDataOperation(OPERATION)),
                    entry("nativeSendBigDataValue", () -> LIBRARY.nativeSendBigDataValue(VALUE)),
                    entry("nativeSetLightSleep", () -> LIBRARY.nativeSetLightSleep(1)),
                    entry("nativeGetControlFlag", () -> LIBRARY.nativeGetControlFlag(1)),
                    entry("nativeSetControlFlag", () -> LIBRARY.nativeSetControlFlag(1, TEXT)),
                    entry("nativeSetTestCycle", () -> LIBRARY.nativeSetTestCycle(1, 1)),
                    entry("nativeSetTestItemName", () -> LIBRARY.nativeSetTestItemName(TEXT, TEXT)),
                    entry("nativeSetModemLogState", () -> LIBRARY.nativeSetModemLogState(1)),
                    entry("nativeGetManufactureMode", () -> LIBRARY.nativeGetManufactureMode()),
                    entry("nativeGetVerifySignatureResult",
                            () -> LIBRARY.nativeGetVerifySignatureResult(BYTES)),
                    entry("nativeGetScreenFpsConfigByScenes",
                            () -> LIBRARY.nativeGetScreenFpsConfigByScenes(1)),
                    entry("nativeSetScreenFps", () -> LIBRARY.nativeSetScreenFps(1)),
                    entry("nativeSetSimPowerState", () -> LIBRARY.nativeSetSimPowerState(1)),
                    entry("nativeChipTtTestCp", () -> LIBRARY.nativeChipTtTestCp(TEXT)),
                    entry("nativeChipTtRssiTest", () -> LIBRARY.nativeChipTtRssiTest(TEXT)),
                    entry("nativeChipTtTestPa", () -> LIBRARY.nativeChipTtTestPa(TEXT)),
                    entry("nativeChipTtTestPdet", () -> LIBRARY.nativeChipTtTestPdet(TEXT)));

    private static final Map<String, Call> FLOOR_CALLS =
            Map.ofEntries(
                    entry("nativeGetSensorSelfTestResult",
                            () -> FLOOR.nativeGetSensorSelfTestResult(1)),
                    entry("nativeWriteNvValue", () -> FLOOR.nativeWriteNvValue(TEXT, 1)),
                    entry("nativeReadNvValue", () -> FLOOR.nativeReadNvValue(1)),
                    entry("nativeEmmcTest", () -> FLOOR.nativeEmmcTest(TEXT, TEXT, TEXT)),
                    entry("nativeGetVerifySignatureResult",
                            () -> FLOOR.nativeGetVerifySignatureResult(BYTES)),
                    entry("nativeSendBigDataOperation",
                            () -> FLOOR.nativeSendBigDataOperation(OPERATION)),
                    entry("nativeSetTestItemName", () -> FLOOR.nativeSetTestItemName(TEXT, TEXT)));

    private static BigDataOperation operation() {
        BigDataOperation operation = new BigDataOperation();
        operation.bsn = TEXT;
        operation.station = TEXT;
        return operation;
    }

    private static BigDataValue value() {
        BigDataValue value = new BigDataValue();
        value.deviceName = TEXT;
        value.station = TEXT;
        value.testName = TEXT;
        value.bsn = TEXT;
        value.value = TEXT;
        value.minThreshold = TEXT;
        value.maxThreshold = TEXT;
        value.result = TEXT;
        value.time = TEXT;
        value.firmware = TEXT;
        value.description = TEXT;
        return value;
    }

    /** Null for a method that has no row here. */
    static Call ofLibrary(String method) {
        return LIBRARY_CALLS.get(method);
    }

    /** Null for a method without a floor of its own. */
    static Call ofFloor(String method) {
        return FLOOR_CALLS.get(method);
    }

    static void repeat(Call call, int times) {
        for (int i = 0; i < times; i++) {
            call.call();
        }
    }
}
