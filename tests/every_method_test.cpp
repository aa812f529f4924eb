// What holds for every method alike: a service that is absent, a null argument, a call that fails
// on its way, and what is taken from the virtual machine and given back.

#include "every_method.h"

#include <algorithm>
#include <cstring>
#include <regex>
#include <set>
#include <sstream>

Lines Split(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line, '|');) lines.push_back(line);
    return lines;
}

namespace {

constexpr const char* kText = "\"INVALID_SERVICE\"";
constexpr const char* kNumber = "-9999";
constexpr const char* kEmpty = "\"\"";
constexpr const char* kEnds = nullptr;

constexpr const char* kNoAidlFactory = "E aidlFactoryInterface is null";
#define NO_FACTORY "|E g_qxFactoryInterface is null"

const java::Object kOperation{"com/quorvin/kalvornii/BigDataOperation",
                              {{"bsn", "b"}, {"station", "s"}}};
const java::Object kValue{"com/quorvin/kalvornii/BigDataValue",
                          {{"deviceName", "a"},
                           {"station", "b"},
                           {"testName", "c"},
                           {"bsn", "d"},
                           {"value", "e"},
                           {"minThreshold", "f"},
                           {"maxThreshold", "g"},
                           {"result", "h"},
                           {"time", "i"},
                           {"firmware", "j"},
                           {"description", "k"}}};

}  // namespace

