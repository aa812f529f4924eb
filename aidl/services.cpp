#include "aidl/services.h"

namespace native_aidl {

sp<IQxFactoryInterface> HeldFactory() {
    return Held(g_aidlFactory, "aidlFactoryInterface is null");
}

}  // namespace native_aidl
