// The bounds-checked functions of a device that has none; the library's other tests run on those of
// a device's own library.

#include "common/bounds_checked_functions.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

using std::string;

constexpr size_t kNegative = static_cast<size_t>(-1);
const char* const kNull = nullptr;

// Each writes into the first four of eight bytes; the others are never touched.
TEST(BoundsCheckedTest, LeaveTheDestinationAsTheStandardSays) {
    char bytes[9];
    const char source[] = {'a', 'b', 'c', 'd', 'e'};
    const struct {
        const char* trace;
        std::function<int()> call;
        int result;
        string first;
    } cases[] = {
            {"memcpy_s: all", [&] { return memcpy_s(bytes, 4, source, 4); }, 0, "abcd"},
            {"memcpy_s: some", [&] { return memcpy_s(bytes, 4, source, 2); }, 0, "ab--"},
            {"memcpy_s: nothing", [&] { return memcpy_s(bytes, 4, source, 0); }, 0, "----"},
            {"memcpy_s: too much", [&] { return memcpy_s(bytes, 4, source, 5); }, -1,
             string(4, '\0')},
            {"memcpy_s: no source", [&] { return memcpy_s(bytes, 4, nullptr, 4); }, -1,
             string(4, '\0')},
            {"memcpy_s: no size", [&] { return memcpy_s(bytes, kNegative, source, 4); }, -1,
             "----"},
            {"memcpy_s: overlap", [&] { return bytes[0] = 'a', memcpy_s(bytes + 1, 3, bytes, 3); },
             0, "aa--"},
            {"memset_s: some", [&] { return memset_s(bytes, 4, 'x', 2); }, 0, "xx--"},
            {"memset_s: too much", [&] { return memset_s(bytes, 4, 'x', 5); }, -1, "xxxx"},
            {"memset_s: negative", [&] { return memset_s(bytes, 4, 'x', kNegative); }, -1, "xxxx"},
            {"memset_s: no size", [&] { return memset_s(bytes, kNegative, 'x', 4); }, -1, "----"},
            {"strcpy_s: just fits", [&] { return strcpy_s(bytes, 4, "abc"); }, 0,
             string("abc\0", 4)},
            {"strcpy_s: empty", [&] { return strcpy_s(bytes, 4, ""); }, 0, string("\0---", 4)},
            {"strcpy_s: without room for the end", [&] { return strcpy_s(bytes, 4, "abcd"); }, -1,
             string("\0---", 4)},
            {"strcpy_s: no source", [&] { return strcpy_s(bytes, 4, nullptr); }, -1,
             string("\0---", 4)},
            {"strcpy_s: no room", [&] { return strcpy_s(bytes, 0, ""); }, -1, "----"},
            {"strcpy_s: no size", [&] { return strcpy_s(bytes, kNegative, "a"); }, -1, "----"},
            {"sprintf_s: just fits", [&] { return sprintf_s(bytes, 4, "%03d", 7); }, 3,
             string("007\0", 4)},
            {"sprintf_s: without room for the end", [&] { return sprintf_s(bytes, 4, "%d", 1234); },
             0, string("\0", 1)},
            {"sprintf_s: no format", [&] { return sprintf_s(bytes, 4, kNull); }, 0,
             string("\0---", 4)},
            {"sprintf_s: not to be encoded",
             [&] { return sprintf_s(bytes, 4, "%lc", static_cast<wint_t>(0xd800)); }, -1,
             string("\0---", 4)},
            {"sprintf_s: no room", [&] { return sprintf_s(bytes, 0, "%d", 1); }, 0, "----"},
            {"sprintf_s: no size", [&] { return sprintf_s(bytes, kNegative, "%d", 1); }, 0, "----"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.trace);
        strcpy(bytes, "--------");
        EXPECT_EQ(c.result, c.call());
        EXPECT_EQ(c.first, string(bytes, c.first.size()));
        EXPECT_EQ("----", string(bytes + 4, 4));
    }
}

TEST(BoundsCheckedTest, RefuseToWriteNowhere) {
    const char one = 1;
    EXPECT_EQ(-1, memcpy_s(nullptr, 4, &one, 1));
    EXPECT_EQ(-1, memset_s(nullptr, 4, 'x', 4));
    EXPECT_EQ(-1, strcpy_s(nullptr, 4, "abc"));
    EXPECT_EQ(0, sprintf_s(nullptr, 4, "%d", 1));
}

}  // namespace
