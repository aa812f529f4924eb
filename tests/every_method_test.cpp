// What holds for every method alike: a service that is absent, a null argument, a call that fails
// on its way, and what is taken from the virtual machine and given back.

#include <algorithm>
#include <sstream>

#include "aidl/kalvorn_aidl_manager.h"
#include "harness.h"
#include "hidl/kalvorn_hidl_manager.h"
#include "jni/dispatch.h"

namespace {

using Lines = std::vector<std::string>;
using Args = std::vector<java::Arg>;

Lines Split(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line, '|');) lines.push_back(line);
    return lines;
}

/** A backend's operation, callable with a row's arguments without the dispatch in front of it. */
using Operation = std::function<std::string(const Args&)>;

template <typename T>
T FromJava(const java::Arg& arg) {
    if constexpr (std::is_integral_v<T>) {
        return static_cast<T>(std::get<int>(arg));
    } else if (const auto* text = std::get_if<const char*>(&arg)) {
        return static_cast<T>(static_cast<jobject>(java::String(*text)));
    } else {
        return nullptr;
    }
}

template <typename R, typename... A, size_t... I>
Operation Bind(R (*operation)(JNIEnv*, jobject, A...), std::index_sequence<I...>) {
    return [operation]([[maybe_unused]] const Args& args) {
        return java::Show(operation(java::Env(), nullptr, FromJava<A>(args[I])...));
    };
}
template <typename R, typename... A>
Operation Op(R (*operation)(JNIEnv*, jobject, A...)) {
    return Bind(operation, std::index_sequence_for<A...>{});
}

struct Row {
    const char* service;
    const char* method;
    Args args;
    const char* names;  // of the arguments that may be null, in order
    const char* asks;   // the service's method, once for each call
    const char* aidlFails;
    const char* hidlFails;  // null: reading the failed call's value ends the process
    int unreleased;         // texts kept on purpose
    int linesBefore;        // the call, the dispatch's own included
    const char* absent;
    Operation aidl;
    const char* aidlAbsentLine;
    const char* hidlAbsentLines;  // null: no HIDL side
};

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

using namespace native_aidl;

