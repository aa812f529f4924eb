#pragma once

#include <android/hidl/manager/1.0/IServiceNotification.h>
#include <hidl/HidlSupport.h>

namespace android {

/**
 * Watcher of HIDL services for devices without a libHidlUtil of their own: hands every death and
 * every registration on to one function each, with the same arguments, on the HIDL thread that
 * delivers it. It holds no service.
 */
class HidlUtil : public hardware::hidl_death_recipient,
                 public hidl::manager::V1_0::IServiceNotification {
  public:
    using DeathCallback = void (*)(uint64_t cookie, const wp<hidl::base::V1_0::IBase>& who);
    using RegistrationCallback = void (*)(const hardware::hidl_string& fqName,
                                          const hardware::hidl_string& name, bool preexisting);

    HidlUtil(DeathCallback onDeath, RegistrationCallback onRegistered);

    void serviceDied(uint64_t cookie, const wp<hidl::base::V1_0::IBase>& who) override;
    hardware::Return<void> onRegistration(const hardware::hidl_string& fqName,
                                          const hardware::hidl_string& name,
                                          bool preexisting) override;

  private:
    const DeathCallback mOnDeath;
    const RegistrationCallback mOnRegistered;
};

}  // namespace android
