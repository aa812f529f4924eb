// Texts on their way between Java and the services.
#include "harness.h"

namespace {

class TextsTest : public LibraryTest {};

TEST_F(TextsTest, WhatIsWrittenIsReadBack) {
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
TEST_F(TextsTest, TextsSurviveBothWays) {
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

// The size of a flag counts bytes of modified UTF-8, of which the sign takes three.
TEST_F(TextsTest, FlagsAreMeasuredInBytes) {
    for (const std::string backend : {"aidl", "hidl"}) {
        LoadWith(backend == "aidl" ? kAidl : kHidl, "factory");
        java::Call("nativeSetControlFlag", {3, "a\xe2\x82\xac"});
        EXPECT_EQ(std::vector<std::string>{backend +
                                           " factory.setControlFlag(3, \"a\xe2\x82\xac\", 4)"},
                  device.TakeCalls());
    }
}

// A byte that only looks like the beginning of a four-byte character takes nothing with it.
TEST_F(TextsTest, TextsOfAnotherEncodingLoseNothing) {
    LoadWith(kHidl, "factory");
    for (const std::string lead : {"\xf0", "\xf8", "\xff"}) {
        const std::string text = lead + "abcd";
        device.Script("readNv", {0, text});
        const std::string result = java::Call("nativeReadNvValue", {1});
        EXPECT_EQ("abcd\"", result.substr(result.size() - 5));
    }
}

// HIDL carries Java's own bytes; AIDL's UTF-16 gives the service a zero, at which C ends a text.
TEST_F(TextsTest, EmbeddedZeroReachesTheService) {
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