// clang-format off
const Row kRows[] = {
    {"factory", "nativeGetTestResult", {1}, "", "getTestResult", kEmpty, kEmpty, 0, 1, kText,
     Op(GetTestResult), kNoAidlFactory, "E GetTestResultByHidl" NO_FACTORY},
    {"factory", "nativeSetTestResult", {"v", 1}, "value", "setTestResult", "-1", kEnds, 0, 1, kNumber,
     Op(SetTestResult), kNoAidlFactory, "E SetTestResultByHidl" NO_FACTORY},
    {"factory", "nativeSocTest", {"a", "b"}, "testScene|para", "socTest", "\"success:value=0\"", "\"success:value=0\"", 0, 1, kText,
     Op(SocTest), kNoAidlFactory, "E SocTestByHidl" NO_FACTORY},
    {"factory", "nativeDdrTest", {"a", "b", "c"}, "testScene|para|status", "ddrTest", "\"success\"", "\"success\"", 0, 1, kText,
     Op(DdrTest), kNoAidlFactory, "E DdrTestByHidl" NO_FACTORY},
    {"factory", "nativeEmmcTest", {"a", "b", "c"}, "testScene|para|status", "emmcTest", "\"success\"", "\"success\"", 0, 1, kText,
     Op(EmmcTest), kNoAidlFactory, "E EmmcTestByHidl" NO_FACTORY},
    {"factory", "nativeStorageJoblessTest", {"a", "b"}, "testScene|para", "storageJoblessTest", "0", "0", 0, 1, kNumber,
     Op(StorageJoblessTest), kNoAidlFactory, "E StorageJoblessTestByHidl" NO_FACTORY},
    {"factory", "nativeStorageTestJudge", {"a"}, "testScene", "storageTestJudge", "0", "0", 0, 1, kNumber,
     Op(StorageTestJudge), kNoAidlFactory, "E StorageTestJudgeByHidl" NO_FACTORY},
    {"factory", "nativeDdrMapperTest", {"a"}, "status", "ddrMapperTest", "0", "0", 0, 1, kNumber,
     Op(DdrMapperTest), kNoAidlFactory, "E DdrMapperTestByHidl" NO_FACTORY},
    {"factory", "nativeGetSocInfo", {"a"}, "testScene", "getSocInfo", kEmpty, kEmpty, 0, 1, kText,
     Op(GetSocInfo), kNoAidlFactory, "E GetSocInfoByHidl" NO_FACTORY},
    {"factory", "nativeSetSocInfo", {"a", "b"}, "testScene|para", "setSocInfo", "0", kEnds, 0, 1, kNumber,
     Op(SetSocInfo), kNoAidlFactory, "E SetSocInfoByHidl" NO_FACTORY},
    {"factory", "nativeFpgaTest", {"a"}, "testScene", "fpgaTest", kEmpty, kEmpty, 0, 1, kText,
     Op(FpgaTest), kNoAidlFactory, "E FpgaTestByHidl" NO_FACTORY},
    {"factory", "nativeI2cTest", {}, "", "i2cTest", kEmpty, kEmpty, 0, 1, kText,
     Op(I2cTest), kNoAidlFactory, "E I2cTestByHidl" NO_FACTORY},
    {"factory", "nativeGetBoardName", {}, "", "getVersionName", kEmpty, kEmpty, 0, 1, kText,
     Op(GetBoardName), kNoAidlFactory, "E GetBoardNameByHidl" NO_FACTORY},
    {"factory", "nativeOemWatchdogSetFunc", {"a"}, "cmd", "setWatchdog", "0", "0", 0, 1, kNumber,
     Op(OemWatchdogSetFunc), kNoAidlFactory, "E OemWatchdogSetFuncByHidl" NO_FACTORY},
    {"factory", "nativeOemJtagtosdSetFunc", {"a"}, "cmd", "setJtagtosd", "0", "0", 0, 1, kNumber,
     Op(OemJtagtosdSetFunc), kNoAidlFactory, "E OemJtagtosdSetFuncByHidl" NO_FACTORY},
    {"factory", "nativeReadNvValue", {1}, "", "readNv", kEmpty, kEmpty, 0, 1, kText,
     Op(ReadNv), kNoAidlFactory, "E ReadNvByHidl" NO_FACTORY},
    {"factory", "nativeWriteNvValue", {"v", 1}, "value", "writeNv", "0", kEnds, 0, 1, kNumber,
     Op(WriteNv), kNoAidlFactory, "E WriteNvByHidl" NO_FACTORY},
    {"factory", "nativeSetKvInfoToOem", {1, "v"}, "value", "writeNv", "0", kEnds, 0, 1, kNumber,
     Op(SetKvInfoToOem), kNoAidlFactory, "E SetKvInfoToOemByHidl" NO_FACTORY},
    {"factory", "nativeGetKvInfoFromOem", {1}, "", "readNv", kEmpty, kEmpty, 0, 1, kText,
     Op(GetKvInfoFromOem), kNoAidlFactory, "E GetKvInfoFromOemByHidl" NO_FACTORY},
    {"touch", "nativeGetCapacitanceTestResult", {1}, "", "zantor_tp_capacitance_test", "0", "0", 0, 1, kNumber,
     Op(GetCapacitanceTestResult), "E aidlTouchscreen is null", "E GetCapacitanceTestResultByHidl|E g_touchscreen is null"},
    {"fingerprint", "sendCmdToFingerprintHalNative", {1, java::Bytes{1, 2}}, "", "sendCmdToHal", "-1", kEnds, 0, 4, kNumber,
     Op(SendCmdToFingerprintHal), "E g_aidlFingerprintSession is null",
     "I SendCmdToFingerprintHalByHidl|E SetCmdToFingerprintHal fail, g_qxFingerprint is null"},
    {"camera", "nativeSetFlashLight", {1, 2}, "", "setFlashLight", "0", kEnds, 0, 1, kNumber,
     Op(SetFlashLight), kNoAidlFactory, "E SetFlashLightByHidl|E g_cameraFactory is null"},
    {"camera", "nativeGetOisAgingResult", {}, "", "getOisAgingResult", "0", kEnds, 0, 1, kNumber,
     Op(GetOisAgingResult), kNoAidlFactory, "E GetOisAgingResultByHidl|E g_cameraFactory is null"},
    {"sensors", "nativeSetSensorSelfTest", {1, 2}, "", "setSensorSelfTest", "0", kEnds, 0, 1, kNumber,
     Op(SetSensorSelfTest), "E aidlSensors is null", "I SetSensorSelfTestByHidl|E g_sensors is null"},
    {"sensors", "nativeGetSensorSelfTestResult", {1}, "", "getSensorSelfTestResult", "0", kEnds, 0, 1, kNumber,
     Op(GetSensorSelfTestResult), "E aidlSensors is null", "I GetSensorSelfTestResultByHidl|E g_sensors is null"},
    {"sensors", "nativeGetSensorPara", {1, 2, 3, 4}, "", "handleSensorPara", kEmpty, kEmpty, 0, 1, kText,
     Op(GetSensorPara), "E aidlSensors is null", "I GetSensorParaByHidl|E g_sensors is null"},
    {"display", "nativeDisplayTest", {"white"}, "scene", "displayTest", kEmpty, kEmpty, 1, 2, kText,
     Op(DisplayTest), "E aidlDisplayService is null", "I DisplayTestByHidl|E g_displayService is null"},
    {"display_factory", "nativeDisplayGeneralTest", {"lcd_general"}, "scene", "displayGeneralTest", kEmpty, kEmpty, 1, 2, kText,
     Op(DisplayGeneralTest), "E aidlDisplayFactory is null", "I DisplayGeneralTestByHidl|E g_displayFactory is null"},
    {"chip", "nativeStartHertzTest", {}, "", "startHertzTest", kEmpty, kEmpty, 0, 1, kText,
     Op(StartHertzTest), "E aidlChipSrvInterface is null", "I StartHertzTestByHidl|E g_ztChipSrvInterface is null"},
    {"chip", "nativeStopHertzTest", {}, "", "stopHertzTest", "0", kEnds, 0, 1, kNumber,
     Op(StopHertzTest), "E aidlChipSrvInterface is null", "I StopHertzTestByHidl|E g_ztChipSrvInterface is null"},
    {"chip", "nativeGetHertzTestResult", {}, "", "getHertzTestResult", "0", kEnds, 0, 1, kNumber,
     Op(GetHertzTestResult), "E aidlChipSrvInterface is null", "I GetHertzTestResultByHidl|E g_ztChipSrvInterface is null"},
    {"light", "nativeSetLedBrightness", {1, 2}, "", "setLightsBrightness", "0", kEnds, 0, 1, kNumber,
     Op(SetLedBrightness), "E aidlLight is null", "I SetLedBrightnessByHidl|E g_light is null"},
    {"display", "nativeSetEndTimeOfAgeing", {}, "", "mft_set_end_time_of_ageing", "0", kEnds, 0, 1, kNumber,
     Op(SetEndTimeOfAgeing), "E aidlDisplayService is null", "I SetEndTimeOfAgeingByHidl|E g_displayService is null"},
    {"power", "nativeSetPowerState", {"a", "b"}, "testScene|para", "setPowerState", "0", kEnds, 0, 2, kNumber,
     Op(SetPowerState), "E aidlPower is null", "I SetPowerStateByHidl|E g_qxPower is null"},
    {"power", "nativeGetPowerState", {"a"}, "scene", "getPowerState", kEmpty, kEmpty, 0, 2, kText,
     Op(GetPowerState), "E aidlPower is null", "I GetPowerStateByHidl|E g_qxPower is null"},
    {"factory", "nativeSetCommand", {"a", "b"}, "first|second", "setCommand", kEmpty, "\"native setCommand fail\"", 0, 2, kText,
     Op(NativeSetCommand), kNoAidlFactory, "I NativeSetCommandByHidl" NO_FACTORY},
    {"factory", "nativeSetWifiCommand", {"a", "b"}, "testScene|cmd", "setWifiCommand", kEmpty, "\"setWifiCommand fail\"", 0, 1, kText,
     Op(SetWifiCommand), kNoAidlFactory, "I SetWifiCommandByHidl" NO_FACTORY},
    {"factory", "nativeSocVoltageOffsetById", {1}, "", "socVoltageOffsetById", kEmpty, kEmpty, 0, 2, kText,
     Op(KvSocVoltageOffsetById), kNoAidlFactory,
     "I KvSocVoltageOffsetByIdByHidl|D KvSocVoltageOffsetById, setSocID is 1" NO_FACTORY},
    {"light", "nativeSetLedAlwaysOnStatus", {1, 2}, "", "set_led_alwayson_status", "0", kEnds, 0, 1, kNumber,
     Op(KvSetLedAlwaysonStatus), "E aidlLight is null", "I KvSetLedAlwaysonStatusByHidl|E g_light is null"},
    {"power", "nativePowerTest", {"a", "b", "c", "d"}, "testScene|testTimes|maxLimit|minLimit", "setPowerState|powerTest", "0", "0", 0, 1, kNumber,
     Op(KvPowerTest), "E aidlPower is null", "I KvPowerTestByHidl|E g_qxPower is null"},
    {"factory", "nativeLockOrReleaseBigCpu", {1}, "", "lockBigCpu", "-1", kEnds, 0, 2, kNumber,
     Op(KvLockBigCpu), kNoAidlFactory, "I KvLockBigCpuByHidl" NO_FACTORY},
    {"factory", "nativeSendBigDataOperation", {kOperation}, "operation", "sendBigDataOperation", "0", kEnds, 2, 2, kNumber,
     Op(KvSendFmdOperation), kNoAidlFactory, "I KvSendFmdOperationByHidl" NO_FACTORY},
    {"factory", "nativeSendBigDataValue", {kValue}, "value", "sendBigData", "0", kEnds, 11, 3, kNumber,
     Op(KvSendFmdData), kNoAidlFactory, "I KvSendFmdDataByHidl" NO_FACTORY},
    {"factory", "nativeSetLightSleep", {1}, "", "setLightSleep", "-1", kEnds, 0, 2, kNumber,
     Op(KvSetLightSleep), kNoAidlFactory, "I KvSetLightSleepByHidl" NO_FACTORY},
    {"factory", "nativeGetControlFlag", {1}, "", "getControlFlag", kEmpty, kEmpty, 0, 2, kText,
     Op(GetControlFlag), kNoAidlFactory,
     "I GetControlFlagByHidl|D GetControlFlag, flagID is 1|D fi is null, IQxFactoryV1_1 not support!"},
    {"factory", "nativeSetControlFlag", {1, "f"}, "flag", "setControlFlag", "-1", kEnds, 0, 2, kNumber,
     Op(SetControlFlag), kNoAidlFactory,
     "I SetControlFlagByHidl|D SetControlFlag, flagID is 1, flag is f|D fi is null, IQxFactoryV1_1 not support!"},
    {"factory", "nativeSetTestCycle", {1, 2}, "", "writeOemInfo", "0", kEnds, 0, 3, kNumber,
     Op(KvSetTestCycle), kNoAidlFactory,
     "I KvSetTestCycleByHidl|D KvSetTestCycle, stationID = 1 cycle = 2\n|D KvSetTestCycle, fi is null, IQxFactoryV1_1 not support!"},
    {"factory", "nativeSetTestItemName", {"m", "s"}, "mainItemName|subItemName", "writeOemSubInfo|writeOemSubInfo", "{-1, -1}", kEnds, 0, 2, "{-9999, -9999}",
     Op(KvSetTestItemName), "I KvSetTestItemName, mainItemName = m, subItemName = s\n|E aidlFactoryInterface is null",
     "I KvSetTestItemNameByHidl|D KvSetTestItemName, mainItemName = m, subItemName = s\n|D KvSetTestItemName, fi is null, IQxFactoryV1_1 not support!"},
    {"radio", "nativeSetModemLogState", {1}, "", "setModemLogState", "-1", kEnds, 0, 2, kNumber,
     Op(KvModemLog), "E g_aidlRadioEnhance is null", "I KvModemLogByHidl|E g_radioenhance is null"},
    {"factory", "nativeGetManufactureMode", {}, "", "getManufactureMode", "-1", kEnds, 0, 1, kNumber,
     Op(GetManufactureMode), kNoAidlFactory,
     "I GetManufactureModeByHidl|E GetManufactureMode, fi is null, IQxFactoryV1_1 not support!"},
    {"factory", "nativeGetVerifySignatureResult", {java::Bytes{1, 2}}, "signature", "writeNv", "-9999", kEnds, 0, 1, kNumber,
     Op(GetVerifySignatureResult), kNoAidlFactory, "I GetVerifySignatureResultByHidl" NO_FACTORY},
    {"display", "nativeGetScreenFpsConfigByScenes", {1}, "", "getDisplayFpsConfig", kEmpty, "null", 0, 1, kText,
     Op(GetScreenFpsConfigByScenes), "E aidlDisplayService is null",
     "I GetScreenFpsConfigByScenesByHidl|E displayServiceNewVer is null, not support multi fps"},
    {"display", "nativeSetScreenFps", {1}, "", "setDisplayFps", "-1", kEnds, 0, 1, kNumber,
     Op(SetScreenFps), "E aidlDisplayService is null",
     "I SetScreenFpsByHidl|E displayServiceNewVer is null, not support multi fps"},
    {"sim", "nativeSetSimPowerState", {1}, "", "setSimPowerState", "0", kEnds, 0, 1, kNumber,
     Op(SetSimPowerState), "E aidlSimSerer is null", nullptr},
    {"satellite", "nativeChipTtTestCp", {"a"}, "scene", "chipTtTestCp", kEmpty, kEnds, 1, 1, kText,
     Op(ChipTtTestCp), "E ChipSrvSat is null", nullptr},
    {"satellite", "nativeChipTtRssiTest", {"a"}, "scene", "chipTtRssiTest", kEmpty, kEnds, 1, 0, kText,
     Op(ChipTtRssiTest), "E ChipSrvSat is null", nullptr},
    {"satellite", "nativeChipTtTestPa", {"a"}, "scene", "chipTtTestPa", kEmpty, kEnds, 1, 1, kText,
     Op(ChipTtTestPa), "E ChipSrvSat is null", nullptr},
    {"satellite", "nativeChipTtTestPdet", {"a"}, "scene", "chipTtTestPdet", kEmpty, kEnds, 1, 1, kText,
     Op(ChipTtTestPdet), "E ChipSrvSat is null", nullptr},
};
// clang-format on

