#pragma once

#include "common/service_constants.h"

namespace kalvorn {

/**
 * Station and cycle as the text of the QR code item: at least two digits each, the cycle always at
 * position 2. For a cycle that is not known the text is empty, and the result false.
 */
bool ComposeQrCodeInfo(int stationId, int cycle, char (*info)[kItemLength]);

}  // namespace kalvorn
