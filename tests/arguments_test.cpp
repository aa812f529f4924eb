// Arguments that decide what a method sends, or whether it does.
#include "harness.h"

namespace {

class ArgumentsTest : public OperationTest {};

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

TEST_F(ArgumentsTest, StationAndCycle) {
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

TEST_F(ArgumentsTest, ItemNames) {
    // The length is 64 for any name, which goes out whole.
    const std::string longName = std::string(70, 'n') + "\xe2\x82\xac";
    const std::string sent = "factory.writeOemSubInfo(204, 10, 64, \"" + longName + "\")";
    for (const std::string backend : {"aidl ", "hidl "}) {
        LoadWith(backend == "aidl " ? kAidl : kHidl, "factory");
        EXPECT_EQ("{0, 0}", java::Call("nativeSetTestItemName", {longName.c_str(), ""}));
        EXPECT_EQ((std::vector<std::string>{
                          backend + sent, backend + "factory.writeOemSubInfo(204, 11, 64, \"\")"}),
                  device.TakeCalls());
    }
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

TEST_F(ArgumentsTest, FingerprintCommandsWithoutData) {
    Run({
            {kAidl, "fingerprint", "sendCmdToFingerprintHalNative", {1200012, nullptr},
             {{"sendCmdToHal", {-400004}}}, {"fingerprint.sendCmdToHal(1200012)"},
             {"I SendCmdToFingerprintHalByAidl", "I cmd = 1200012"},
             "-400004"},
            {kHidl, "fingerprint", "sendCmdToFingerprintHalNative", {1200012, nullptr},
             {{"sendCmdToHal", {-400004}}}, {"fingerprint.sendCmdToHal(1200012)"},
             {"I SendCmdToFingerprintHalByHidl", "E cmd = 1200012"},
             "-400004"},
            {kAidl, "fingerprint", "sendCmdToFingerprintHalNative", {12, java::Bytes{}}, {},
             {"fingerprint.sendCmdToHal(12)"},
             {"I SendCmdToFingerprintHalByAidl", "I cmd = 12",
              "I SendCmdToFingerprintHal rawDataLength: 0", "I SetCmdToFingerprintHal before",
              "I SetCmdToFingerprintHal ret = 0"},
             "0"},
    });
}

TEST_F(ArgumentsTest, EmptySignaturesAreNotWritten) {
    const std::string line = "E parameter is invalid, numLen: 0, strLen: 0";
    Run({
            {kAidl, "factory", "nativeGetVerifySignatureResult", {java::Bytes{}}, {}, {},
             {"I GetVerifySignatureResultByAidl", line, "E convertBinToString is failed"}, "-1"},
            {kHidl, "factory", "nativeGetVerifySignatureResult", {java::Bytes{}}, {}, {},
             {"I GetVerifySignatureResultByHidl", line, "E convertBinToString fail"}, "-1"},
    });
}

// clang-format on

}  // namespace
