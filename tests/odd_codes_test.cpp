// Codes that decide what a method returns and logs, beside the one that its sample has.

#include <algorithm>
#include <regex>

#include "samples.h"

namespace {

/**
 * A call as in its sample, but with each of these codes and this text for an answer. The log is
 * that of the sample with the answer in it, up to the last line that tells it, and then these
 * lines.
 */
struct OddCodes {
    const char* method;
    std::vector<int> codes;
    const char* text;
    std::string result;  // with CODE for the code, as in the lines
    Lines aidlMore, hidlMore;
    std::string hidlResult = {};  // when it is another
    /** An argument of the sample, and what is given in its place. */
    std::pair<std::string, std::string> argument = {};
};

constexpr int kLowest = -2147483647 - 1;
// The service gives it as UTF-8; Java gets the character outside the first plane as a pair.
constexpr const char* kDetail = "0x38 \xf0\x9f\x98\x80";
constexpr const char* kDetailInJava = "\"0x38 \xed\xa0\xbd\xed\xb8\x80\"";

std::string Replaced(const std::string& text, const std::string& pattern, const std::string& by) {
    return std::regex_replace(text, std::regex(pattern), by);
}

/** The sample's log, as far as to the line after the call, in which this answer is put. */
Lines LogOf(const Sample::Side& side, const std::string& code, const std::string& text) {
    const Answer& usual = side.answers[0];
    Lines log = side.log;
    auto line = log.erase(std::find(log.begin(), log.end(), ">"));
    if (line == log.end()) return log;
    *line = Replaced(*line, "([ :])" + std::to_string(usual.code) + "\\b", "$01" + code);
    // A text that is empty stands where there is nothing.
    const std::string before = usual.text.empty() ? "out = " : "";
    *line = Replaced(*line, before + usual.text, before + text);
    if (!usual.detail.empty()) *line = Replaced(*line, usual.detail, kDetail);
    log.erase(line + 1, log.end());
    return log;
}

// The formatter would give every value of a row a line of its own.
// clang-format off

/** A secure scene answers its code, whatever the text. */
OddCodes Secure(const std::string& scene, const std::vector<int>& codes, const char* text) {
    return {"nativeSocTest", codes, text, "\"CODE\"",
            {"I current test Scene is " + scene + "\n"},
            {"E current test scene is " + scene + "\n"}, "", {"cpu_stress", scene}};
}

OddCodes Soc(const std::string& scene, const std::vector<int>& codes, const char* text) {
    return {"nativeSocTest", codes, text, '"' + std::string(text) + '"', {}, {}, "",
            {"cpu_stress", scene}};
}

/** A test of the memory or the storage, asked with this status. */
OddCodes WithStatus(const char* method, const char* status, const std::vector<int>& codes,
                    const std::string& result, const Lines& aidlMore = {},
                    const Lines& hidlMore = {}) {
    return {method, codes, "t", '"' + result + '"', aidlMore, hidlMore, "", {"start", status}};
}

const OddCodes kOddCodes[] = {
        // A failed read gives its text to the log alone. A failure is -1 alone, for the kv info
        // anything but 0.
        {"nativeGetTestResult", {-1}, "t", "null",
         {"E Get test result fail"}, {"E get test result fail"}},
        {"nativeGetTestResult", {-2, 1, 2}, "t", "\"t\"",
         {"I Get test result success"}, {"E get test result success"}},
        {"nativeReadNvValue", {-1}, "t", "null", {"E Nv read fail"}, {"E nv read fail"}},
        {"nativeReadNvValue", {-2, 1, 2}, "t", "\"t\"",
         {"I Nv read success"}, {"D nv read success"}},
        {"nativeGetKvInfoFromOem", {-2, -1, 1, 2}, "t", "null", {}, {}},
        {"nativeSetTestResult", {-1}, "", "CODE", {}, {"E set test result fail"}},
        {"nativeSetTestResult", {-2, 1}, "", "CODE", {}, {"E set test result success"}},
        {"nativeWriteNvValue", {-1}, "", "CODE", {}, {"E nv write fail"}},
        {"nativeWriteNvValue", {-2, 1}, "", "CODE", {}, {"E nv write success"}},
        // A failed one keeps its text over AIDL and loses it over HIDL.
        {"nativeGetSocInfo", {3, -1}, "t", "\"t\"", {"E Get soc info failed"}, {}, "\"\""},
        {"nativeGetBoardName", {3, -1}, "t", "\"t\"", {"E Get version failed"}, {}, "\"\""},

        Secure("secure_flash", {7}, "t"),
        Secure("secure_weaver", {-1, 0, kLowest}, ""),
        // Its name is taken letter for letter.
        Soc("Secure_flash", {7}, "t"),
        Soc("secure_weaver2", {7}, "t"),
        Soc("cpu", {0}, "t"),
        Soc("cpu", {1, 2, -1}, ""),

        WithStatus("nativeDdrTest", "getstate", {0}, "busy"),
        WithStatus("nativeDdrTest", "getstate", {-1, 1}, "done"),
        WithStatus("nativeDdrTest", "getState", {0}, "success",
                   {"I DdrTest--> ddr test Success\n"}, {"E DdrTest--> ddr test success\n"}),
        WithStatus("nativeDdrTest", "start", {-1}, "get ddr result fail",
                   {"E DdrTest--> Fail to get ddr test result\n"},
                   {"E DdrTest--> fail to get ddr test result\n"}),
        WithStatus("nativeDdrTest", "start", {1, -2}, "t"),
        WithStatus("nativeEmmcTest", "x", {1}, "failed",
                   {"E emmcTest--> emmc test fail\n"}, {"E EmmcTest--> emmc test fail\n"}),
        // The status is the service's business alone.
        WithStatus("nativeEmmcTest", "getstate", {0}, "success",
                   {"I emmcTest--> emmc test success\n"}, {"E EmmcTest--> emmc test success\n"}),
        WithStatus("nativeEmmcTest", "x", {-1}, "get emmc result fail",
                   {"E emmcTest--> fail to get emmc test result\n"},
                   {"E EmmcTest--> fail to get emmc test result\n"}),
        WithStatus("nativeEmmcTest", "x", {2, -2}, "t"),

        // Any code but -1 is good.
        {"nativeI2cTest", {5, -2}, "t", "\"t\"",
         {"I Succeed to get i2c checking info"}, {"E succeed to get i2c checking info"}},
        {"nativeI2cTest", {-1}, "t", "\"Get i2c result error\"",
         {"E Failed to get i2c checking info"}, {"E failed to get i2c checking info"},
         "\"get i2c result error\""},

        {"nativeSetCommand", {0}, "", "\"\"", {}, {}},
        {"nativeSetCommand", {3, -2}, "t", "\"native setCommand fail\"",
         {"I nativeSetCommand, resultCode CODE\n"}, {"E NativeSetCommand, resultCode CODE\n"}},
        // Any code but 0 empties the text.
        {"nativeGetPowerState", {1, -1}, "t", "\"\"",
         {"I getPowerState result:"}, {"E GetPowerState result:"}},
        // The service's true means failure.
        {"nativeSetWifiCommand", {1}, "t", "\"setWifiCommand fail\"", {}, {}},
        {"nativeSetScreenFps", {-2, 8}, "", "-1", {}, {}},
};

// clang-format on

class OddCodesTest : public OperationTest {
  protected:
    void Expect(const OddCodes& odd, int number, const Sample& sample, Backend backend) {
        const bool isAidl = backend == kAidl;
        const Sample::Side& side = sample.On(backend);
        const std::string code = std::to_string(number);
        SCOPED_TRACE((isAidl ? "aidl " : "hidl ") + sample.method + ", code " + code);
        Args args = sample.args;
        for (java::Arg& arg : args) {
            const auto* text = std::get_if<const char*>(&arg);
            if (text != nullptr && *text == odd.argument.first) arg = odd.argument.second.c_str();
        }
        Lines log = LogOf(side, code, odd.text);
        for (std::string& line : log) {
            line = Replaced(line, odd.argument.first, odd.argument.second);
        }
        for (const std::string& line : isAidl ? odd.aidlMore : odd.hidlMore) {
            log.push_back(Replaced(line, "CODE", code));
        }
        const std::string& result = isAidl || odd.hidlResult.empty() ? odd.result : odd.hidlResult;
        const bool fills = !side.field.empty() && result == "\"t\"";

        LoadWith(backend, sample.service);
        java::SetStaticField("i2cInfo", "old");
        device.Script(side.asks[0].substr(0, side.asks[0].find('(')), {number, odd.text, kDetail});
        EXPECT_EQ(Replaced(result, "CODE", code), java::Call(sample.method, args));
        EXPECT_EQ(log, TakeLog());
        EXPECT_EQ(Lines{(isAidl ? "aidl " : "hidl ") + sample.service + "." +
                        Replaced(side.asks[0], odd.argument.first, odd.argument.second)},
                  device.TakeCalls());
        EXPECT_EQ(fills ? kDetailInJava : "\"old\"", java::StaticField("i2cInfo"));
    }
};

TEST_F(OddCodesTest, DecideResultAndLog) {
    for (const OddCodes& odd : kOddCodes) {
        const auto hasMethod = [&](const Sample& sample) { return sample.method == odd.method; };
        const Sample& sample = *std::find_if(Samples().begin(), Samples().end(), hasMethod);
        for (const int code : odd.codes) {
            for (const Backend backend : {kAidl, kHidl}) Expect(odd, code, sample, backend);
        }
    }
}

// clang-format off

TEST_F(OddCodesTest, FailedFrameRateConfigurationOverAidl) {
    for (const int code : {1, -1}) {
        Run({{kAidl, "display", "nativeGetScreenFpsConfigByScenes", {4},
              {{"getDisplayFpsConfig", {code, "60,90"}}}, {"display.getDisplayFpsConfig(4)"},
              {"I GetScreenFpsConfigByScenesByAidl",
               "E Get display fps config failed, res: " + std::to_string(code)}, "null"}});
    }
}

/** HIDL has no scenes: the rate is switched first, and what is then in force is read. */
Case HidlFrameRateConfiguration(const Answer& switched, const Answer& read, const std::string& last,
                                const std::string& result) {
    std::vector<std::string> calls{"display.setDisplayFps(4)"};
    if (switched.code == 0) calls.push_back("display.getDisplayFpsConfig()");
    return {kHidl, "display", "nativeGetScreenFpsConfigByScenes", {4},
            {{"setDisplayFps", switched}, {"getDisplayFpsConfig", read}}, calls,
            {"I GetScreenFpsConfigByScenesByHidl",
             "I setDisplayFps, freqIndex: 4, ret: " + std::to_string(switched.code), last},
            result};
}

TEST_F(OddCodesTest, FailedFrameRateConfigurationOverHidl) {
    const std::string failed = "E get display fps config failed, ret: ";
    Run({
            HidlFrameRateConfiguration({3}, {}, "E setDisplayFps failed, ret: 3", "null"),
            HidlFrameRateConfiguration({-3}, {}, "E setDisplayFps failed, ret: -3", "null"),
            HidlFrameRateConfiguration({0}, {-2, "60,90"}, failed + "-2", "null"),
            HidlFrameRateConfiguration({0}, {1, "60,90"}, failed + "1", "null"),
            // The code of the switch still stands when nothing comes after it.
            HidlFrameRateConfiguration({0}, Fault::kTransport,
                                       "I getDisplayFpsConfig, fpsConfig: ", "\"\""),
    });
}

// clang-format on

}  // namespace
