#pragma once

#include <stddef.h>
#include <stdint.h>

#include <string>

// What holds for any bytes. Each checks one function with one input and says what is wrong; an
// empty text when nothing is. The fuzzers look for inputs; the tests try again those that were
// found.

/** ToModifiedUtf8 and IsModifiedUtf8 with the input, up to its first zero byte, as the text. */
std::string TextFault(const uint8_t* data, size_t size);

/**
 * ConvertBinToString. The first byte is how much the text's space differs from what is needed, the
 * second one's lowest bits which arguments cannot be, and the rest are the bytes to convert.
 */
std::string HexFault(const uint8_t* data, size_t size);
