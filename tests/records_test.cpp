#include "harness.h"

namespace {

class RecordsTest : public OperationTest {};

// They give their text to the log alone.
TEST_F(RecordsTest, FailedReads) {
    // clang-format off
    Run(OnBoth({
            {"factory", "nativeGetTestResult", {7}, {{"getTestResult", {-1, "no"}}},
             {"factory.getTestResult(7)"},
             "E GetTestResult",
             {"I Get test result = -1, id = 7, out = no\n", "E Get test result fail"},
             {"E get test result = -1, id = 7, out = no\n", "E get test result fail"}, "null"},
            {"factory", "nativeReadNvValue", {5}, {{"readNv", {-1, "abc"}}}, {"factory.readNv(5)"},
             "E ReadNv", {"I ReadNv values = -1, result = abc", "E Nv read fail"},
             {"E ReadNv value = -1, result = abc", "E nv read fail"}, "null"},
    }));
    // clang-format on
}

TEST_F(RecordsTest, Writes) {
    // clang-format off
    Run(OnBoth({
            {"factory", "nativeSetTestResult", {"ok", 7}, {{"setTestResult", {-1}}},
             {"factory.setTestResult(7, \"ok\")"},
             "E SetTestResult", {"I Set test result = -1, id = 7, nvValue = ok\n"},
             {"E set test result = -1, id = 7, nvValue = ok\n", "E set test result fail"}, "-1"},
            {"factory", "nativeWriteNvValue", {"v", 8}, {{"writeNv", {-1}}},
             {"factory.writeNv(8, \"v\")"},
             "E WriteNv", {"I writeNv values = -1, nvValues = v"},
             {"E WriteNv value = -1, nvValue = v", "E nv write fail"}, "-1"},
            // The size counts bytes of modified UTF-8, of which the sign takes three.
            {"factory", "nativeSetControlFlag", {3, "a\xe2\x82\xac"}, {{"setControlFlag", {6}}},
             {"factory.setControlFlag(3, \"a\xe2\x82\xac\", 4)"},
             "I SetControlFlag",
             {"I setControlFlag, flagID is 3, flag is a\xe2\x82\xac",
              "I setControlFlag result:6, flag:a\xe2\x82\xac, flagSize:4"},
             {"D SetControlFlag, flagID is 3, flag is a\xe2\x82\xac",
              "D SetControlFlag result:6, flag:a\xe2\x82\xac, flagSize:4"}, "6"},
    }));
    // clang-format on
}

// A failure is -1 alone, for the kv info anything but 0.
TEST_F(RecordsTest, CodesBesideTheSpecialOnes) {
    for (const int code : {-2, 1, 2}) {
        const std::string shown = std::to_string(code);
        const std::vector<std::string> nv{"factory.writeNv(8, \"v\")"};
        // clang-format off
        Run(OnBoth({
                {"factory", "nativeGetTestResult", {7}, {{"getTestResult", {code, "t"}}},
                 {"factory.getTestResult(7)"},
                 "E GetTestResult",
                 {"I Get test result = " + shown + ", id = 7, out = t\n",
                  "I Get test result success"},
                 {"E get test result = " + shown + ", id = 7, out = t\n",
                  "E get test result success"}, "\"t\""},
                {"factory", "nativeReadNvValue", {5}, {{"readNv", {code, "t"}}},
                 {"factory.readNv(5)"},
                 "E ReadNv", {"I ReadNv values = " + shown + ", result = t", "I Nv read success"},
                 {"E ReadNv value = " + shown + ", result = t", "D nv read success"}, "\"t\""},
                {"factory", "nativeGetKvInfoFromOem", {9}, {{"readNv", {code, "t"}}},
                 {"factory.readNv(9)"},
                 "E GetKvInfoFromOem", {"I Get kv info = t, result = " + shown},
                 {"D get kv info = t, result = " + shown}, "null"},
        }));
        Run({
                {kHidl, "factory", "nativeSetTestResult", {"ok", 7}, {{"setTestResult", {code}}},
                 {"factory.setTestResult(7, \"ok\")"},
                 {"E SetTestResultByHidl",
                  "E set test result = " + shown + ", id = 7, nvValue = ok\n",
                  "E set test result success"},
                 shown},
                {kHidl, "factory", "nativeWriteNvValue", {"v", 8}, {{"writeNv", {code}}}, nv,
                 {"E WriteNvByHidl", "E WriteNv value = " + shown + ", nvValue = v",
                  "E nv write success"},
                 shown},
        });
        // clang-format on
    }
}

TEST_F(RecordsTest, WhatIsWrittenIsReadBack) {
    for (const Backend backend : {kAidl, kHidl}) {
        LoadWith(backend, "factory");
        EXPECT_EQ("null", java::Call("nativeReadNvValue", {8}));
        java::Call("nativeWriteNvValue", {"nv", 8});
        java::Call("nativeSetTestResult", {"result", 8});
        java::Call("nativeSetControlFlag", {8, "flag"});
        EXPECT_EQ("\"nv\"", java::Call("nativeReadNvValue", {8}));
        EXPECT_EQ("\"nv\"", java::Call("nativeGetKvInfoFromOem", {8}));
        EXPECT_EQ("\"result\"", java::Call("nativeGetTestResult", {8}));
        EXPECT_EQ("\"flag\"", java::Call("nativeGetControlFlag", {8}));
    }
}

// Java's texts are modified UTF-8 here: a character outside the first plane is a surrogate pair.
TEST_F(RecordsTest, TextsSurviveBothWays) {
    const std::string longText(65536, 'x');
    const char* const texts[] = {"", "plain", "caf\xc3\xa9 \xe2\x82\xac",
                                 "\xed\xa0\xbd\xed\xb8\x80!", longText.c_str()};
    for (const Backend backend : {kAidl, kHidl}) {
        LoadWith(backend, "factory");
        for (const char* text : texts) {
            SCOPED_TRACE(std::string(text).substr(0, 20));
            EXPECT_EQ("0", java::Call("nativeWriteNvValue", {text, 1}));
            EXPECT_EQ('"' + std::string(text) + '"', java::Call("nativeReadNvValue", {1}));
        }
        // A service speaks UTF-8 proper.
        device.Script("readNv", {0, "\xf0\x9f\x98\x80!"});
        EXPECT_EQ("\"\xed\xa0\xbd\xed\xb8\x80!\"", java::Call("nativeReadNvValue", {1}));
    }
}

// A byte that only looks like the beginning of a four-byte character takes nothing with it.
TEST_F(RecordsTest, TextsOfAnotherEncodingLoseNothing) {
    LoadWith(kHidl, "factory");
    for (const std::string lead : {"\xf0", "\xf8", "\xff"}) {
        const std::string text = lead + "abcd";
        device.Script("readNv", {0, text});
        const std::string result = java::Call("nativeReadNvValue", {1});
        EXPECT_EQ("abcd\"", result.substr(result.size() - 5));
    }
}

// HIDL carries Java's own bytes; AIDL's UTF-16 gives the service a zero, at which C ends a text.
TEST_F(RecordsTest, EmbeddedZeroReachesTheService) {
    LoadWith(kHidl, "factory");
    java::Call("nativeWriteNvValue", {"a\xc0\x80z", 1});
    EXPECT_EQ("\"a\xc0\x80z\"", java::Call("nativeReadNvValue", {1}));
    LoadWith(kAidl, "factory");
    java::Call("nativeWriteNvValue", {"a\xc0\x80z", 1});
    EXPECT_EQ(
            std::vector<std::string>{"aidl factory.writeNv(1, \"" + std::string("a\0z", 3) + "\")"},
            device.TakeCalls());
    EXPECT_EQ("\"a\"", java::Call("nativeReadNvValue", {1}));
}

}  // namespace