class EveryMethodTest : public LibraryTest {
  protected:
    static std::vector<Backend> BackendsOf(const Row& row) {
        if (row.hidlAbsentLines == nullptr) return {kAidl};
        return {kAidl, kHidl};
    }

    static std::string Trace(Backend backend, const Row& row) {
        return std::string(backend == kAidl ? "aidl " : "hidl ") + row.method;
    }

    void ExpectNothingAsked(const char* what) { EXPECT_EQ(Lines{}, device.TakeCalls()) << what; }
};

// 53 with two backends, 5 with AIDL alone; the other seven ask no service.
static_assert(std::size(kRows) == 58);

TEST_F(EveryMethodTest, WithoutItsService) {
    LoadWith(kAidl, "");
    for (const Row& row : kRows) {
        if (row.hidlAbsentLines == nullptr) continue;
        SCOPED_TRACE(row.method);
        EXPECT_EQ(row.absent, java::Call(row.method, row.args));
        EXPECT_EQ(Split(row.hidlAbsentLines), TakeLog());
    }
}

// Java meets a null AIDL service only when it is released between query and call.
TEST_F(EveryMethodTest, WithoutItsServiceBehindTheDispatch) {
    java::Env()->PushLocalFrame(256);
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.method);
        EXPECT_EQ(row.absent, row.aidl(row.args));
        EXPECT_EQ(Split(row.aidlAbsentLine), TakeLog());
        if (row.method == std::string("nativeSetTestItemName")) continue;  // reads its texts first
        Args nulls = row.args;
        for (java::Arg& arg : nulls) {
            if (!std::holds_alternative<int>(arg)) arg = nullptr;
        }
        EXPECT_EQ(row.absent, row.aidl(nulls));
        EXPECT_EQ(Split(row.aidlAbsentLine), TakeLog());
    }
    java::Env()->PopLocalFrame(nullptr);
}

