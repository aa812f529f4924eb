#include "aidl/services.h"

#include <new>

namespace native_aidl {

void Hold(const sp<android::IInterface>& global, const char* nullText,
          sp<android::IInterface>* service) {
    new (service) sp<android::IInterface>(held::Copy(global));  // in the place of a null one
    if (*service == nullptr) KV_LOGE("%s", nullText);
}

sp<IQxFactoryInterface> HeldFactory() {
    return Held(g_aidlFactory, "aidlFactoryInterface is null");
}

}  // namespace native_aidl