// clang-format off
const std::vector<Row> kRows{
    {"factory", "nativeGetTestResult", {1}, "", "getTestResult", kEmpty, kEmpty, 0, 1, kText,
     "I Get test result = 0, id = 1, out = \n|I Get test result success",
     kNoAidlFactory, "E GetTestResultByHidl" NO_FACTORY,
     "E get test result = 0, id = 1, out = \n|E get test result success"},
    {"factory", "nativeSetTestResult", {"v", 1}, "value", "setTestResult", "-1", kEnds, 0, 1, kNumber,
     "I Set test result = -1, id = 1, nvValue = v\n",
     kNoAidlFactory, "E SetTestResultByHidl" NO_FACTORY},
    {"factory", "nativeSocTest", {"a", "b"}, "testScene|para", "socTest", "\"success:value=0\"", "\"success:value=0\"", 0, 1, kText,
     "I soc test result = 0, testScene = a, para = b, out = \n|I socTest value is 0 but out is empty, will set success\n",
     kNoAidlFactory, "E SocTestByHidl" NO_FACTORY,
     "E soc test value = 0, testScene = a, para = b, out = \n|E SocTest value is 0 but out is empty, will set success\n"},
    {"factory", "nativeDdrTest", {"a", "b", "c"}, "testScene|para|status", "ddrTest", "\"success\"", "\"success\"", 0, 1, kText,
     "I ddr test result = 0, testScene = a, para = b, status = c, out = \n|I DdrTest--> ddr test Success\n",
     kNoAidlFactory, "E DdrTestByHidl" NO_FACTORY,
     "E ddr test value = 0, testScene = a, para = b, status = c, out = \n|E DdrTest--> ddr test success\n"},
    {"factory", "nativeEmmcTest", {"a", "b", "c"}, "testScene|para|status", "emmcTest", "\"success\"", "\"success\"", 0, 1, kText,
     "I emmc test result = 0, testScene = a, para = b, status = c, out = \n|I emmcTest--> emmc test success\n",
     kNoAidlFactory, "E EmmcTestByHidl" NO_FACTORY,
     "E emmc test value = 0, testScene = a, para = b, status = c, out = \n|E EmmcTest--> emmc test success\n"},
    {"factory", "nativeStorageJoblessTest", {"a", "b"}, "testScene|para", "storageJoblessTest", "0", "0", 0, 1, kNumber,
     "I Storage jobless test result = 0, testScene = a, para = b, out = \n",
     kNoAidlFactory, "E StorageJoblessTestByHidl" NO_FACTORY,
     "E storage jobless test value = 0, testScene = a, para = b, out = \n"},
    {"factory", "nativeStorageTestJudge", {"a"}, "testScene", "storageTestJudge", "0", "0", 0, 1, kNumber,
     "I storage test judge res = 0, testScene = a, out = \n",
     kNoAidlFactory, "E StorageTestJudgeByHidl" NO_FACTORY,
     "E storage test judge value = 0, testScene = a, out = \n"},
    {"factory", "nativeDdrMapperTest", {"a"}, "status", "ddrMapperTest", "0", "0", 0, 1, kNumber,
     "I ddr mapper result = 0, status = a, out = \n",
     kNoAidlFactory, "E DdrMapperTestByHidl" NO_FACTORY,
     "E ddr mapper value = 0, status = a, out = \n"},
    {"factory", "nativeGetSocInfo", {"a"}, "testScene", "getSocInfo", kEmpty, kEmpty, 0, 1, kText,
     "I Get soc info result = 0, testScene = a, out = \n",
     kNoAidlFactory, "E GetSocInfoByHidl" NO_FACTORY,
     "E get soc info value = 0, testScene = a, out = \n"},
    {"factory", "nativeSetSocInfo", {"a", "b"}, "testScene|para", "setSocInfo", "0", kEnds, 0, 1, kNumber,
     "I set soc info result = 0, testScene = a, para = b\n",
     kNoAidlFactory, "E SetSocInfoByHidl" NO_FACTORY},
    {"factory", "nativeFpgaTest", {"a"}, "testScene", "fpgaTest", kEmpty, kEmpty, 0, 1, kText,
     "I Fpga test value = 0, testScene = a, out = \n",
     kNoAidlFactory, "E FpgaTestByHidl" NO_FACTORY,
     "E fpga test value = 0, testScene = a, out = \n"},
    {"factory", "nativeI2cTest", {}, "", "i2cTest", kEmpty, kEmpty, 0, 1, kText,
     "I i2c test values = 0, checkResult = , out = \n|I Succeed to get i2c checking info",
     kNoAidlFactory, "E I2cTestByHidl" NO_FACTORY,
     "E i2c test value = 0, checkResult = , out = \n|E succeed to get i2c checking info"},
    {"factory", "nativeGetBoardName", {}, "", "getVersionName", kEmpty, kEmpty, 0, 1, kText,
     "I Get version name = \n",
     kNoAidlFactory, "E GetBoardNameByHidl" NO_FACTORY,
     "E get version out = \n"},
    {"factory", "nativeOemWatchdogSetFunc", {"a"}, "cmd", "setWatchdog", "0", "0", 0, 1, kNumber,
     "I Set watchdog result = 0, cmd = a, out = \n",
     kNoAidlFactory, "E OemWatchdogSetFuncByHidl" NO_FACTORY,
     "E set watchdog value = 0, cmd = a, out = \n"},
    {"factory", "nativeOemJtagtosdSetFunc", {"a"}, "cmd", "setJtagtosd", "0", "0", 0, 1, kNumber,
     "I set jtagtosd result = 0, cmd = a, out = \n",
     kNoAidlFactory, "E OemJtagtosdSetFuncByHidl" NO_FACTORY,
     "E set jtagtosd value = 0, cmd = a, out = \n"},
    {"factory", "nativeReadNvValue", {1}, "", "readNv", kEmpty, kEmpty, 0, 1, kText,
     "I ReadNv values = 0, result = |I Nv read success",
     kNoAidlFactory, "E ReadNvByHidl" NO_FACTORY,
     "E ReadNv value = 0, result = |D nv read success"},
    {"factory", "nativeWriteNvValue", {"v", 1}, "value", "writeNv", "0", kEnds, 0, 1, kNumber,
     "I writeNv values = 0, nvValues = v",
     kNoAidlFactory, "E WriteNvByHidl" NO_FACTORY},
    {"factory", "nativeSetKvInfoToOem", {1, "v"}, "value", "writeNv", "0", kEnds, 0, 1, kNumber,
     "I Set kv info = v, result = 0",
     kNoAidlFactory, "E SetKvInfoToOemByHidl" NO_FACTORY},
    {"factory", "nativeGetKvInfoFromOem", {1}, "", "readNv", kEmpty, kEmpty, 0, 1, kText,
     "I Get kv info = , result = 0",
     kNoAidlFactory, "E GetKvInfoFromOemByHidl" NO_FACTORY,
     "D get kv info = , result = 0"},
    {"touch", "nativeGetCapacitanceTestResult", {1}, "", "zantor_tp_capacitance_test", "0", "0", 0, 1, kNumber,
     "I zantor_tp_capacitance_test result = 0\n|I zantor_tp_capacitance_test capacitanceTestResult = \n",
     "E aidlTouchscreen is null", "E GetCapacitanceTestResultByHidl|E g_touchscreen is null",
     "E zantor_tp_capacitance_test ret = 0\n|E zantor_tp_capacitance_test  capacitanceTestResult = \n"},
    {"fingerprint", "sendCmdToFingerprintHalNative", {1, java::Bytes{1, 2}}, "", "sendCmdToHal", "-1", kEnds, 0, 4, kNumber,
     "I cmd = 1|I SendCmdToFingerprintHal rawDataLength: 2|I SetCmdToFingerprintHal before|I SetCmdToFingerprintHal ret = -1",
     "E g_aidlFingerprintSession is null",
     "I SendCmdToFingerprintHalByHidl|E SetCmdToFingerprintHal fail, g_qxFingerprint is null"},
    {"camera", "nativeSetFlashLight", {1, 2}, "", "setFlashLight", "0", kEnds, 0, 1, kNumber,
     "I set flash light values = 0\n",
     kNoAidlFactory, "E SetFlashLightByHidl|E g_cameraFactory is null"},
    {"camera", "nativeGetOisAgingResult", {}, "", "getOisAgingResult", "0", kEnds, 0, 1, kNumber,
     "I ois aging values = 0\n",
     kNoAidlFactory, "E GetOisAgingResultByHidl|E g_cameraFactory is null"},
    {"sensors", "nativeSetSensorSelfTest", {1, 2}, "", "setSensorSelfTest", "0", kEnds, 0, 1, kNumber,
     "I Set sensor self test value = 0\n",
     "E aidlSensors is null", "I SetSensorSelfTestByHidl|E g_sensors is null"},
    {"sensors", "nativeGetSensorSelfTestResult", {1}, "", "getSensorSelfTestResult", "0", kEnds, 0, 1, kNumber,
     "I Get sensor self test value = 0\n",
     "E aidlSensors is null", "I GetSensorSelfTestResultByHidl|E g_sensors is null"},
    {"sensors", "nativeGetSensorPara", {1, 2, 3, 4}, "", "handleSensorPara", kEmpty, kEmpty, 0, 1, kText,
     "I handleSensorPara ret = 0, testResultArray = , sensor id = 1, main cmd = 2, sub cmd = 3, length =4",
     "E aidlSensors is null", "I GetSensorParaByHidl|E g_sensors is null",
     "D handleSensorPara ret = -1, testResultArray = , sensor id = 1, main cmd = 2, sub cmd = 3, length = 4"},
    {"display", "nativeDisplayTest", {"white"}, "scene", "displayTest", kEmpty, kEmpty, 1, 2, kText,
     "I displayTest scene = 0\n",
     "E aidlDisplayService is null", "I DisplayTestByHidl|E g_displayService is null",
     "E DisplayTest scene = 0\n"},
    {"display_factory", "nativeDisplayGeneralTest", {"lcd_general"}, "scene", "displayGeneralTest", kEmpty, kEmpty, 1, 2, kText,
     "I displayTest scene = 18\n",
     "E aidlDisplayFactory is null", "I DisplayGeneralTestByHidl|E g_displayFactory is null",
     "E DisplayTest scene = 18\n"},
    {"chip", "nativeStartHertzTest", {}, "", "startHertzTest", kEmpty, kEmpty, 0, 1, kText,
     "I startHertzTest parameters carried:",
     "E aidlChipSrvInterface is null", "I StartHertzTestByHidl|E g_ztChipSrvInterface is null",
     "D StartHertzTest resultCode:0, parameters carried:"},
    {"chip", "nativeStopHertzTest", {}, "", "stopHertzTest", "0", kEnds, 0, 1, kNumber,
     "I Stop hertz test result = 0\n",
     "E aidlChipSrvInterface is null", "I StopHertzTestByHidl|E g_ztChipSrvInterface is null"},
    {"chip", "nativeGetHertzTestResult", {}, "", "getHertzTestResult", "0", kEnds, 0, 1, kNumber,
     "I hertz test res = 0\n",
     "E aidlChipSrvInterface is null", "I GetHertzTestResultByHidl|E g_ztChipSrvInterface is null"},
    {"light", "nativeSetLedBrightness", {1, 2}, "", "setLightsBrightness", "0", kEnds, 0, 1, kNumber,
     "I set lights brightness values = 0\n",
     "E aidlLight is null", "I SetLedBrightnessByHidl|E g_light is null"},
    {"display", "nativeSetEndTimeOfAgeing", {}, "", "mft_set_end_time_of_ageing", "0", kEnds, 0, 1, kNumber,
     "I mft_set_end_time_of_ageing res is: 0",
     "E aidlDisplayService is null", "I SetEndTimeOfAgeingByHidl|E g_displayService is null"},
    {"power", "nativeSetPowerState", {"a", "b"}, "testScene|para", "setPowerState", "0", kEnds, 0, 2, kNumber,
     "I setPowerState, testScene:a, para:b|I setPowerState result:0",
     "E aidlPower is null", "I SetPowerStateByHidl|E g_qxPower is null"},
    {"power", "nativeGetPowerState", {"a"}, "scene", "getPowerState", kEmpty, kEmpty, 0, 2, kText,
     "I getPowerState, scene:a|I getPowerState, resultCode:0|I getPowerState result:",
     "E aidlPower is null", "I GetPowerStateByHidl|E g_qxPower is null",
     "E GetPowerState, scene:a|E GetPowerState, resultCode:0|E GetPowerState result:"},
    {"factory", "nativeSetCommand", {"a", "b"}, "first|second", "setCommand", kEmpty, "\"native setCommand fail\"", 0, 2, kText,
     "I nativeSetCommand, a b\n",
     kNoAidlFactory, "I NativeSetCommandByHidl" NO_FACTORY,
     "E NativeSetCommand, a b\n|E NativeSetCommand, resultCode -1\n"},
    {"factory", "nativeSetWifiCommand", {"a", "b"}, "testScene|cmd", "setWifiCommand", kEmpty, "\"setWifiCommand fail\"", 0, 1, kText,
     "I setWifiCommand, testScene:a, cmd:b, buf:, resultCode:0\n",
     kNoAidlFactory, "I SetWifiCommandByHidl" NO_FACTORY,
     "E SetWifiCommand, testScene:a, cmd:b, buf:, resultCode:-1\n"},
    {"factory", "nativeSocVoltageOffsetById", {1}, "", "socVoltageOffsetById", kEmpty, kEmpty, 0, 2, kText,
     "I kvSocVoltageOffsetById, setSocID is 1|I kvSocVoltageOffsetById resultCode:0, result:",
     kNoAidlFactory,
     "I KvSocVoltageOffsetByIdByHidl|D KvSocVoltageOffsetById, setSocID is 1" NO_FACTORY,
     "D KvSocVoltageOffsetById, setSocID is 1|D KvSocVoltageOffsetById resultCode:0, result:"},
    {"light", "nativeSetLedAlwaysOnStatus", {1, 2}, "", "set_led_alwayson_status", "0", kEnds, 0, 1, kNumber,
     "I Set_led_alwayson_status value = 0\n",
     "E aidlLight is null", "I KvSetLedAlwaysonStatusByHidl|E g_light is null"},
    {"power", "nativePowerTest", {"a", "b", "c", "d"}, "testScene|testTimes|maxLimit|minLimit", "setPowerState|powerTest", "0", "0", 0, 1, kNumber,
     "I kvPowerTest, testScene:a, testTimes:b, maxLimit:c, minLimit:d",
     "E aidlPower is null", "I KvPowerTestByHidl|E g_qxPower is null",
     "E KvPowerTest, testScene:a, testTimes:b, maxLimit:c, minLimit:d, testValue:"},
    {"factory", "nativeLockOrReleaseBigCpu", {1}, "", "lockBigCpu", "-1", kEnds, 0, 2, kNumber,
     "I lockBigCpu, lockOrRelease: 1\n|I lockBigCpu, result: -1\n",
     kNoAidlFactory, "I KvLockBigCpuByHidl" NO_FACTORY},
    {"factory", "nativeSendBigDataOperation", {kOperation}, "operation", "sendBigDataOperation", "0", kEnds, 2, 2, kNumber,
     "I Version: 0; commandId: 0; operation: 0; bsn: b; station: s; cycle: 0|I SendBigDataOperation, result: 0",
     kNoAidlFactory, "I KvSendFmdOperationByHidl" NO_FACTORY},
    {"factory", "nativeSendBigDataValue", {kValue}, "value", "sendBigData", "0", kEnds, 11, 3, kNumber,
     "I version: 0; dataSource: 0; numEvents: 1; errorCode: 0; itemId: 0; bsn: d; station: b; cycle: 0|I deviceName: a; testName: c; value: e; minThreshold: f; maxThreshold: g; result: h; time: i; firmware: j; description: k|I SendBigData, result: 0",
     kNoAidlFactory, "I KvSendFmdDataByHidl" NO_FACTORY},
    {"factory", "nativeSetLightSleep", {1}, "", "setLightSleep", "-1", kEnds, 0, 2, kNumber,
     "I setLightSleep, action: 1\n|I setLightSleep, result: -1\n",
     kNoAidlFactory, "I KvSetLightSleepByHidl" NO_FACTORY},
    {"factory", "nativeGetControlFlag", {1}, "", "getControlFlag", kEmpty, kEmpty, 0, 2, kText,
     "I getControlFlag, flagID is 1|I getControlFlag resultCode:0, flagResult:",
     kNoAidlFactory,
     "I GetControlFlagByHidl|D GetControlFlag, flagID is 1|D fi is null, IQxFactoryV1_1 not support!",
     "D GetControlFlag, flagID is 1|D GetControlFlag resultCode:0, flagResult:"},
    {"factory", "nativeSetControlFlag", {1, "f"}, "flag", "setControlFlag", "-1", kEnds, 0, 2, kNumber,
     "I setControlFlag, flagID is 1, flag is f|I setControlFlag result:-1, flag:f, flagSize:1",
     kNoAidlFactory,
     "I SetControlFlagByHidl|D SetControlFlag, flagID is 1, flag is f|D fi is null, IQxFactoryV1_1 not support!"},
    {"factory", "nativeSetTestCycle", {1, 2}, "", "writeOemInfo", "0", kEnds, 0, 3, kNumber,
     "I KVSetTestCycle, stationID = 1 cycle = 2\n|I KVSetTestCycle, qrcodeInfo = 0102\n|I KVSetTestCycle, result = 0\n",
     kNoAidlFactory,
     "I KvSetTestCycleByHidl|D KvSetTestCycle, stationID = 1 cycle = 2\n|D KvSetTestCycle, fi is null, IQxFactoryV1_1 not support!"},
    {"factory", "nativeSetTestItemName", {"m", "s"}, "mainItemName|subItemName", "writeOemSubInfo|writeOemSubInfo", "{-1, -1}", kEnds, 0, 2, "{-9999, -9999}",
     "I KvSetTestItemName, mainItemName = m, subItemName = s\n|I kvSetTestItemName, main result = -1\n|I kvSetTestItemName, sub result = -1\n",
     "I KvSetTestItemName, mainItemName = m, subItemName = s\n|E aidlFactoryInterface is null",
     "I KvSetTestItemNameByHidl|D KvSetTestItemName, mainItemName = m, subItemName = s\n|D KvSetTestItemName, fi is null, IQxFactoryV1_1 not support!"},
    {"radio", "nativeSetModemLogState", {1}, "", "setModemLogState", "-1", kEnds, 0, 2, kNumber,
     "I kvModemLog, state: 1\n|I kvModemLog, result: -1\n",
     "E g_aidlRadioEnhance is null", "I KvModemLogByHidl|E g_radioenhance is null"},
    {"factory", "nativeGetManufactureMode", {}, "", "getManufactureMode", "-1", kEnds, 0, 1, kNumber,
     "I GetManufactureMode, res = -1",
     kNoAidlFactory,
     "I GetManufactureModeByHidl|E GetManufactureMode, fi is null, IQxFactoryV1_1 not support!"},
    {"factory", "nativeGetVerifySignatureResult", {java::Bytes{1, 2}}, "signature", "writeNv", "-9999", kEnds, 0, 1, kNumber,
     "I getVerifySignatureResult, ret: -9999",
     kNoAidlFactory, "I GetVerifySignatureResultByHidl" NO_FACTORY},
    {"display", "nativeGetScreenFpsConfigByScenes", {1}, "", "getDisplayFpsConfig", kEmpty, "null", 0, 1, kText,
     "I GetDisplayFpsConfig, fpsConfig: ",
     "E aidlDisplayService is null",
     "I GetScreenFpsConfigByScenesByHidl|E displayServiceNewVer is null, not support multi fps"},
    {"display", "nativeSetScreenFps", {1}, "", "setDisplayFps", "-1", kEnds, 0, 1, kNumber,
     "I setDisplayFps, freqIndex: 1, res: -2",
     "E aidlDisplayService is null",
     "I SetScreenFpsByHidl|E displayServiceNewVer is null, not support multi fps"},
    {"sim", "nativeSetSimPowerState", {1}, "", "setSimPowerState", "0", kEnds, 0, 1, kNumber,
     "I SetSimPowerState, state:1, resultCode:0\n",
     "E aidlSimSerer is null", nullptr},
    {"satellite", "nativeChipTtTestCp", {"a"}, "scene", "chipTtTestCp", kEmpty, kEnds, 1, 1, kText,
     "I ChipTtTestCp, testScene:a, result:\n",
     "E ChipSrvSat is null", nullptr},
    {"satellite", "nativeChipTtRssiTest", {"a"}, "scene", "chipTtRssiTest", kEmpty, kEnds, 1, 0, kText,
     "",
     "E ChipSrvSat is null", nullptr},
    {"satellite", "nativeChipTtTestPa", {"a"}, "scene", "chipTtTestPa", kEmpty, kEnds, 1, 1, kText,
     "I ChipTtTestPa, testScene:a, result:\n",
     "E ChipSrvSat is null", nullptr},
    {"satellite", "nativeChipTtTestPdet", {"a"}, "scene", "chipTtTestPdet", kEmpty, kEnds, 1, 1, kText,
     "I ChipTtTestPdet, testScene:a, result:\n",
     "E ChipSrvSat is null", nullptr},
};
// clang-format on

