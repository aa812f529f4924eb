#include "harness.h"

namespace {

class SessionTest : public OperationTest {
  protected:
    void SetUp() override {
        OperationTest::SetUp();
        java::SetStaticField("currentValue", "old value");
        java::SetStaticField("i2cInfo", "old info");
    }

    /** Runs a case that must leave this in the field of the measured value, and the other alone. */
    void RunPowerTest(const Case& c, const std::string& currentValue) {
        java::SetStaticField("currentValue", "old value");
        Run({c});
        EXPECT_EQ('"' + currentValue + '"', java::StaticField("currentValue"));
        EXPECT_EQ("\"old info\"", java::StaticField("i2cInfo"));
    }
};

Case Cycle(Backend backend, int station, int cycle, const std::string& info, int result) {
    const std::string start = backend == kAidl ? "I KVSetTestCycle, " : "D KvSetTestCycle, ";
    std::vector<std::string> log{
            backend == kAidl ? "I KvSetTestCycleByAidl" : "I KvSetTestCycleByHidl",
            start + "stationID = " + std::to_string(station) + " cycle = " + std::to_string(cycle) +
                    "\n"};
    if (cycle != -100) log.push_back(start + "qrcodeInfo = " + info + "\n");
    log.push_back(start + "result = " + std::to_string(result) + "\n");
    return {backend,
            "factory",
            "nativeSetTestCycle",
            {station, cycle},
            {{"writeOemInfo", {result}}},
            {"factory.writeOemInfo(143, 64, \"" + info + "\")"},
            log,
            std::to_string(result)};
}

// The formatter would give every value of a row a line of its own.
// clang-format off

TEST_F(SessionTest, StationAndCycle) {
    const int lowest = -2147483647 - 1;
    for (const Backend backend : {kAidl, kHidl}) {
        Run({
                Cycle(backend, 7, 9, "0709", 0),
                Cycle(backend, 12, 345, "12345", 500005),
                Cycle(backend, 5, -3, "05-3", -1),
                // The cycle is written over whatever the station has from its third character on.
                Cycle(backend, 123, 4, "1204", 0),
                Cycle(backend, -10, 5, "-105", 0),
                Cycle(backend, lowest, lowest, "-2-2147483648", 0),
                // -100 is no cycle; its neighbours are.
                Cycle(backend, 5, -100, "", 6),
                Cycle(backend, 5, -101, "05-101", 0),
                Cycle(backend, -100, 3, "-103", 0),
        });
    }
}

TEST_F(SessionTest, ItemNames) {
    const std::string longName(70, 'n');
    Run(OnBoth({
            {"factory", "nativeSetTestItemName", {"main", "sub \xe2\x82\xac"},
             {{"writeOemSubInfo", {3}}, {"writeOemSubInfo", {4}}},
             {"factory.writeOemSubInfo(204, 10, 64, \"main\")",
              "factory.writeOemSubInfo(204, 11, 64, \"sub \xe2\x82\xac\")"},
             "I KvSetTestItemName",
             {"I KvSetTestItemName, mainItemName = main, subItemName = sub \xe2\x82\xac\n",
              "I kvSetTestItemName, main result = 3\n", "I kvSetTestItemName, sub result = 4\n"},
             {"D KvSetTestItemName, mainItemName = main, subItemName = sub \xe2\x82\xac\n",
              "D KvSetTestItemName, main result = 3\n", "D KvSetTestItemName, sub result = 4\n"},
             "{3, 4}"},
            // The length is 64 for any name, which goes out whole.
            {"factory", "nativeSetTestItemName", {longName.c_str(), ""}, {},
             {"factory.writeOemSubInfo(204, 10, 64, \"" + longName + "\")",
              "factory.writeOemSubInfo(204, 11, 64, \"\")"},
             "I KvSetTestItemName",
             {"I KvSetTestItemName, mainItemName = " + longName + ", subItemName = \n",
              "I kvSetTestItemName, main result = 0\n", "I kvSetTestItemName, sub result = 0\n"},
             {"D KvSetTestItemName, mainItemName = " + longName + ", subItemName = \n",
              "D KvSetTestItemName, main result = 0\n", "D KvSetTestItemName, sub result = 0\n"},
             "{0, 0}"},
    }));
    Run({
            // A failure of one call is not the other's.
            {kAidl, "factory", "nativeSetTestItemName", {"main", "sub"},
             {{"writeOemSubInfo", {3}}, {"writeOemSubInfo", Fault::kTransport}},
             {"factory.writeOemSubInfo(204, 10, 64, \"main\")",
              "factory.writeOemSubInfo(204, 11, 64, \"sub\")"},
             {"I KvSetTestItemNameByAidl",
              "I KvSetTestItemName, mainItemName = main, subItemName = sub\n",
              "I kvSetTestItemName, main result = 3\n", "I kvSetTestItemName, sub result = -1\n"},
             "{3, -1}"},
    });
}

TEST_F(SessionTest, AgeingAndManufactureMode) {
    Run(OnBoth({
            {"display", "nativeSetEndTimeOfAgeing", {}, {{"mft_set_end_time_of_ageing", {-7}}},
             {"display.mft_set_end_time_of_ageing()"},
             "I SetEndTimeOfAgeing", {"I mft_set_end_time_of_ageing res is: -7"},
             {"E mft_set_end_time_of_ageing result is: -7"}, "-7"},
            {"factory", "nativeGetManufactureMode", {}, {{"getManufactureMode", {2}}},
             {"factory.getManufactureMode()"},
             "I GetManufactureMode", {"I GetManufactureMode, res = 2"},
             {"D GetManufactureMode, ret = 2"}, "2"},
    }));
}

// AIDL composes a text and has no value to publish; HIDL sends the four and publishes.
TEST_F(SessionTest, PowerTest) {
    RunPowerTest({kAidl, "power", "nativePowerTest", {"s", "10", "500", "100"},
                  {{"setPowerState", {-3}}},
                  {"power.setPowerState(\"com.quorvin.kalvornii\", \"s\", "
                   "\"testTimes=10,maxLimit=500,minLimit=100\")"},
                  {"I KvPowerTestByAidl",
                   "I kvPowerTest, testScene:s, testTimes:10, maxLimit:500, minLimit:100"},
                  "-3"}, "");
    RunPowerTest({kAidl, "power", "nativePowerTest", {"s", "", "", ""}, {},
                  {"power.setPowerState(\"com.quorvin.kalvornii\", \"s\", "
                   "\"testTimes=,maxLimit=,minLimit=\")"},
                  {"I KvPowerTestByAidl",
                   "I kvPowerTest, testScene:s, testTimes:, maxLimit:, minLimit:"},
                  "0"}, "");
    RunPowerTest({kHidl, "power", "nativePowerTest", {"s", "10", "500", "100"},
                  {{"powerTest", {-3, "312"}}},
                  {"power.powerTest(\"s\", \"10\", \"500\", \"100\")"},
                  {"I KvPowerTestByHidl", "E KvPowerTest, testScene:s, testTimes:10, "
                   "maxLimit:500, minLimit:100, testValue:312"},
                  "-3"}, "312");
}

TEST_F(SessionTest, PowerState) {
    Run({
            {kAidl, "power", "nativeSetPowerState", {"s", "p"}, {{"setPowerState", {-4}}},
             {"power.setPowerState(\"com.quorvin.kalvornii\", \"s\", \"p\")"},
             {"I SetPowerStateByAidl", "I setPowerState, testScene:s, para:p",
              "I setPowerState result:-4"},
             "-4"},
            {kHidl, "power", "nativeSetPowerState", {"s", "p"}, {{"setPowerState", {-4}}},
             {"power.setPowerState(\"s\", \"p\")"},
             {"I SetPowerStateByHidl", "E SetPowerState, testScene:s, para:p",
              "E SetPowerState result:-4"},
             "-4"},
    });
    // Any code but 0 empties the text.
    for (const int code : {0, 1, -1}) {
        const std::string shown = std::to_string(code);
        const std::string text = code == 0 ? "idle" : "";
        Run({
                {kAidl, "power", "nativeGetPowerState", {"s"}, {{"getPowerState", {code, "idle"}}},
                 {"power.getPowerState(\"com.quorvin.kalvornii\", \"s\")"},
                 {"I GetPowerStateByAidl", "I getPowerState, scene:s",
                  "I getPowerState, resultCode:" + shown, "I getPowerState result:" + text},
                 '"' + text + '"'},
                {kHidl, "power", "nativeGetPowerState", {"s"}, {{"getPowerState", {code, "idle"}}},
                 {"power.getPowerState(\"s\")"},
                 {"I GetPowerStateByHidl", "E GetPowerState, scene:s",
                  "E GetPowerState, resultCode:" + shown, "E GetPowerState result:" + text},
                 '"' + text + '"'},
        });
    }
    EXPECT_EQ("\"old value\"", java::StaticField("currentValue"));
}

TEST_F(SessionTest, CpuSleepAndModemLog) {
    Run(OnBoth({
            {"factory", "nativeLockOrReleaseBigCpu", {2}, {{"lockBigCpu", {-5}}},
             {"factory.lockBigCpu(2)"},
             "I KvLockBigCpu", {"I lockBigCpu, lockOrRelease: 2\n", "I lockBigCpu, result: -5\n"},
             {"D LockBigCpu, lockOrRelease: 2\n", "D LockBigCpu, result: -5\n"}, "-5"},
            {"factory", "nativeSetLightSleep", {3}, {{"setLightSleep", {6}}},
             {"factory.setLightSleep(3)"},
             "I KvSetLightSleep", {"I setLightSleep, action: 3\n", "I setLightSleep, result: 6\n"},
             {"D SetLightSleep, action: 3\n", "D SetLightSleep, result: 6\n"}, "6"},
            // All 32 bits of the state pass.
            {"radio", "nativeSetModemLogState", {-2}, {{"setModemLogState", {7}}},
             {"radio.setModemLogState(-2)"},
             "I KvModemLog", {"I kvModemLog, state: -2\n", "I kvModemLog, result: 7\n"},
             {"D KvModemLog, state: -2\n", "D KvModemLog, result: 7\n"}, "7"},
    }));
}

TEST_F(SessionTest, FactoryCommand) {
    const std::vector<std::string> call{"factory.setCommand(\"a\", \"b\", 2048)"};
    const std::string fail = "\"native setCommand fail\"";
    Run(OnBoth({
            {"factory", "nativeSetCommand", {"a", "b"}, {{"setCommand", {0, "t"}}}, call,
             "I NativeSetCommand", {"I nativeSetCommand, a b\n"}, {"E NativeSetCommand, a b\n"},
             "\"t\""},
            {"factory", "nativeSetCommand", {"a", "b"}, {{"setCommand", {0, ""}}}, call,
             "I NativeSetCommand", {"I nativeSetCommand, a b\n"}, {"E NativeSetCommand, a b\n"},
             "\"\""},
            {"factory", "nativeSetCommand", {"a", "b"}, {{"setCommand", {3, "t"}}}, call,
             "I NativeSetCommand",
             {"I nativeSetCommand, a b\n", "I nativeSetCommand, resultCode 3\n"},
             {"E NativeSetCommand, a b\n", "E NativeSetCommand, resultCode 3\n"}, fail},
            {"factory", "nativeSetCommand", {"a", "b"}, {{"setCommand", {-2, "t"}}}, call,
             "I NativeSetCommand",
             {"I nativeSetCommand, a b\n", "I nativeSetCommand, resultCode -2\n"},
             {"E NativeSetCommand, a b\n", "E NativeSetCommand, resultCode -2\n"}, fail},
    }));
}

// The service's true means failure.
TEST_F(SessionTest, WifiCommand) {
    const std::vector<std::string> call{"factory.setWifiCommand(\"s\", \"c\", 1024)"};
    const std::string fail = "\"setWifiCommand fail\"";
    Run(OnBoth({
            {"factory", "nativeSetWifiCommand", {"s", "c"}, {{"setWifiCommand", {0, "t"}}}, call,
             "I SetWifiCommand", {"I setWifiCommand, testScene:s, cmd:c, buf:t, resultCode:0\n"},
             {"E SetWifiCommand, testScene:s, cmd:c, buf:t, resultCode:0\n"}, "\"t\""},
            {"factory", "nativeSetWifiCommand", {"s", "c"}, {{"setWifiCommand", {1, "t"}}}, call,
             "I SetWifiCommand", {"I setWifiCommand, testScene:s, cmd:c, buf:t, resultCode:1\n"},
             {"E SetWifiCommand, testScene:s, cmd:c, buf:t, resultCode:1\n"}, fail},
    }));
}

TEST_F(SessionTest, BigDataOperation) {
    const java::Object operation{"com/quorvin/kalvornii/BigDataOperation",
                                 {{"version", 1}, {"commandId", 2}, {"operation", 3},
                                  {"bsn", "B"}, {"station", "S"}, {"cycle", -4}}};
    const std::vector<std::string> call{
            "factory.sendBigDataOperation(\"version=1 commandId=2 operation=3 cycle=-4 station=S "
            "bsn=B\")"};
    Run(OnBoth({
            {"factory", "nativeSendBigDataOperation", {operation}, {{"sendBigDataOperation", {9}}},
             call,
             "I KvSendFmdOperation",
             {"I Version: 1; commandId: 2; operation: 3; bsn: B; station: S; cycle: -4",
              "I SendBigDataOperation, result: 9"},
             {"D version: 1; commandId: 2; operation: 3; bsn: B; station: S; cycle: -4"}, "9"},
    }));
}

TEST_F(SessionTest, BigDataValue) {
    const char* const texts[] = {"deviceName", "station", "testName", "bsn", "value",
                                 "minThreshold", "maxThreshold", "result", "time", "firmware",
                                 "description"};
    java::Object full{"com/quorvin/kalvornii/BigDataValue",
                      {{"version", 1}, {"dataSource", 2}, {"errorCode", -3}, {"itemId", 4},
                       {"cycle", 5}}};
    java::Object empty = full;
    for (const char* name : texts) empty.fields[name] = "";
    full.fields.insert({{"deviceName", "Dn"}, {"station", "St"}, {"testName", "Tn"},
                        {"bsn", "Bs"}, {"value", "Va"}, {"minThreshold", "Mi"},
                        {"maxThreshold", "Ma"}, {"result", "Re"}, {"time", "Ti"},
                        {"firmware", "Fw"}, {"description", "De"}});
    const std::vector<std::string> call{
            "factory.sendBigData(\"version=1 dataSource=2 numEvents=1 {errorCode=-3 itemId=4 "
            "cycle=5 result=Re station=St bsn=Bs time=Ti deviceName=Dn testName=Tn value=Va "
            "minThreshold=Mi maxThreshold=Ma firmware=Fw description=De}\")"};
    const std::vector<std::string> emptyCall{
            "factory.sendBigData(\"version=1 dataSource=2 numEvents=1 {errorCode=-3 itemId=4 "
            "cycle=5 result= station= bsn= time= deviceName= testName= value= minThreshold= "
            "maxThreshold= firmware= description=}\")"};
    const std::string numbers = " version: 1; dataSource: 2; numEvents: 1; errorCode: -3; itemId: "
                                "4; bsn: Bs; station: St; cycle: 5";
    const std::string values = " deviceName: Dn; testName: Tn; value: Va; minThreshold: Mi; "
                               "maxThreshold: Ma; result: Re; time: Ti; firmware: Fw; description: "
                               "De";
    const std::string emptyNumbers = " version: 1; dataSource: 2; numEvents: 1; errorCode: -3; "
                                     "itemId: 4; bsn: ; station: ; cycle: 5";
    const std::string emptyValues = " deviceName: ; testName: ; value: ; minThreshold: ; "
                                    "maxThreshold: ; result: ; time: ; firmware: ; description: ";
    Run(OnBoth({
            {"factory", "nativeSendBigDataValue", {full}, {{"sendBigData", {-8}}}, call,
             "I KvSendFmdData", {"I" + numbers, "I" + values, "I SendBigData, result: -8"},
             {"D" + numbers, "D" + values}, "-8"},
            {"factory", "nativeSendBigDataValue", {empty}, {}, emptyCall,
             "I KvSendFmdData", {"I" + emptyNumbers, "I" + emptyValues, "I SendBigData, result: 0"},
             {"D" + emptyNumbers, "D" + emptyValues}, "0"},
    }));
}

// clang-format on

}  // namespace
