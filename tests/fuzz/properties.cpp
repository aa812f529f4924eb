#include "fuzz/properties.h"

#include <stdio.h>

#include <algorithm>
#include <vector>

#include "common/hex.h"
#include "common/modified_utf8.h"

// All buffers are of the exact size, so that the address sanitizer sees one byte too many.

using namespace kalvorn;

namespace {

using Units = std::vector<uint16_t>;

constexpr uint32_t kReplacement = 0xfffd;

/** A number of so many bytes' encoding, whether or not a lead and continuations are there. */
struct Decoded {
    size_t length;   // that the first byte asks for; 0 when no character begins with it
    uint32_t least;  // what the bytes given so far can become
    uint32_t most;
};

Decoded Decode(const uint8_t* bytes, size_t count) {
    const uint8_t lead = bytes[0];
    if (lead < 0x80) return {1, lead, lead};
    const size_t length = lead < 0xc0 ? 0 : lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : lead < 0xf8 ? 4 : 0;
    if (length == 0) return {0, 0, 0};
    uint32_t least = lead & (0x7fu >> length);
    uint32_t most = least;
    for (size_t i = 1; i < length; i++) {
        if (i < count && bytes[i] / 64 != 2) return {0, 0, 0};
        least = least * 64 + (i < count ? bytes[i] % 64 : 0);
        most = most * 64 + (i < count ? bytes[i] % 64 : 63);
    }
    return {length, least, most};
}

/** Whether these bytes begin a character, or are one: some number of theirs takes their length. */
bool BeginsCharacter(const uint8_t* bytes, size_t count, size_t longest) {
    static constexpr uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    static constexpr uint32_t kMost[] = {0, 0x7f, 0x7ff, 0xffff, 0x10ffff};
    const Decoded d = Decode(bytes, count);
    if (d.length == 0 || d.length > longest || count > d.length) return false;
    const bool isZero = d.length == 2 && d.least == 0;
    return isZero || (d.most >= kLeast[d.length] && d.least <= kMost[d.length]);
}

bool IsCharacter(const uint8_t* bytes, size_t count, size_t longest) {
    return BeginsCharacter(bytes, count, longest) && Decode(bytes, count).length == count;
}

void AppendUnits(Units* units, uint32_t character) {
    if (character < 0x10000) {
        units->push_back(static_cast<uint16_t>(character));
        return;
    }
    units->push_back(static_cast<uint16_t>(0xd800 + (character - 0x10000) / 0x400));
    units->push_back(static_cast<uint16_t>(0xdc00 + (character - 0x10000) % 0x400));
}

/** The Java characters of a text; false where it had to put a replacement. */
bool ToUnits(const std::string& text, size_t longest, Units* units) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    bool isValid = true;
    for (size_t at = 0; at < text.size();) {
        size_t count = std::min(text.size() - at, longest);
        while (count > 1 && !BeginsCharacter(bytes + at, count, longest)) count--;
        const bool isCharacter = IsCharacter(bytes + at, count, longest);
        AppendUnits(units, isCharacter ? Decode(bytes + at, count).least : kReplacement);
        isValid = isValid && isCharacter;
        at += count;
    }
    return isValid;
}

std::vector<char> Exactly(const char* bytes, size_t count) {
    return {bytes, bytes + count};
}

}  // namespace

std::string TextFault(const uint8_t* data, size_t size) {
    const auto* bytes = reinterpret_cast<const char*>(data);
    const std::string text(bytes, std::find(bytes, bytes + size, '\0'));
    const std::vector<char> exact = Exactly(text.c_str(), text.size() + 1);
    const std::string converted = ToModifiedUtf8(exact.data());

    Units expected, actual;
    ToUnits(text, 4, &expected);
    if (!ToUnits(converted, 3, &actual)) return "the result is not modified UTF-8";
    if (actual != expected) return "the result reads differently";
    if (!IsModifiedUtf8(converted.c_str())) return "the result is said not to be modified UTF-8";
    if (IsModifiedUtf8(exact.data()) != (converted == text)) return "said to change, or not to";
    Units unused;
    if (ToUnits(text, 3, &unused) && converted != text) return "modified UTF-8 was changed";
    return "";
}

std::string HexFault(const uint8_t* data, size_t size) {
    if (size < 2) return "";
    const std::vector<char> bin = Exactly(reinterpret_cast<const char*>(data) + 2, size - 2);
    const auto count = static_cast<unsigned int>(bin.size());
    const int space = std::max(0, static_cast<int>(2 * count) + static_cast<int8_t>(data[0]));
    std::vector<char> text(static_cast<size_t>(space), '-');
    const bool noBin = data[1] & 1, noText = data[1] & 2, tooMany = data[1] & 4;
    // Twice this number is the true one's once more, in 32 bits.
    const unsigned int claimed = tooMany ? count + 0x80000000u : count;
    const int result = ConvertBinToString(noBin ? nullptr : bin.data(), claimed,
                                          noText ? nullptr : text.data(), text.size());

    std::string expected;
    for (const char byte : bin) {
        char digits[3];
        snprintf(digits, sizeof(digits), "%02x", static_cast<uint8_t>(byte));
        expected.append(digits);
    }
    const bool canBe =
            !noBin && !noText && !tooMany && count != 0 && text.size() >= expected.size();
    if (!canBe) expected.clear();
    expected.resize(text.size(), '-');
    if (result != (canBe ? 0 : -9999)) return "the result is wrong";
    if (expected != std::string(text.begin(), text.end())) return "the text is wrong";
    return "";
}
