#pragma once

#include <binder/IBinder.h>

#include <memory>
#include <mutex>

#include "attached_objects.h"
#include "service_link.h"

namespace kalvorn::host {

/** What a client holds of a service: everything goes through the link. */
class ProxyBinder : public android::IBinder {
  public:
    explicit ProxyBinder(std::unique_ptr<ServiceLink> link) : mLink(std::move(link)) {}
    ~ProxyBinder() override { mLink->dropDeathLinks(this); }

    const android::String16& getInterfaceDescriptor() const override;
    bool isBinderAlive() const override { return mLink->isAlive(); }
    android::status_t pingBinder() override;
    android::status_t dump(int fd, const android::Vector<android::String16>& args) override;
    android::status_t transact(uint32_t code, const android::Parcel& data, android::Parcel* reply,
                               uint32_t flags) override;
    android::status_t linkToDeath(const android::sp<DeathRecipient>& recipient, void* cookie,
                                  uint32_t flags) override;
    android::status_t unlinkToDeath(const android::wp<DeathRecipient>& recipient, void* cookie,
                                    uint32_t flags,
                                    android::wp<DeathRecipient>* outRecipient) override;
    void attachObject(const void* id, void* object, void* cookie,
                      object_cleanup_func cleanup) override;
    void* findObject(const void* id) const override;
    void detachObject(const void* id) override;

  private:
    const std::unique_ptr<ServiceLink> mLink;
    AttachedObjects mAttached;
    mutable std::mutex mDescriptorMutex;
    mutable android::String16 mDescriptor;
};

}  // namespace kalvorn::host
