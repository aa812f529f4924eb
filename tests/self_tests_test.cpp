#include "harness.h"

namespace {

constexpr int32_t kLowest = -2147483647 - 1;

// A HIDL factory service of revision 1.0 is enough for all fourteen.
const char* FactoryOver(Backend backend) {
    return backend == kAidl ? "factory" : "factory@1.0";
}

std::string Quoted(const std::string& text) {
    return '"' + text + '"';
}

/** The log of a call: the dispatch line, the line that every call has, what follows from it. */
std::vector<std::string> Log(const std::string& dispatch, const std::string& line,
                             const std::vector<std::string>& more) {
    std::vector<std::string> log{dispatch, line};
    log.insert(log.end(), more.begin(), more.end());
    return log;
}

Case Soc(Backend backend, const char* scene, const Answer& answer,
         const std::vector<std::string>& more, const std::string& result) {
    const std::string values = std::to_string(answer.code) + ", testScene = " + scene +
                               ", para = p, out = " + answer.text + "\n";
    return {backend,
            FactoryOver(backend),
            "nativeSocTest",
            {scene, "p"},
            {{"socTest", answer}},
            {"factory.socTest(" + Quoted(scene) + ", \"p\")"},
            backend == kAidl ? Log("E SocTestByAidl", "I soc test result = " + values, more)
                             : Log("E SocTestByHidl", "E soc test value = " + values, more),
            Quoted(result)};
}

/** The DDR and the eMMC test share everything but their names. */
Case Memory(Backend backend, const std::string& name, const char* status, const Answer& answer,
            const std::vector<std::string>& more, const std::string& result) {
    const bool isDdr = name == "ddr";
    const std::string values = std::to_string(answer.code) +
                               ", testScene = s, para = p, status = " + status +
                               ", out = " + answer.text + "\n";
    const std::string dispatch = isDdr ? "E DdrTest" : "E EmmcTest";
    return {backend,
            FactoryOver(backend),
            isDdr ? "nativeDdrTest" : "nativeEmmcTest",
            {"s", "p", status},
            {{isDdr ? "ddrTest" : "emmcTest", answer}},
            {"factory." + name + "Test(\"s\", \"p\", " + Quoted(status) + ")"},
            backend == kAidl
                    ? Log(dispatch + "ByAidl", "I " + name + " test result = " + values, more)
                    : Log(dispatch + "ByHidl", "E " + name + " test value = " + values, more),
            Quoted(result)};
}

class SelfTestsTest : public OperationTest {
  protected:
    /** Runs each case with old texts in the two static fields, which must then hold these. */
    void RunWithFields(const std::vector<Case>& cases,
                       const std::string& currentValue = "old value",
                       const std::string& i2cInfo = "old info") {
        for (const Case& c : cases) {
            SCOPED_TRACE(c.method);
            java::SetStaticField("currentValue", "old value");
            java::SetStaticField("i2cInfo", "old info");
            Run({c});
            EXPECT_EQ(Quoted(currentValue), java::StaticField("currentValue"));
            EXPECT_EQ(Quoted(i2cInfo), java::StaticField("i2cInfo"));
        }
    }
};

// The formatter would give every value of a row a line of its own.
// clang-format off

TEST_F(SelfTestsTest, Soc) {
    const char* const aidlDefault = "I socTest value is 0 but out is empty, will set success\n";
    const char* const hidlDefault = "E SocTest value is 0 but out is empty, will set success\n";
    RunWithFields({
            // A secure scene answers its code, whatever the text.
            Soc(kAidl, "secure_flash", {7, "t"}, {"I current test Scene is secure_flash\n"}, "7"),
            Soc(kHidl, "secure_flash", {7, "t"}, {"E current test scene is secure_flash\n"}, "7"),
            Soc(kAidl, "secure_weaver", {-1, ""},
                {"I current test Scene is secure_weaver\n"}, "-1"),
            Soc(kHidl, "secure_weaver", {-1, ""},
                {"E current test scene is secure_weaver\n"}, "-1"),
            Soc(kAidl, "secure_weaver", {0, ""}, {"I current test Scene is secure_weaver\n"}, "0"),
            Soc(kHidl, "secure_weaver", {0, ""}, {"E current test scene is secure_weaver\n"}, "0"),
            Soc(kAidl, "secure_flash", {kLowest, ""},
                {"I current test Scene is secure_flash\n"}, "-2147483648"),
            Soc(kHidl, "secure_flash", {kLowest, ""},
                {"E current test scene is secure_flash\n"}, "-2147483648"),
            // Its name is taken letter for letter.
            Soc(kAidl, "Secure_flash", {7, "t"}, {}, "t"),
            Soc(kHidl, "Secure_flash", {7, "t"}, {}, "t"),
            Soc(kAidl, "secure_weaver2", {7, "t"}, {}, "t"),
            Soc(kHidl, "secure_weaver2", {7, "t"}, {}, "t"),
            Soc(kAidl, "cpu", {0, ""}, {aidlDefault}, "success:value=0"),
            Soc(kHidl, "cpu", {0, ""}, {hidlDefault}, "success:value=0"),
            Soc(kAidl, "cpu", {0, "t"}, {}, "t"),
            Soc(kHidl, "cpu", {0, "t"}, {}, "t"),
            Soc(kAidl, "cpu", {1, ""}, {}, ""),
            Soc(kHidl, "cpu", {1, ""}, {}, ""),
            Soc(kAidl, "cpu", {2, ""}, {}, ""),
            Soc(kHidl, "cpu", {2, ""}, {}, ""),
            Soc(kAidl, "cpu", {-1, ""}, {}, ""),
            Soc(kHidl, "cpu", {-1, ""}, {}, ""),
    });
}

TEST_F(SelfTestsTest, Ddr) {
    RunWithFields({
            Memory(kAidl, "ddr", "getstate", {0, "t"}, {}, "busy"),
            Memory(kHidl, "ddr", "getstate", {0, "t"}, {}, "busy"),
            Memory(kAidl, "ddr", "getstate", {-1, "t"}, {}, "done"),
            Memory(kHidl, "ddr", "getstate", {-1, "t"}, {}, "done"),
            Memory(kAidl, "ddr", "getstate", {1, "t"}, {}, "done"),
            Memory(kHidl, "ddr", "getstate", {1, "t"}, {}, "done"),
            Memory(kAidl, "ddr", "getState", {0, "t"}, {"I DdrTest--> ddr test Success\n"},
                   "success"),
            Memory(kHidl, "ddr", "getState", {0, "t"}, {"E DdrTest--> ddr test success\n"},
                   "success"),
            Memory(kAidl, "ddr", "start", {-1, "t"}, {"E DdrTest--> Fail to get ddr test result\n"},
                   "get ddr result fail"),
            Memory(kHidl, "ddr", "start", {-1, "t"}, {"E DdrTest--> fail to get ddr test result\n"},
                   "get ddr result fail"),
            Memory(kAidl, "ddr", "start", {1, "t"}, {}, "t"),
            Memory(kHidl, "ddr", "start", {1, "t"}, {}, "t"),
            Memory(kAidl, "ddr", "start", {-2, "t"}, {}, "t"),
            Memory(kHidl, "ddr", "start", {-2, "t"}, {}, "t"),
    });
}

TEST_F(SelfTestsTest, Emmc) {
    RunWithFields({
            Memory(kAidl, "emmc", "x", {1, "t"}, {"E emmcTest--> emmc test fail\n"}, "failed"),
            Memory(kHidl, "emmc", "x", {1, "t"}, {"E EmmcTest--> emmc test fail\n"}, "failed"),
            // The status is the service's business alone.
            Memory(kAidl, "emmc", "getstate", {0, "t"}, {"I emmcTest--> emmc test success\n"},
                   "success"),
            Memory(kHidl, "emmc", "getstate", {0, "t"}, {"E EmmcTest--> emmc test success\n"},
                   "success"),
            Memory(kAidl, "emmc", "x", {-1, "t"}, {"E emmcTest--> fail to get emmc test result\n"},
                   "get emmc result fail"),
            Memory(kHidl, "emmc", "x", {-1, "t"}, {"E EmmcTest--> fail to get emmc test result\n"},
                   "get emmc result fail"),
            Memory(kAidl, "emmc", "x", {2, "t"}, {}, "t"),
            Memory(kHidl, "emmc", "x", {2, "t"}, {}, "t"),
            Memory(kAidl, "emmc", "x", {-2, "t"}, {}, "t"),
            Memory(kHidl, "emmc", "x", {-2, "t"}, {}, "t"),
    });
}

TEST_F(SelfTestsTest, StorageTestsPublishTheirText) {
    RunWithFields({
            {kAidl, "factory", "nativeStorageJoblessTest", {"s", "p"},
             {{"storageJoblessTest", {3, "0.8 W"}}},
             {"factory.storageJoblessTest(\"s\", \"p\")"},
             {"E StorageJoblessTestByAidl",
              "I Storage jobless test result = 3, testScene = s, para = p, out = 0.8 W\n"},
             "3"},
            {kHidl, "factory@1.0", "nativeStorageJoblessTest", {"s", "p"},
             {{"storageJoblessTest", {-1, "0.8 W"}}},
             {"factory.storageJoblessTest(\"s\", \"p\")"},
             {"E StorageJoblessTestByHidl",
              "E storage jobless test value = -1, testScene = s, para = p, out = 0.8 W\n"},
             "-1"},
            {kAidl, "factory", "nativeStorageTestJudge", {"s"},
             {{"storageTestJudge", {-1, "0.8 W"}}},
             {"factory.storageTestJudge(\"s\")"},
             {"E StorageTestJudgeByAidl",
              "I storage test judge res = -1, testScene = s, out = 0.8 W\n"},
             "-1"},
            {kHidl, "factory@1.0", "nativeStorageTestJudge", {"s"},
             {{"storageTestJudge", {3, "0.8 W"}}},
             {"factory.storageTestJudge(\"s\")"},
             {"E StorageTestJudgeByHidl",
              "E storage test judge value = 3, testScene = s, out = 0.8 W\n"},
             "3"},
    }, "0.8 W");
}

TEST_F(SelfTestsTest, I2cPublishesItsDetail) {
    // Any code but -1 is good. Java gets the character outside the first plane as a pair.
    RunWithFields({
            {kAidl, "factory", "nativeI2cTest", {},
             {{"i2cTest", {0, "pass", "0x38 \xf0\x9f\x98\x80"}}},
             {"factory.i2cTest(1024)"},
             {"E I2cTestByAidl",
              "I i2c test values = 0, checkResult = pass, out = 0x38 \xf0\x9f\x98\x80\n",
              "I Succeed to get i2c checking info"},
             "\"pass\""},
            {kHidl, "factory@1.0", "nativeI2cTest", {},
             {{"i2cTest", {5, "pass", "0x38 \xf0\x9f\x98\x80"}}},
             {"factory.i2cTest(1024)"},
             {"E I2cTestByHidl",
              "E i2c test value = 5, checkResult = pass, out = 0x38 \xf0\x9f\x98\x80\n",
              "E succeed to get i2c checking info"},
             "\"pass\""},
    }, "old value", "0x38 \xed\xa0\xbd\xed\xb8\x80");
    RunWithFields({
            {kAidl, "factory", "nativeI2cTest", {}, {{"i2cTest", {-2, "pass", "0x38"}}},
             {"factory.i2cTest(1024)"},
             {"E I2cTestByAidl", "I i2c test values = -2, checkResult = pass, out = 0x38\n",
              "I Succeed to get i2c checking info"},
             "\"pass\""},
            {kHidl, "factory@1.0", "nativeI2cTest", {}, {{"i2cTest", {-2, "pass", "0x38"}}},
             {"factory.i2cTest(1024)"},
             {"E I2cTestByHidl", "E i2c test value = -2, checkResult = pass, out = 0x38\n",
              "E succeed to get i2c checking info"},
             "\"pass\""},
    }, "old value", "0x38");
    RunWithFields({
            {kAidl, "factory", "nativeI2cTest", {}, {{"i2cTest", {-1, "pass", "0x38"}}},
             {"factory.i2cTest(1024)"},
             {"E I2cTestByAidl", "I i2c test values = -1, checkResult = pass, out = 0x38\n",
              "E Failed to get i2c checking info"},
             "\"Get i2c result error\""},
            {kHidl, "factory@1.0", "nativeI2cTest", {}, {{"i2cTest", {-1, "pass", "0x38"}}},
             {"factory.i2cTest(1024)"},
             {"E I2cTestByHidl", "E i2c test value = -1, checkResult = pass, out = 0x38\n",
              "E failed to get i2c checking info"},
             "\"get i2c result error\""},
    });
}

TEST_F(SelfTestsTest, TextReads) {
    RunWithFields({
            {kAidl, "factory", "nativeGetSocInfo", {"s"}, {{"getSocInfo", {0, "t"}}},
             {"factory.getSocInfo(\"s\")"},
             {"E GetSocInfoByAidl", "I Get soc info result = 0, testScene = s, out = t\n"},
             "\"t\""},
            {kHidl, "factory@1.0", "nativeGetSocInfo", {"s"}, {{"getSocInfo", {0, "t"}}},
             {"factory.getSocInfo(\"s\")"},
             {"E GetSocInfoByHidl", "E get soc info value = 0, testScene = s, out = t\n"},
             "\"t\""},
            {kAidl, "factory", "nativeGetBoardName", {}, {{"getVersionName", {0, "t"}}},
             {"factory.getVersionName()"},
             {"E GetBoardNameByAidl", "I Get version name = t\n"},
             "\"t\""},
            {kHidl, "factory@1.0", "nativeGetBoardName", {}, {{"getVersionName", {0, "t"}}},
             {"factory.getVersionName()"},
             {"E GetBoardNameByHidl", "E get version out = t\n"},
             "\"t\""},
            // These two give their text whatever the code.
            {kAidl, "factory", "nativeFpgaTest", {"s"}, {{"fpgaTest", {-1, "t"}}},
             {"factory.fpgaTest(\"s\", 1024)"},
             {"E FpgaTestByAidl", "I Fpga test value = -1, testScene = s, out = t\n"},
             "\"t\""},
            {kHidl, "factory@1.0", "nativeFpgaTest", {"s"}, {{"fpgaTest", {-1, "t"}}},
             {"factory.fpgaTest(\"s\", 1024)"},
             {"E FpgaTestByHidl", "E fpga test value = -1, testScene = s, out = t\n"},
             "\"t\""},
            {kAidl, "factory", "nativeSocVoltageOffsetById", {6},
             {{"socVoltageOffsetById", {-1, "t"}}}, {"factory.socVoltageOffsetById(6)"},
             {"I KvSocVoltageOffsetByIdByAidl", "I kvSocVoltageOffsetById, setSocID is 6",
              "I kvSocVoltageOffsetById resultCode:-1, result:t"},
             "\"t\""},
            {kHidl, "factory@1.0", "nativeSocVoltageOffsetById", {6},
             {{"socVoltageOffsetById", {-1, "t"}}}, {"factory.socVoltageOffsetById(6)"},
             {"I KvSocVoltageOffsetByIdByHidl", "D KvSocVoltageOffsetById, setSocID is 6",
              "D KvSocVoltageOffsetById resultCode:-1, result:t"},
             "\"t\""},
    });
}

// A failed read keeps its text over AIDL and loses it over HIDL.
TEST_F(SelfTestsTest, FailedTextReads) {
    for (const int code : {3, -1}) {
        const std::string shown = std::to_string(code);
        RunWithFields({
                {kAidl, "factory", "nativeGetSocInfo", {"s"}, {{"getSocInfo", {code, "t"}}},
                 {"factory.getSocInfo(\"s\")"},
                 {"E GetSocInfoByAidl",
                  "I Get soc info result = " + shown + ", testScene = s, out = t\n",
                  "E Get soc info failed"},
                 "\"t\""},
                {kHidl, "factory@1.0", "nativeGetSocInfo", {"s"}, {{"getSocInfo", {code, "t"}}},
                 {"factory.getSocInfo(\"s\")"},
                 {"E GetSocInfoByHidl",
                  "E get soc info value = " + shown + ", testScene = s, out = t\n"},
                 "\"\""},
                {kAidl, "factory", "nativeGetBoardName", {}, {{"getVersionName", {code, "t"}}},
                 {"factory.getVersionName()"},
                 {"E GetBoardNameByAidl", "I Get version name = t\n", "E Get version failed"},
                 "\"t\""},
                {kHidl, "factory@1.0", "nativeGetBoardName", {}, {{"getVersionName", {code, "t"}}},
                 {"factory.getVersionName()"},
                 {"E GetBoardNameByHidl", "E get version out = t\n"},
                 "\"\""},
        });
    }
}

TEST_F(SelfTestsTest, CodesComeBackAsTheyAre) {
    RunWithFields({
            {kAidl, "factory", "nativeDdrMapperTest", {"s"}, {{"ddrMapperTest", {-1, "t"}}},
             {"factory.ddrMapperTest(\"s\")"},
             {"E DdrMapperTestByAidl", "I ddr mapper result = -1, status = s, out = t\n"},
             "-1"},
            {kHidl, "factory@1.0", "nativeDdrMapperTest", {"s"}, {{"ddrMapperTest", {-1, "t"}}},
             {"factory.ddrMapperTest(\"s\")"},
             {"E DdrMapperTestByHidl", "E ddr mapper value = -1, status = s, out = t\n"},
             "-1"},
            {kAidl, "factory", "nativeSetSocInfo", {"s", "p"}, {{"setSocInfo", {-2}}},
             {"factory.setSocInfo(\"s\", \"p\")"},
             {"E SetSocInfoByAidl", "I set soc info result = -2, testScene = s, para = p\n"},
             "-2"},
            {kHidl, "factory@1.0", "nativeSetSocInfo", {"s", "p"}, {{"setSocInfo", {-2}}},
             {"factory.setSocInfo(\"s\", \"p\")"},
             {"E SetSocInfoByHidl", "E set soc info value = -2, testScene = s, para = p\n"},
             "-2"},
            {kAidl, "factory", "nativeOemWatchdogSetFunc", {"c"}, {{"setWatchdog", {4, "t"}}},
             {"factory.setWatchdog(\"c\")"},
             {"E OemWatchdogSetFuncByAidl", "I Set watchdog result = 4, cmd = c, out = t\n"},
             "4"},
            {kHidl, "factory@1.0", "nativeOemWatchdogSetFunc", {"c"}, {{"setWatchdog", {4, "t"}}},
             {"factory.setWatchdog(\"c\")"},
             {"E OemWatchdogSetFuncByHidl", "E set watchdog value = 4, cmd = c, out = t\n"},
             "4"},
            {kAidl, "factory", "nativeOemJtagtosdSetFunc", {"c"}, {{"setJtagtosd", {4, "t"}}},
             {"factory.setJtagtosd(\"c\")"},
             {"E OemJtagtosdSetFuncByAidl", "I set jtagtosd result = 4, cmd = c, out = t\n"},
             "4"},
            {kHidl, "factory@1.0", "nativeOemJtagtosdSetFunc", {"c"}, {{"setJtagtosd", {4, "t"}}},
             {"factory.setJtagtosd(\"c\")"},
             {"E OemJtagtosdSetFuncByHidl", "E set jtagtosd value = 4, cmd = c, out = t\n"},
             "4"},
    });
}

/** A HIDL method whose service never gives an answer: code 0 and empty texts stand. */
Case Unanswered(const char* method, const std::vector<java::Arg>& args, const char* asked,
                const std::string& call, const std::vector<std::string>& log,
                const std::string& result) {
    return {kHidl, "factory", method, args, {{asked, Fault::kDeadObject}}, {"factory." + call},
            log, result};
}

TEST_F(SelfTestsTest, UnansweredHidlCalls) {
    RunWithFields({
            Unanswered("nativeSocTest", {"s", "p"}, "socTest", "socTest(\"s\", \"p\")",
                       {"E SocTestByHidl",
                        "E soc test value = 0, testScene = s, para = p, out = \n",
                        "E SocTest value is 0 but out is empty, will set success\n"},
                       "\"success:value=0\""),
            Unanswered("nativeDdrTest", {"s", "p", "x"}, "ddrTest", "ddrTest(\"s\", \"p\", \"x\")",
                       {"E DdrTestByHidl",
                        "E ddr test value = 0, testScene = s, para = p, status = x, out = \n",
                        "E DdrTest--> ddr test success\n"},
                       "\"success\""),
            Unanswered("nativeEmmcTest", {"s", "p", "x"}, "emmcTest",
                       "emmcTest(\"s\", \"p\", \"x\")",
                       {"E EmmcTestByHidl",
                        "E emmc test value = 0, testScene = s, para = p, status = x, out = \n",
                        "E EmmcTest--> emmc test success\n"},
                       "\"success\""),
            Unanswered("nativeDdrMapperTest", {"s"}, "ddrMapperTest", "ddrMapperTest(\"s\")",
                       {"E DdrMapperTestByHidl", "E ddr mapper value = 0, status = s, out = \n"},
                       "0"),
            Unanswered("nativeGetSocInfo", {"s"}, "getSocInfo", "getSocInfo(\"s\")",
                       {"E GetSocInfoByHidl", "E get soc info value = 0, testScene = s, out = \n"},
                       "\"\""),
            Unanswered("nativeGetBoardName", {}, "getVersionName", "getVersionName()",
                       {"E GetBoardNameByHidl", "E get version out = \n"}, "\"\""),
            Unanswered("nativeFpgaTest", {"s"}, "fpgaTest", "fpgaTest(\"s\", 1024)",
                       {"E FpgaTestByHidl", "E fpga test value = 0, testScene = s, out = \n"},
                       "\"\""),
            Unanswered("nativeOemWatchdogSetFunc", {"c"}, "setWatchdog", "setWatchdog(\"c\")",
                       {"E OemWatchdogSetFuncByHidl",
                        "E set watchdog value = 0, cmd = c, out = \n"},
                       "0"),
            Unanswered("nativeOemJtagtosdSetFunc", {"c"}, "setJtagtosd", "setJtagtosd(\"c\")",
                       {"E OemJtagtosdSetFuncByHidl",
                        "E set jtagtosd value = 0, cmd = c, out = \n"},
                       "0"),
            Unanswered("nativeSocVoltageOffsetById", {6}, "socVoltageOffsetById",
                       "socVoltageOffsetById(6)",
                       {"I KvSocVoltageOffsetByIdByHidl", "D KvSocVoltageOffsetById, setSocID is 6",
                        "D KvSocVoltageOffsetById resultCode:0, result:"},
                       "\"\""),
    });
    // The fields are written with what stands.
    RunWithFields({
            Unanswered("nativeStorageJoblessTest", {"s", "p"}, "storageJoblessTest",
                       "storageJoblessTest(\"s\", \"p\")",
                       {"E StorageJoblessTestByHidl",
                        "E storage jobless test value = 0, testScene = s, para = p, out = \n"},
                       "0"),
            Unanswered("nativeStorageTestJudge", {"s"}, "storageTestJudge",
                       "storageTestJudge(\"s\")",
                       {"E StorageTestJudgeByHidl",
                        "E storage test judge value = 0, testScene = s, out = \n"},
                       "0"),
    }, "");
    RunWithFields({
            Unanswered("nativeI2cTest", {}, "i2cTest", "i2cTest(1024)",
                       {"E I2cTestByHidl", "E i2c test value = 0, checkResult = , out = \n",
                        "E succeed to get i2c checking info"},
                       "\"\""),
    }, "old value", "");
}

// clang-format on

}  // namespace
