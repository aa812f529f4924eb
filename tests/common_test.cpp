#include <string.h>

#include "common/hex.h"
#include "common/java_values.h"
#include "harness.h"
#include "jni/descriptor.h"

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

// Java's texts have no four-byte characters, and a text may end in the middle of one.
TEST_F(CommonTest, FourByteCharactersBecomeSurrogatePairs) {
    const struct {
        const char* utf8;
        const char* shown;
    } cases[] = {
            {"\xf0\xa0\x80\x80", "\"\xed\xa1\x80\xed\xb0\x80\""},
            {"\xf4\x8f\xbf\xbf", "\"\xed\xaf\xbf\xed\xbf\xbf\""},
            {"\xf0\0\x80\x80", "\"\xc3\xb0\""},
            {"\xf0\x9f\0\x80", "\"\xc3\xb0\""},
            {"\xf0\x9f\x98\0", "\"\xc3\xb0\""},
    };
    for (const auto& c : cases) EXPECT_EQ(c.shown, java::Show(NewText(java::Env(), c.utf8)));
}

// The table's rows are checked when it is compiled; here, that the check can say no.
constexpr jint (*kExample)(JNIEnv*, jobject, jstring, jbyteArray, jint) = nullptr;
static_assert(descriptor::Fits(kExample, "(Ljava/lang/String;[BI)I"));
static_assert(!descriptor::Fits(kExample, "(Ljava/lang/String;I[B)I"));
static_assert(!descriptor::Fits(kExample, "(Ljava/lang/String;[BI)Ljava/lang/String;"));
static_assert(!descriptor::Fits(kExample, "(Ljava/lang/String;[B)I"));
static_assert(!descriptor::Fits(kExample, "(Ljava/lang/String;[BII)I"));
static_assert(!descriptor::Fits(kExample, "(Ljava/lang/String;[BI)II"));

}  // namespace
