#pragma once

#include <string>

namespace kalvorn {

// Java's encoding of text: UTF-8 without four-byte characters, which are two surrogates of three
// bytes each, and with a zero that is c0 80. A text ends at its first zero byte.

/** Whether a text can be handed to Java as it is. Surrogates need not come in pairs. */
bool IsModifiedUtf8(const char* text);

/**
 * The text as Java takes it: four-byte characters become surrogate pairs; of what cannot be
 * decoded, each longest beginning of a character, or else each byte, becomes U+FFFD; the rest stays
 * as it is.
 */
std::string ToModifiedUtf8(const char* text);

}  // namespace kalvorn
