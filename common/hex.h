#pragma once

#include <string>
#include <vector>

namespace kalvorn {

/**
 * Writes the lower-case hexadecimal text of numLen bytes to str: exactly 2 * numLen characters,
 * high nibble first, no terminating zero, nothing past them.
 *
 * Returns 0; or -9999, after one log line and with str untouched, when strLen is less than
 * 2 * numLen, numLen is 0, or a pointer is null.
 */
int ConvertBinToString(const char* bin, unsigned int numLen, char* str, unsigned int strLen);

/** The same for all of these bytes into a text of just that length. */
int ConvertBinToString(const std::vector<char>& bin, std::string* str);

}  // namespace kalvorn
