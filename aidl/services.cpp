#include "aidl/services.h"

namespace native_aidl {

void Hold(const sp<android::IInterface>& global, const char* nullText,
          sp<android::IInterface>* service) {
    *service = held::Copy(global);
    if (*service == nullptr) KV_LOGE("%s", nullText);
}

sp<IQxFactoryInterface> HeldFactory() {
    return Held(g_aidlFactory, "aidlFactoryInterface is null");
}

}  // namespace native_aidl
