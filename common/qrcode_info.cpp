#include "common/qrcode_info.h"

#include "common/bounds_checked.h"

namespace kalvorn {

bool ComposeQrCodeInfo(int stationId, int cycle, char (*info)[kItemLength]) {
    memset_s(*info, kItemLength, 0, kItemLength);
    if (cycle == kNoCycle) return false;
    sprintf_s(*info, kItemLength, "%02d", stationId);
    // intended: always at position 2, over the third character of a long station
    sprintf_s(*info + 2, kItemLength - 2, "%02d", cycle);
    return true;
}

}  // namespace kalvorn
