#pragma once

#include <stdint.h>

namespace kalvorn {

// Fixed arguments of service calls, the same over both backends.

// Items of the factory service's store; the length it is told is the item's, not the text's.
constexpr int32_t kQrCodeInfo = 143;
constexpr int32_t kTestItem = 204;
constexpr int32_t kMainName = 10;
constexpr int32_t kSubName = 11;
constexpr int32_t kItemLength = 64;

/** A test cycle that is not known: the station and cycle text stays empty. */
constexpr int kNoCycle = -100;

/** The NV item that takes the signature to be verified. */
constexpr int32_t SignatureNvId = 11;

// The largest answers that the caller accepts, in bytes.
constexpr int32_t kMaxFlagSize = 1024;
constexpr int32_t kMaxReplySize = 1024;
constexpr int32_t kCommandCapacity = 2048;
constexpr int32_t kWifiCapacity = 1024;

/** First argument of every panel test; its meaning is the display services' own. */
constexpr int32_t kPanelTest = 2;

}  // namespace kalvorn