namespace {

class EveryMethodTest : public LibraryTest {
  protected:
    static std::vector<Backend> BackendsOf(const Row& row) {
        if (row.hidlAbsentLines == nullptr) return {kAidl};
        return {kAidl, kHidl};
    }

    static std::string Trace(Backend backend, const Row& row) {
        return std::string(backend == kAidl ? "aidl " : "hidl ") + row.method;
    }

    /** The operation's own lines. */
    static Lines WithoutDispatch(Lines log) {
        if (!log.empty() && std::regex_search(log[0], std::regex("By[AH]idl$"))) {
            log.erase(log.begin());
        }
        return log;
    }

    /** Null for every argument that can be, where the service is looked at before the arguments. */
    static Args ArgsOfAnAbsentCall(const Row& row, const Lines& absentLog) {
        Args args = row.args;
        for (java::Arg& arg : args) {
            if (absentLog.size() == 2 && !std::holds_alternative<int>(arg)) arg = nullptr;
        }
        return args;
    }

    static bool NeedsLaterRevision(const Row& row) {
        return std::strstr(row.hidlAbsentLines, "not support") != nullptr;
    }

    /** The row's service is there, over HIDL in the first revision that has the method. */
    void Connect(Backend backend, const Row& row) {
        std::string service = row.service;
        const bool hasRevisions = service == "factory" || service == "display";
        if (backend == kHidl && hasRevisions && !NeedsLaterRevision(row)) service += "@1.0";
        LoadWith(backend, service);
    }

