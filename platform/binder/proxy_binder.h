#pragma once

#include <binder/IBinder.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "attached_objects.h"
#include "local_service.h"

namespace kalvorn::host {

/**
 * What a client holds of a service. Its memory lasts as long as anybody refers to it, if only
 * weakly: so long the service has no other proxy, and this one remembers whether its obituary is
 * out. A weak pointer to one that nobody holds is not promoted.
 */
class ProxyBinder : public android::IBinder {
  public:
    explicit ProxyBinder(std::shared_ptr<LocalService> service);
    ~ProxyBinder() override { mService->forget(this); }

    const android::String16& getInterfaceDescriptor() const override;
    bool isBinderAlive() const override { return mAlive; }
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

    /** The service has died: tells the recipients that are linked now. Once only. */
    void sendObituary();

    /** How many of the linked recipients live. */
    size_t livingRecipients() const;

  protected:
    void onFirstRef() override { mService->acquire(this); }
    void onLastStrongRef(const void* id) override;
    bool onIncStrongAttempted(uint32_t flags, const void* id) override;

  private:
    struct Obituary {
        android::wp<DeathRecipient> recipient;
        void* cookie;
        uint32_t flags;
    };
    using Obituaries = std::vector<Obituary>;

    Obituaries takeObituaries();

    const std::shared_ptr<LocalService> mService;
    AttachedObjects mAttached;
    mutable std::mutex mDescriptorMutex;
    mutable android::String16 mDescriptor;

    std::atomic<bool> mAlive = true;
    mutable std::mutex mMutex;
    bool mObituarySent = false;
    Obituaries mObituaries;
};

}  // namespace kalvorn::host
