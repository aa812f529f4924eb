#include "hidl/hidl_util.h"

namespace android {

HidlUtil::HidlUtil(DeathCallback onDeath, RegistrationCallback onRegistered)
    : mOnDeath(onDeath), mOnRegistered(onRegistered) {}

void HidlUtil::serviceDied(uint64_t cookie, const wp<hidl::base::V1_0::IBase>& who) {
    mOnDeath(cookie, who);
}

hardware::Return<void> HidlUtil::onRegistration(const hardware::hidl_string& fqName,
                                                const hardware::hidl_string& name,
                                                bool preexisting) {
    mOnRegistered(fqName, name, preexisting);
    return hardware::Void();
}

}  // namespace android