    void ExpectNothingAsked(const char* what) { EXPECT_EQ(Lines{}, device.TakeCalls()) << what; }
};

// A HIDL service of a revision before the method is as good as none.
TEST_F(EveryMethodTest, WithoutItsService) {
    for (const Row& row : kRows) {
        if (row.hidlAbsentLines == nullptr) continue;
        SCOPED_TRACE(row.method);
        LoadWith(kHidl, NeedsLaterRevision(row) ? row.service + std::string("@1.0") : "");
        const Lines log = Split(row.hidlAbsentLines);
        for (const Args& args : {row.args, ArgsOfAnAbsentCall(row, log)}) {
            EXPECT_EQ(row.absent, java::Call(row.method, args));
            EXPECT_EQ(Lines{}, device.TakeCalls());
            EXPECT_EQ(log, TakeLog());
        }
    }
}

TEST_F(EveryMethodTest, WithANullArgument) {
    for (const Row& row : kRows) {
        const Lines names = Split(row.names);
        for (const Backend backend : BackendsOf(row)) {
            Connect(backend, row);
            SCOPED_TRACE(Trace(backend, row));
            size_t position = 0;
            Args allNull = row.args;
            for (const std::string& name : names) {
                while (std::holds_alternative<int>(row.args[position])) position++;
                Args args = row.args;
                args[position] = allNull[position] = nullptr;
                position++;
                const java::CountJniUse count;
                EXPECT_EQ(row.absent, java::Call(row.method, args));
                EXPECT_EQ(count.use().textsTaken, count.use().textsReleased);
                ExpectNothingAsked(name.c_str());
                EXPECT_EQ("E " + name + " is null", TakeLastLine());
            }
            if (names.size() < 2) continue;
            java::Call(row.method, allNull);
            EXPECT_EQ("E " + names[0] + " is null", TakeLastLine());
        }
    }
}

TEST_F(EveryMethodTest, WithoutMemoryForAnArgument) {
    for (const Row& row : kRows) {
        const bool isBytes =
                !row.args.empty() && std::holds_alternative<java::Bytes>(row.args.back());
        if (*row.names == '\0' && !isBytes) continue;
        for (const Backend backend : BackendsOf(row)) {
            Connect(backend, row);
            SCOPED_TRACE(Trace(backend, row));
            const java::RefuseNext refusal(java::Jni::kCopy);
            EXPECT_EQ(row.absent, java::Call(row.method, row.args));
            ExpectNothingAsked(row.method);
            const std::string last = TakeLastLine();
            if (row.service == std::string("fingerprint")) {
                EXPECT_EQ("E SendCmdToFingerprintHal fail, rawDataArray is null", last);
            } else if (!isBytes) {
                EXPECT_EQ(" is null", last.substr(last.size() - 8));
            }
        }
    }
}

// A text that is lost is null, and a static field keeps its own: after one line in either case, and
// with all else as usual. What fills a field asks for no other text before.
TEST_F(EveryMethodTest, WithoutMemoryForAText) {
    const std::set<std::string> fillers{"nativePowerTest", "nativeStorageJoblessTest",
                                        "nativeStorageTestJudge", "nativeI2cTest"};
    int texts = 0;
    for (const Row& row : kRows) {
        const bool fillsField = fillers.count(row.method) != 0;
        if (row.absent != std::string(kText) && !fillsField) continue;
        for (const Backend backend : BackendsOf(row)) {
            Connect(backend, row);
            SCOPED_TRACE(Trace(backend, row));
            const auto call = [&] {
                for (const std::string& asked : Split(row.asks)) {
                    if (!fillsField) device.Script(asked, {0, "text"});
                }
                return java::Call(row.method, row.args);
            };
            const std::string usual = call();
            const Lines usualCalls = device.TakeCalls();
            const size_t usualLines = TakeLog().size();
            java::SetStaticField("currentValue", "old value");
            java::SetStaticField("i2cInfo", "old info");

            const java::RefuseNext refusal(java::Jni::kText);
            EXPECT_EQ(fillsField ? usual : "null", call());
            EXPECT_EQ(usualCalls, device.TakeCalls());
            const Lines log = TakeLog();
            EXPECT_EQ(usualLines + 1, log.size());
            const char* lost = fillsField ? "E cannot set " : "E no memory for the Java text of ";
            EXPECT_EQ(1, std::count_if(log.begin(), log.end(), [&](const std::string& line) {
                          return line.rfind(lost, 0) == 0;
                      }));
            EXPECT_EQ("\"old value\"", java::StaticField("currentValue"));
            EXPECT_EQ("\"old info\"", java::StaticField("i2cInfo"));
            texts++;
        }
    }
    EXPECT_LT(0, texts);
}

// The first null field, in the order in which they are read, is logged alone.
TEST_F(EveryMethodTest, BigDataWithNullFields) {
    const struct {
        const char* method;
        const java::Object* object;
        Lines names;
    } cases[] = {
            {"nativeSendBigDataOperation", &kOperation, {"station", "bsn"}},
            {"nativeSendBigDataValue",
             &kValue,
             {"deviceName", "station", "testName", "bsn", "value", "minThreshold", "maxThreshold",
              "result", "time", "firmware", "description"}},
    };
    for (const auto& c : cases) {
        for (const Backend backend : {kAidl, kHidl}) {
            LoadWith(backend, "factory");
            java::Object broken = *c.object;
            for (auto name = c.names.rbegin(); name != c.names.rend(); ++name) {
                java::Object oneBroken = *c.object;
                for (java::Object* object : {&broken, &oneBroken}) {
                    object->fields[*name] = static_cast<const char*>(nullptr);
                    EXPECT_EQ("-9999", java::Call(c.method, {*object}));
                    ExpectNothingAsked(name->c_str());
                    EXPECT_EQ(2, LinesLogged());
                    EXPECT_EQ("E " + *name + " is null", TakeLastLine());
                }
            }
        }
    }
}

// The presets stand, in the result, the log and the static fields alike.
TEST_F(EveryMethodTest, WithACallThatFails) {
    const std::set<std::string> publish{"nativeStorageJoblessTest", "nativeStorageTestJudge",
                                        "nativePowerTest"};
    for (const Row& row : kRows) {
        for (const Backend backend : BackendsOf(row)) {
            const char* expected = backend == kAidl ? row.aidlFails : row.hidlFails;
            if (expected == nullptr) continue;                              // ends the process
            if (backend == kHidl && row.hidlFailsLog == nullptr) continue;  // in display_test.cpp
            const Lines log = Split(backend == kAidl ? row.aidlFailsLog : row.hidlFailsLog);
            for (const Fault fault : {Fault::kTransport, Fault::kDeadObject}) {
                Connect(backend, row);
                SCOPED_TRACE(Trace(backend, row));
                java::SetStaticField("currentValue", "old value");
                java::SetStaticField("i2cInfo", "old info");
                for (const std::string& method : Split(row.asks)) device.Script(method, fault);
                EXPECT_EQ(expected, java::Call(row.method, row.args));
                EXPECT_FALSE(device.TakeCalls().empty());
                EXPECT_EQ(publish.count(row.method) != 0 ? kEmpty : "\"old value\"",
                          java::StaticField("currentValue"));
                EXPECT_EQ(row.asks == std::string("i2cTest") ? kEmpty : "\"old info\"",
                          java::StaticField("i2cInfo"));
                EXPECT_EQ(log, WithoutDispatch(TakeLog()));
            }
        }
    }
}

TEST_F(EveryMethodTest, HidlValueOfAFailedCallEndsTheProcess) {
    const auto expectEnd = [this](const Row& row, const std::string& asks) {
        Connect(kHidl, row);
        device.Script(asks, Fault::kTransport);
        EXPECT_DEATH(java::Call(row.method, row.args), "value of a failed call") << row.method;
    };
    for (const Row& row : kRows) {
        if (row.hidlAbsentLines == nullptr) continue;
        if (row.hidlFails == kEnds) expectEnd(row, Split(row.asks)[0]);
        if (row.asks == std::string("getDisplayFpsConfig")) expectEnd(row, "setDisplayFps");
    }
}

std::string Replaced(std::string text, int from, int to) {
    const std::string shown = java::Show(from);
    for (size_t at = text.find(shown); at != std::string::npos; at = text.find(shown)) {
        text.replace(at, shown.size(), java::Show(to));
    }
    return text;
}

// Whatever becomes of a small integer becomes of any other: no call, line or result cuts it.
TEST_F(EveryMethodTest, IntegersStayWhole) {
    const int small[] = {111, 112, 113, 114, 115};
    const int large[] = {1900000001, -1900000002, 1900000003, -1900000004, -1900000005};
    for (const Row& row : kRows) {
        // They send bytes, and a text of a few digits of each number.
        if (row.asks == std::string("setFlashLight") || row.asks == std::string("writeOemInfo")) {
            continue;
        }
        for (const Backend backend : BackendsOf(row)) {
            SCOPED_TRACE(Trace(backend, row));
            const auto outcome = [&](const int(&numbers)[5]) {
                Connect(backend, row);
                Args args = row.args;
                for (size_t i = 0; i < args.size(); i++) {
                    if (std::holds_alternative<int>(args[i])) args[i] = numbers[i];
                }
                for (const std::string& asked : Split(row.asks)) {
                    device.Script(asked, {numbers[4], "text"});
                }
                std::string all = java::Call(row.method, args);
                for (const std::string& call : device.TakeCalls()) all += "\n" + call;
                for (const std::string& line : TakeLog()) all += "\n" + line;
                return all;
            };
            std::string expected = outcome(small);
            for (size_t i = 0; i < 5; i++) expected = Replaced(expected, small[i], large[i]);
            EXPECT_EQ(expected, outcome(large));
        }
    }
}

TEST_F(EveryMethodTest, GivesBackWhatItTakes) {
    for (const Row& row : kRows) {
        for (const Backend backend : BackendsOf(row)) {
            Connect(backend, row);
            SCOPED_TRACE(Trace(backend, row));
            const java::CountJniUse count;
            java::Call(row.method, row.args);
            const java::JniUse use = count.use();
            EXPECT_EQ(row.unreleased, use.textsTaken - use.textsReleased);
            EXPECT_EQ(use.bytesTaken, use.bytesReleased);
            // The fingerprint's data is not written back, the signature is.
            const bool aborts = row.service == std::string("fingerprint");
            EXPECT_EQ(aborts ? use.bytesReleased : 0, use.bytesAborted);
            EXPECT_EQ(use.intsTaken, use.intsReleased);
        }
    }
}

// HIDL's brightness logs its fixed 0 before it calls, unlike AIDL's. Between two calls of one
// operation comes one line.
TEST_F(EveryMethodTest, LogsInStepWithItsCalls) {
    for (const Row& row : kRows) {
        for (const Backend backend : BackendsOf(row)) {
            Connect(backend, row);
            SCOPED_TRACE(Trace(backend, row));
            std::vector<int> linesBefore;
            device.OnCall([&] { linesBefore.push_back(LinesLogged()); });
            java::Call(row.method, row.args);
            const bool isHidlBrightness =
                    backend == kHidl && row.method == std::string("nativeSetLedBrightness");
            std::vector<int> expected{row.linesBefore + (isHidlBrightness ? 1 : 0)};
            const bool isHidlFrameRate =
                    backend == kHidl && row.asks == std::string("getDisplayFpsConfig");
            if (isHidlFrameRate || row.asks == std::string("writeOemSubInfo|writeOemSubInfo")) {
                expected.push_back(expected[0] + 1);
            }
            EXPECT_EQ(expected, linesBefore);
        }
    }
}

// An operation looks at its service once and keeps it: when everything is released after that, at
// a line that it logs or while it calls, it goes on as ever. Released before, between the query and
// the operation, the service is absent.
TEST_F(EveryMethodTest, KeepsItsServiceOverATeardown) {
    for (const Row& row : kRows) {
        for (const Backend backend : BackendsOf(row)) {
            SCOPED_TRACE(Trace(backend, row));
            Connect(backend, row);
            const std::string result = java::Call(row.method, row.args);
            const Lines calls = device.TakeCalls();
            const Lines log = TakeLog();
            Lines absentLog = Split(backend == kAidl ? row.aidlAbsentLine : row.hidlAbsentLines);
            const bool hasDispatchLine = WithoutDispatch(log) != log;
            if (backend == kAidl && hasDispatchLine) absentLog.insert(absentLog.begin(), log[0]);
            for (size_t line = 0; line <= log.size(); line++) {
                SCOPED_TRACE(line < log.size() ? log[line] : "while it calls");
                Connect(backend, row);
                if (line < log.size()) {
                    OnLine([line](const std::string&) {
                        if (LinesLogged() == static_cast<int>(line) + 1) Unload();
                    });
                } else {
                    device.OnCall([] { Unnoticed(Unload); });
                }
                const bool isAbsent = line + 1 < absentLog.size();
                const Args args = isAbsent ? ArgsOfAnAbsentCall(row, absentLog) : row.args;
                EXPECT_EQ(isAbsent ? row.absent : result, java::Call(row.method, args));
                OnLine(nullptr);
                EXPECT_EQ(isAbsent ? Lines{} : calls, device.TakeCalls());
                EXPECT_EQ(isAbsent ? absentLog : log, TakeLog());
            }
        }
    }
}

TEST_F(EveryMethodTest, ItemNamesWithoutMemoryForTheirResults) {
    for (const Backend backend : {kAidl, kHidl}) {
        for (const java::Jni refused : {java::Jni::kIntArray, java::Jni::kIntElements}) {
            LoadWith(backend, "factory");
            const java::RefuseNext refusal(refused);
            EXPECT_EQ("null", java::Call("nativeSetTestItemName", {"m", "s"}));
            ExpectNothingAsked("item names");
            EXPECT_EQ(3, LinesLogged());
            EXPECT_EQ("E no memory for the Java array of two results", TakeLastLine());
            EXPECT_EQ(2, refusal.use().textsTaken);
            EXPECT_EQ(2, refusal.use().textsReleased);
            EXPECT_EQ(refusal.use().intsTaken, refusal.use().intsReleased);
        }
        LoadWith(backend, "factory");
        const java::RefuseNext refusal(java::Jni::kIntArray);
        EXPECT_EQ("null", java::Call("nativeSetTestItemName", {"m", nullptr}));
        EXPECT_EQ(3, LinesLogged());
        EXPECT_EQ("E no memory for the Java array of two results", TakeLastLine());
        EXPECT_EQ(1, refusal.use().textsReleased);
    }
}

TEST_F(EveryMethodTest, WithoutAClassOrFieldThatItNeeds) {
    const struct {
        const char* method;
        Args args;
        const char* result;
        size_t calls;
        int fields;
        const char* line;
    } cases[] = {
            {"nativeI2cTest",
             {},
             "\"pass\"",
             1,
             1,
             "E cannot set i2cInfo to \"bus0:0x38 bus2:0x6b\""},
            {"nativeSendBigDataOperation",
             {kOperation},
             "-9999",
             0,
             6,
             "E cannot find the fields of com/quorvin/kalvornii/BigDataOperation"},
            {"nativeSendBigDataValue",
             {kValue},
             "-9999",
             0,
             16,
             "E cannot find the fields of com/quorvin/kalvornii/BigDataValue"},
    };
    java::SetStaticField("i2cInfo", "old info");
    for (const auto& c : cases) {
        for (const Backend backend : {kAidl, kHidl}) {
            LoadWith(backend, "factory");
            const auto callRefused = [&](java::Jni refused, int granted) {
                SCOPED_TRACE(std::string(c.method) + ", field " + std::to_string(granted));
                const java::RefuseNext refusal(refused, granted);
                EXPECT_EQ(c.result, java::Call(c.method, c.args));
                EXPECT_EQ(c.calls, device.TakeCalls().size());
                const Lines log = TakeLog();
                EXPECT_EQ(1, std::count(log.begin(), log.end(), c.line));
                EXPECT_EQ("\"old info\"", java::StaticField("i2cInfo"));
            };
            callRefused(java::Jni::kClass, 0);
            for (int granted = 0; granted < c.fields; granted++) {
                callRefused(java::Jni::kField, granted);
            }
        }
    }
}

// The dispatch asks the right service: with one service alone on AIDL, exactly its methods go
// there.
TEST_F(EveryMethodTest, GoesToAidlWhenItsOwnServiceIsThere) {
    for (const std::string& service : Device::Services()) {
        LoadWith(kAidl, service);
        for (const Row& row : kRows) {
            if (row.hidlAbsentLines == nullptr) continue;
            std::string hidlLine = Split(row.hidlAbsentLines)[0];
            const std::string stem = hidlLine.substr(0, hidlLine.size() - 4);
            java::Call(row.method, row.args);
            EXPECT_EQ(stem + (row.service == service ? "Aidl" : "Hidl"), TakeLog()[0]) << service;
        }
    }
}

}  // namespace