TEST_F(EveryMethodTest, WithANullArgument) {
    for (const Row& row : kRows) {
        const Lines names = Split(row.names);
        for (const Backend backend : BackendsOf(row)) {
            LoadWith(backend, row.service);
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
            LoadWith(backend, row.service);
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
            LoadWith(backend, row.service);
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
    EXPECT_EQ(50, texts);
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
                broken.fields[*name] = static_cast<const char*>(nullptr);
                EXPECT_EQ("-9999", java::Call(c.method, {broken}));
                ExpectNothingAsked(name->c_str());
                EXPECT_EQ(2, LinesLogged());
                EXPECT_EQ("E " + *name + " is null", TakeLastLine());
            }
        }
    }
}

TEST_F(EveryMethodTest, WithACallThatFails) {
    for (const Row& row : kRows) {
        for (const Backend backend : BackendsOf(row)) {
            const char* expected = backend == kAidl ? row.aidlFails : row.hidlFails;
            if (expected == nullptr) continue;                                  // ends the process
            if (backend == kHidl && std::string(expected) == "null") continue;  // two calls, below
            for (const Fault fault : {Fault::kTransport, Fault::kDeadObject}) {
                LoadWith(backend, row.service);
                SCOPED_TRACE(Trace(backend, row));
                for (const std::string& method : Split(row.asks)) device.Script(method, fault);
                EXPECT_EQ(expected, java::Call(row.method, row.args));
                EXPECT_FALSE(device.TakeCalls().empty());
            }
        }
    }
}

