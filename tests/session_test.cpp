#include "harness.h"

namespace {

class SessionTest : public OperationTest {};

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
    const std::string longName = std::string(70, 'n') + "\xe2\x82\xac";
    Run(OnBoth({
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

TEST_F(SessionTest, PowerTestWithEmptyTexts) {
    Run({
            {kAidl, "power", "nativePowerTest", {"s", "", "", ""}, {},
             {"power.setPowerState(\"com.quorvin.kalvornii\", \"s\", "
              "\"testTimes=,maxLimit=,minLimit=\")"},
             {"I KvPowerTestByAidl",
              "I kvPowerTest, testScene:s, testTimes:, maxLimit:, minLimit:"},
             "0"},
    });
}

// Any code but 0 empties the text.
TEST_F(SessionTest, FailedPowerState) {
    for (const int code : {1, -1}) {
        const std::string shown = std::to_string(code);
        Run({
                {kAidl, "power", "nativeGetPowerState", {"s"}, {{"getPowerState", {code, "idle"}}},
                 {"power.getPowerState(\"com.quorvin.kalvornii\", \"s\")"},
                 {"I GetPowerStateByAidl", "I getPowerState, scene:s",
                  "I getPowerState, resultCode:" + shown, "I getPowerState result:"},
                 "\"\""},
                {kHidl, "power", "nativeGetPowerState", {"s"}, {{"getPowerState", {code, "idle"}}},
                 {"power.getPowerState(\"s\")"},
                 {"I GetPowerStateByHidl", "E GetPowerState, scene:s",
                  "E GetPowerState, resultCode:" + shown, "E GetPowerState result:"},
                 "\"\""},
        });
    }
}

TEST_F(SessionTest, FactoryCommand) {
    const std::vector<std::string> call{"factory.setCommand(\"a\", \"b\", 2048)"};
    const std::string fail = "\"native setCommand fail\"";
    Run(OnBoth({
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
    Run(OnBoth({
            {"factory", "nativeSetWifiCommand", {"s", "c"}, {{"setWifiCommand", {1, "t"}}},
             {"factory.setWifiCommand(\"s\", \"c\", 1024)"},
             "I SetWifiCommand", {"I setWifiCommand, testScene:s, cmd:c, buf:t, resultCode:1\n"},
             {"E SetWifiCommand, testScene:s, cmd:c, buf:t, resultCode:1\n"},
             "\"setWifiCommand fail\""},
    }));
}

TEST_F(SessionTest, BigDataOfEmptyTexts) {
    java::Object empty{"com/quorvin/kalvornii/BigDataValue", {}};
    for (const char* name : {"deviceName", "station", "testName", "bsn", "value", "minThreshold",
                             "maxThreshold", "result", "time", "firmware", "description"}) {
        empty.fields[name] = "";
    }
    const std::string numbers = " version: 0; dataSource: 0; numEvents: 1; errorCode: 0; itemId: "
                                "0; bsn: ; station: ; cycle: 0";
    const std::string values = " deviceName: ; testName: ; value: ; minThreshold: ; maxThreshold: "
                               "; result: ; time: ; firmware: ; description: ";
    Run(OnBoth({
            {"factory", "nativeSendBigDataValue", {empty}, {},
             {"factory.sendBigData(\"version=0 dataSource=0 numEvents=1 {errorCode=0 itemId=0 "
              "cycle=0 result= station= bsn= time= deviceName= testName= value= minThreshold= "
              "maxThreshold= firmware= description=}\")"},
             "I KvSendFmdData", {"I" + numbers, "I" + values, "I SendBigData, result: 0"},
             {"D" + numbers, "D" + values}, "0"},
    }));
}

// clang-format on

}  // namespace
