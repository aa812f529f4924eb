#include <string.h>

#include "common/hex.h"
#include "harness.h"
#include "jni/descriptor.h"

namespace {

class HexTest : public LibraryTest {};

TEST_F(HexTest, WritesTwoDigitsAByteAndNothingElse) {
    const char bytes[] = {0x00, 0x0f, '\xa5', '\xff'};
    char text[] = "----------";
    EXPECT_EQ(0, ConvertBinToString(bytes, 4, text, 8));
    EXPECT_STREQ("000fa5ff--", text);
    EXPECT_EQ(std::vector<std::string>{}, TakeLog());
}

TEST_F(HexTest, RefusesWhatDoesNotFit) {
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

// The table's rows are checked when it is compiled; here, that the check can say no.
constexpr jint (*kExample)(JNIEnv*, jobject, jstring, jbyteArray, jint) = nullptr;
static_assert(descriptor::Fits(kExample, "(Ljava/lang/String;[BI)I"));
static_assert(!descriptor::Fits(kExample, "(Ljava/lang/String;I[B)I"));
static_assert(!descriptor::Fits(kExample, "(Ljava/lang/String;[BI)Ljava/lang/String;"));
static_assert(!descriptor::Fits(kExample, "(Ljava/lang/String;[B)I"));
static_assert(!descriptor::Fits(kExample, "(Ljava/lang/String;[BII)I"));
static_assert(!descriptor::Fits(kExample, "(Ljava/lang/String;[BI)II"));

}  // namespace