// The second call's result starts from the first one's, which was 0.
TEST_F(EveryMethodTest, HidlFrameRateReadThatFails) {
    for (const Fault fault : {Fault::kTransport, Fault::kDeadObject}) {
        LoadWith(kHidl, "display");
        device.Script("getDisplayFpsConfig", fault);
        EXPECT_EQ("\"\"", java::Call("nativeGetScreenFpsConfigByScenes", {1}));
    }
}

TEST_F(EveryMethodTest, HidlValueOfAFailedCallEndsTheProcess) {
    const struct {
        const char* service;
        const char* method;
        std::vector<java::Arg> args;
        const char* asks;
    } cases[] = {
            {"factory", "nativeWriteNvValue", {"v", 1}, "writeNv"},
            {"display", "nativeGetScreenFpsConfigByScenes", {1}, "setDisplayFps"},
    };
    for (const auto& c : cases) {
        LoadWith(kHidl, c.service);
        device.Script(c.asks, Fault::kTransport);
        EXPECT_DEATH(java::Call(c.method, c.args), "value of a failed call");
    }
}

TEST_F(EveryMethodTest, GivesBackWhatItTakes) {
    for (const Row& row : kRows) {
        for (const Backend backend : BackendsOf(row)) {
            LoadWith(backend, row.service);
            SCOPED_TRACE(Trace(backend, row));
            const java::CountJniUse count;
            java::Call(row.method, row.args);
            const java::JniUse use = count.use();
            EXPECT_EQ(row.unreleased, use.textsTaken - use.textsReleased);
            EXPECT_EQ(use.bytesTaken, use.bytesReleased);
            EXPECT_EQ(use.intsTaken, use.intsReleased);
        }
    }
}

