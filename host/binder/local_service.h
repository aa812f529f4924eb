#pragma once

#include <binder/Binder.h>

#include <mutex>
#include <vector>

#include "service_link.h"

namespace kalvorn::host {

/** What clients get for `binder`: a local object's proxy; a proxy and null stay what they are. */
android::sp<android::IBinder> RemoteView(const android::sp<android::IBinder>& binder);

/** What the driver would know of a service of this process. Belongs to the BBinder. */
class LocalService {
  public:
    /** The same object as long as `local` lives. Aborts if it is not a local binder. */
    static LocalService& Of(const android::sp<android::IBinder>& local);

    /** The one proxy of the service, made anew if clients have dropped it. */
    android::sp<android::IBinder> proxy();

    bool isAlive() const;

    /** OK if the transaction may reach the service, else what it answers. */
    android::status_t admit(uint32_t code);

    android::status_t link(const DeathLink& link);
    android::status_t unlink(const DeathLink& link);
    void dropLinks(const android::wp<android::IBinder>& who);
    std::vector<DeathLink> links() const;

    /** Marks the service dead; returns whom to notify: nobody the second time. */
    std::vector<DeathLink> die();

    void failNextTransaction(android::status_t status);
    void refuseDeathLinks(bool refuse);

  private:
    explicit LocalService(android::BBinder* binder) : mBinder(binder) {}

    android::BBinder* const mBinder;
    mutable std::mutex mMutex;
    android::wp<android::IBinder> mProxy;
    bool mAlive = true;
    bool mRefuseLinks = false;
    android::status_t mNextFailure = android::OK;
    std::vector<DeathLink> mLinks;
};

}  // namespace kalvorn::host
