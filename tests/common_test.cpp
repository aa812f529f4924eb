#include <string.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "common/hex.h"
#include "common/java_values.h"
#include "common/modified_utf8.h"
#include "fuzz/properties.h"
#include "harness.h"

using namespace kalvorn;

namespace {

class CommonTest : public LibraryTest {};

TEST_F(CommonTest, WritesTwoDigitsAByteAndNothingElse) {
    const char bytes[] = "\x01\x23\x45\x67\x89\xab\xcd\xef\x00\x0f\xa5\xff";
    for (const unsigned int room : {24u, 25u, 26u}) {
        char text[] = "--------------------------";
        EXPECT_EQ(0, ConvertBinToString(bytes, 12, text, room));
        EXPECT_STREQ("0123456789abcdef000fa5ff--", text);
    }
    EXPECT_EQ(std::vector<std::string>{}, TakeLog());
}

TEST_F(CommonTest, RefusesWhatDoesNotFit) {
    char byte = 'x';
    char text[] = "--";
    const struct {
        const char* bin;
        unsigned int numLen;
        char* str;
        unsigned int strLen;
        const char* line;
    } cases[] = {
            {&byte, 1, text, 1, "E parameter is invalid, numLen: 1, strLen: 1"},
            {&byte, 0, text, 2, "E parameter is invalid, numLen: 0, strLen: 2"},
            {nullptr, 1, text, 2, "E parameter is invalid, numLen: 1, strLen: 2"},
            {&byte, 1, nullptr, 2, "E parameter is invalid, numLen: 1, strLen: 2"},
            // Twice this length would wrap around to 0.
            {&byte, 0x80000000u, text, 2, "E parameter is invalid, numLen: 2147483648, strLen: 2"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(-9999, ConvertBinToString(c.bin, c.numLen, c.str, c.strLen)) << c.line;
        EXPECT_EQ(std::vector<std::string>{c.line}, TakeLog());
        EXPECT_STREQ("--", text);
    }
}

#define BAD "\xef\xbf\xbd"

// Each is also made a Java string and read back, and stands at the end of its memory, so that the
// address sanitizer sees it when more is read.
TEST_F(CommonTest, WhatJavaCannotTakeIsReplaced) {
    const struct {
        const char* text;
        const char* java;  // null: as it is
    } cases[] = {
            {"", nullptr},
            {"plain text\x01\x7f", nullptr},
            {"\xc2\x80\xdf\xbf\xe0\xa0\x80\xef\xbf\xbf", nullptr},
            {"\xe6\xb8\xa9\xe5\xba\xa6 25\xc2\xb0", nullptr},
            // Java's own zero and surrogates, in any order.
            {"a\xc0\x80z", nullptr},
            {"\xed\xa0\x80 \xed\xaf\xbf\xed\xbf\xbf \xed\xbf\xbf\xed\xa0\x80", nullptr},
            // Four-byte characters, from U+10000 to U+10FFFF.
            {"\xf0\x90\x80\x80", "\xed\xa0\x80\xed\xb0\x80"},
            {"\xf0\xa0\x80\x80", "\xed\xa1\x80\xed\xb0\x80"},
            {"\xf3\xbf\xbf\xbf", "\xed\xae\xbf\xed\xbf\xbf"},
            {"\xf4\x80\x80\x80", "\xed\xaf\x80\xed\xb0\x80"},
            {"\xf4\x8f\xbf\xbf", "\xed\xaf\xbf\xed\xbf\xbf"},
            {"\xf4\x90\x80\x80", BAD BAD BAD BAD},
            {"\xf5\x80\x80\x80", BAD BAD BAD BAD},
            {"\xf7\xbf\xbf\xbf", BAD BAD BAD BAD},
            // What a shorter form does for.
            {"\xc0\x81\xc1\xbf", BAD BAD BAD BAD},
            {"\xe0\x80\x80\xe0\x9f\xbf", BAD BAD BAD BAD BAD BAD},
            {"\xf0\x80\x80\x80", BAD BAD BAD BAD},
            {"\xf0\x8f\xbf\xbf", BAD BAD BAD BAD},
            {"\xf0\x8d\xa0\x80", BAD BAD BAD BAD},
            // Neither a lead nor wanted.
            {"\x80", BAD},
            {"a\xbfz", "a" BAD "z"},
            {"\xc3\xa9\xa9", "\xc3\xa9" BAD},
            {"\xe4\xb8\x80\x80", "\xe4\xb8\x80" BAD},
            {"\xf8\x88\x80\x80\x80", BAD BAD BAD BAD BAD},
            {"\xfe", BAD},
            {"\xff", BAD},
            {"\xff\xff\xff", BAD BAD BAD},
            // Cut: by the end, and by another character.
            {"\xc0", BAD},
            {"\xc3", BAD},
            {"\xe4", BAD},
            {"\xe4\xb8", BAD},
            {"\xed\xa0", BAD},
            {"\xf0", BAD},
            {"\xf0\x9f", BAD},
            {"\xf0\x9f\x98", BAD},
            {"\xf4\x8f\xbf", BAD},
            {"\xc3z", BAD "z"},
            {"\xe4z\xe4\xb8z", BAD "z" BAD "z"},
            {"\xf0z\xf0\x9fz\xf0\x9f\x98z", BAD "z" BAD "z" BAD "z"},
            {"\xf0\x9f\x98\xc3\xa9", BAD "\xc3\xa9"},
            {"\xe4\xb8\xf0\x9f\x98\x80", BAD "\xed\xa0\xbd\xed\xb8\x80"},
            // All of it.
            {"ok \xe6\xb8\xa9\xff\xf0\x9f\x98\x80 \xc0\x80\x80\xe4\xb8",
             "ok \xe6\xb8\xa9" BAD "\xed\xa0\xbd\xed\xb8\x80 \xc0\x80" BAD BAD},
    };
    java::Env()->PushLocalFrame(64);
    for (const auto& c : cases) {
        const std::vector<char> text(c.text, c.text + strlen(c.text) + 1);
        const std::string expected = c.java == nullptr ? c.text : c.java;
        SCOPED_TRACE(testing::PrintToString(std::string(c.text)));
        EXPECT_EQ(c.java == nullptr, IsModifiedUtf8(text.data()));
        EXPECT_EQ(expected, ToModifiedUtf8(text.data()));
        EXPECT_EQ('"' + expected + '"', java::Show(NewText(java::Env(), text.data())));
    }
    java::Env()->PopLocalFrame(nullptr);
}

// The inputs that the fuzzers found worth keeping, and those that once showed a fault.
TEST_F(CommonTest, FuzzSeeds) {
    const struct {
        const char* folder;
        std::string (*fault)(const uint8_t*, size_t);
    } kinds[] = {{KALVORN_FUZZ_SEEDS "/text", TextFault}, {KALVORN_FUZZ_SEEDS "/hex", HexFault}};
    for (const auto& kind : kinds) {
        size_t seeds = 0;
        for (const auto& file : std::filesystem::directory_iterator(kind.folder)) {
            std::ifstream stream(file.path(), std::ios::binary);
            const std::vector<char> seed{std::istreambuf_iterator<char>(stream), {}};
            const auto* bytes = reinterpret_cast<const uint8_t*>(seed.data());
            EXPECT_EQ("", kind.fault(bytes, seed.size())) << file.path();
            seeds++;
        }
        EXPECT_LE(10u, seeds) << kind.folder;
    }
}

}  // namespace