// HIDL's brightness logs its fixed 0 before it calls, unlike AIDL's.
TEST_F(EveryMethodTest, LogsInStepWithItsCall) {
    for (const Row& row : kRows) {
        for (const Backend backend : BackendsOf(row)) {
            LoadWith(backend, row.service);
            SCOPED_TRACE(Trace(backend, row));
            int linesBefore = -1;
            device.OnCall([&] {
                if (linesBefore == -1) linesBefore = LinesLogged();
            });
            java::Call(row.method, row.args);
            const bool isHidlBrightness =
                    backend == kHidl && row.method == std::string("nativeSetLedBrightness");
            EXPECT_EQ(row.linesBefore + (isHidlBrightness ? 1 : 0), linesBefore);
        }
    }
}

// intended: without its service the item names and the array's elements are kept.
TEST_F(EveryMethodTest, ItemNamesOfNoServiceAreKept) {
    for (auto* operation : {native_aidl::KvSetTestItemName, native_hidl::KvSetTestItemName}) {
        const java::CountJniUse count;
        operation(java::Env(), nullptr, java::String("m"), java::String("s"));
        EXPECT_EQ(2, count.use().textsTaken - count.use().textsReleased);
        EXPECT_EQ(1, count.use().intsTaken);
        EXPECT_EQ(1, count.use().intsCommitted);
        EXPECT_EQ(0, count.use().intsReleased);
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
        EXPECT_EQ("E no memory for the Java array of {-9999, -9999}", TakeLastLine());
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

std::string DeclaredNatives() {
    JNIEnv* env = java::Env();
    jclass clazz = env->FindClass("NativeMethods");
    jmethodID list = env->GetStaticMethodID(clazz, "list", "()Ljava/lang/String;");
    jobject result = env->CallStaticObjectMethod(clazz, list);
    EXPECT_FALSE(env->ExceptionCheck());
    return java::Show(static_cast<jstring>(result));
}

TEST_F(EveryMethodTest, TheTableIsThatOfTheJavaClass) {
    std::set<std::string> rows;
    for (const JNINativeMethod& row : kMethods) rows.insert(std::string(row.name) + row.signature);
    std::string listed;
    for (const std::string& row : rows) listed += row + "\n";
    EXPECT_EQ(65u, rows.size());
    EXPECT_EQ('"' + listed + '"', DeclaredNatives());
}

}  // namespace
