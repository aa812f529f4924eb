#include "harness.h"

namespace {

constexpr int32_t kLowest = -2147483647 - 1;

std::string Quoted(const std::string& text) {
    return '"' + text + '"';
}

using Lines = std::vector<std::string>;

/** The line that every call has, and what follows from it. */
Lines Log(const std::string& line, const Lines& more) {
    Lines log{line};
    log.insert(log.end(), more.begin(), more.end());
    return log;
}

Both Soc(const char* scene, const Answer& answer, const Lines& aidlMore, const Lines& hidlMore,
         const std::string& result) {
    const std::string values = std::to_string(answer.code) + ", testScene = " + scene +
                               ", para = p, out = " + answer.text + "\n";
    return {"factory",
            "nativeSocTest",
            {scene, "p"},
            {{"socTest", answer}},
            {"factory.socTest(" + Quoted(scene) + ", \"p\")"},
            "E SocTest",
            Log("I soc test result = " + values, aidlMore),
            Log("E soc test value = " + values, hidlMore),
            Quoted(result)};
}

/** The DDR and the eMMC test share everything but their names. */
Both Memory(const std::string& name, const char* status, const Answer& answer,
            const Lines& aidlMore, const Lines& hidlMore, const std::string& result) {
    const bool isDdr = name == "ddr";
    const std::string values = std::to_string(answer.code) +
                               ", testScene = s, para = p, status = " + status +
                               ", out = " + answer.text + "\n";
    return {"factory",
            isDdr ? "nativeDdrTest" : "nativeEmmcTest",
            {"s", "p", status},
            {{isDdr ? "ddrTest" : "emmcTest", answer}},
            {"factory." + name + "Test(\"s\", \"p\", " + Quoted(status) + ")"},
            isDdr ? "E DdrTest" : "E EmmcTest",
            Log("I " + name + " test result = " + values, aidlMore),
            Log("E " + name + " test value = " + values, hidlMore),
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
    const auto secure = [](const std::string& scene, const Answer& answer,
                           const std::string& result) {
        return Soc(scene.c_str(), answer, {"I current test Scene is " + scene + "\n"},
                   {"E current test scene is " + scene + "\n"}, result);
    };
    RunWithFields(OnBoth({
            // A secure scene answers its code, whatever the text.
            secure("secure_flash", {7, "t"}, "7"),
            secure("secure_weaver", {-1, ""}, "-1"),
            secure("secure_weaver", {0, ""}, "0"),
            secure("secure_flash", {kLowest, ""}, "-2147483648"),
            // Its name is taken letter for letter.
            Soc("Secure_flash", {7, "t"}, {}, {}, "t"),
            Soc("secure_weaver2", {7, "t"}, {}, {}, "t"),
            Soc("cpu", {0, "t"}, {}, {}, "t"),
            Soc("cpu", {1, ""}, {}, {}, ""),
            Soc("cpu", {2, ""}, {}, {}, ""),
            Soc("cpu", {-1, ""}, {}, {}, ""),
    }));
}

TEST_F(SelfTestsTest, Ddr) {
    RunWithFields(OnBoth({
            Memory("ddr", "getstate", {0, "t"}, {}, {}, "busy"),
            Memory("ddr", "getstate", {-1, "t"}, {}, {}, "done"),
            Memory("ddr", "getstate", {1, "t"}, {}, {}, "done"),
            Memory("ddr", "getState", {0, "t"}, {"I DdrTest--> ddr test Success\n"},
                   {"E DdrTest--> ddr test success\n"}, "success"),
            Memory("ddr", "start", {-1, "t"}, {"E DdrTest--> Fail to get ddr test result\n"},
                   {"E DdrTest--> fail to get ddr test result\n"}, "get ddr result fail"),
            Memory("ddr", "start", {1, "t"}, {}, {}, "t"),
            Memory("ddr", "start", {-2, "t"}, {}, {}, "t"),
    }));
}

TEST_F(SelfTestsTest, Emmc) {
    RunWithFields(OnBoth({
            Memory("emmc", "x", {1, "t"}, {"E emmcTest--> emmc test fail\n"},
                   {"E EmmcTest--> emmc test fail\n"}, "failed"),
            // The status is the service's business alone.
            Memory("emmc", "getstate", {0, "t"}, {"I emmcTest--> emmc test success\n"},
                   {"E EmmcTest--> emmc test success\n"}, "success"),
            Memory("emmc", "x", {-1, "t"}, {"E emmcTest--> fail to get emmc test result\n"},
                   {"E EmmcTest--> fail to get emmc test result\n"}, "get emmc result fail"),
            Memory("emmc", "x", {2, "t"}, {}, {}, "t"),
            Memory("emmc", "x", {-2, "t"}, {}, {}, "t"),
    }));
}

Both I2c(const Answer& answer, const std::string& aidlMore, const std::string& hidlMore,
         const std::string& result, const std::string& hidlResult) {
    const std::string values = std::to_string(answer.code) + ", checkResult = " + answer.text +
                               ", out = " + answer.detail + "\n";
    return {"factory", "nativeI2cTest", {}, {{"i2cTest", answer}}, {"factory.i2cTest(1024)"},
            "E I2cTest", {"I i2c test values = " + values, aidlMore},
            {"E i2c test value = " + values, hidlMore}, Quoted(result), Quoted(hidlResult)};
}

TEST_F(SelfTestsTest, I2cPublishesItsDetail) {
    const auto good = [](const Answer& answer) {
        return I2c(answer, "I Succeed to get i2c checking info",
                   "E succeed to get i2c checking info", "pass", "pass");
    };
    // Any code but -1 is good. Java gets the character outside the first plane as a pair.
    RunWithFields(OnBoth({
            good({5, "pass", "0x38 \xf0\x9f\x98\x80"}),
    }), "old value", "0x38 \xed\xa0\xbd\xed\xb8\x80");
    RunWithFields(OnBoth({good({-2, "pass", "0x38"})}), "old value", "0x38");
    RunWithFields(OnBoth({
            I2c({-1, "pass", "0x38"}, "E Failed to get i2c checking info",
                "E failed to get i2c checking info", "Get i2c result error",
                "get i2c result error"),
    }));
}

// A failed read keeps its text over AIDL and loses it over HIDL.
TEST_F(SelfTestsTest, FailedTextReads) {
    for (const int code : {3, -1}) {
        const std::string shown = std::to_string(code);
        RunWithFields(OnBoth({
                {"factory", "nativeGetSocInfo", {"s"}, {{"getSocInfo", {code, "t"}}},
                 {"factory.getSocInfo(\"s\")"},
                 "E GetSocInfo",
                 {"I Get soc info result = " + shown + ", testScene = s, out = t\n",
                  "E Get soc info failed"},
                 {"E get soc info value = " + shown + ", testScene = s, out = t\n"}, "\"t\"",
                 "\"\""},
                {"factory", "nativeGetBoardName", {}, {{"getVersionName", {code, "t"}}},
                 {"factory.getVersionName()"},
                 "E GetBoardName", {"I Get version name = t\n", "E Get version failed"},
                 {"E get version out = t\n"}, "\"t\"", "\"\""},
        }));
    }
}

// clang-format on

}  // namespace
