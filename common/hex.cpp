#include "common/hex.h"

#include <stddef.h>

#include "common/failure.h"
#include "common/log.h"

namespace kalvorn {

int ConvertBinToString(const char* bin, unsigned int numLen, char* str, unsigned int strLen) {
    static constexpr char kDigits[] = "0123456789abcdef";
    // Half of strLen rather than twice numLen, which could wrap around.
    if (numLen > strLen / 2 || numLen == 0 || bin == nullptr || str == nullptr) {
        KV_LOGE("parameter is invalid, numLen: %u, strLen: %u", numLen, strLen);
        return kInvalidParameter;
    }
    for (size_t i = 0; i < numLen; i++) {
        const auto byte = static_cast<unsigned char>(bin[i]);
        str[2 * i] = kDigits[byte >> 4];
        str[2 * i + 1] = kDigits[byte & 0x0f];
    }
    return 0;
}

int ConvertBinToString(const std::vector<char>& bin, std::string* str) {
    str->assign(2 * bin.size(), '\0');
    return ConvertBinToString(bin.data(), bin.size(), str->data(), str->size());
}

}  // namespace kalvorn
