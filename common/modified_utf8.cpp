#include "common/modified_utf8.h"

#include <stddef.h>

namespace kalvorn {

namespace {

using Byte = unsigned char;

constexpr const char* kReplacement = "\xef\xbf\xbd";

// Characters of more than one byte. The second byte's bounds leave out what a shorter form would
// do for, and what is above U+10FFFF; any further byte is 80 to bf.
struct Form {
    Byte firstLead, lastLead;
    Byte firstSecond, lastSecond;
    size_t length;
};
constexpr Form kForms[] = {
        {0xc0, 0xc0, 0x80, 0x80, 2},  // zero
        {0xc2, 0xdf, 0x80, 0xbf, 2}, {0xe0, 0xe0, 0xa0, 0xbf, 3},
        {0xe1, 0xef, 0x80, 0xbf, 3},  // surrogates as well
        {0xf0, 0xf0, 0x90, 0xbf, 4}, {0xf1, 0xf3, 0x80, 0xbf, 4},
        {0xf4, 0xf4, 0x80, 0x8f, 4},
};

// A character, or as much as there is of one.
struct Piece {
    size_t length;
    bool isWhole;
};

bool IsContinuation(Byte byte) {
    return (byte & 0xc0) == 0x80;
}

// Looks at no byte behind one that does not belong, and so at none behind the text's end.
Piece PieceOfForm(const Byte* p, const Form& form) {
    if (p[1] < form.firstSecond || p[1] > form.lastSecond) return {1, false};
    size_t length = 2;
    while (length < form.length && IsContinuation(p[length])) length++;
    return {length, length == form.length};
}

Piece NextPiece(const Byte* p) {
    if (*p < 0x80) return {1, true};
    for (const Form& form : kForms) {
        if (*p >= form.firstLead && *p <= form.lastLead) return PieceOfForm(p, form);
    }
    return {1, false};
}

// Nearly all texts are nothing else, and a loop of its own is several times as quick.
const Byte* PastAscii(const Byte* p) {
    while (*p != 0 && *p < 0x80) p++;
    return p;
}

void AppendThreeBytes(std::string* out, unsigned int unit) {
    out->push_back(static_cast<char>(0xe0 | (unit >> 12)));
    out->push_back(static_cast<char>(0x80 | ((unit >> 6) & 0x3f)));
    out->push_back(static_cast<char>(0x80 | (unit & 0x3f)));
}

void AppendSurrogatePair(std::string* out, const Byte* p) {
    const unsigned int character = ((p[0] & 0x07u) << 18) | ((p[1] & 0x3fu) << 12) |
                                   ((p[2] & 0x3fu) << 6) | (p[3] & 0x3fu);
    const unsigned int offset = character - 0x10000;
    AppendThreeBytes(out, 0xd800 | (offset >> 10));
    AppendThreeBytes(out, 0xdc00 | (offset & 0x3ff));
}

}  // namespace

bool IsModifiedUtf8(const char* text) {
    const Byte* p = PastAscii(reinterpret_cast<const Byte*>(text));
    while (*p != 0) {
        const Piece piece = NextPiece(p);
        if (!piece.isWhole || piece.length == 4) return false;
        p = PastAscii(p + piece.length);
    }
    return true;
}

std::string ToModifiedUtf8(const char* text) {
    std::string out;
    for (auto p = reinterpret_cast<const Byte*>(text); *p != 0;) {
        const Piece piece = NextPiece(p);
        if (!piece.isWhole) {
            out.append(kReplacement);
        } else if (piece.length == 4) {
            AppendSurrogatePair(&out, p);
        } else {
            out.append(reinterpret_cast<const char*>(p), piece.length);
        }
        p += piece.length;
    }
    return out;
}

}  // namespace kalvorn
