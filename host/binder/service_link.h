#pragma once

#include <binder/IBinder.h>

namespace kalvorn::host {

/** One recipient that wants to hear of a service's death, as linked on the proxy `who`. */
struct DeathLink {
    android::wp<android::IBinder> who;
    android::wp<android::IBinder::DeathRecipient> recipient;
    void* cookie;
    uint32_t flags;

    bool operator==(const DeathLink& other) const {
        return who == other.who && recipient == other.recipient && cookie == other.cookie &&
               flags == other.flags;
    }
};

/**
 * A proxy's way to its service, which may be anywhere; each proxy owns one. All functions may be
 * called on any thread; death notices come on a binder thread. Errors are as IBinder describes
 * them.
 */
class ServiceLink {
  public:
    virtual ~ServiceLink() = default;
    virtual bool isAlive() const = 0;
    virtual android::status_t transact(uint32_t code, const android::Parcel& data,
                                       android::Parcel* reply, uint32_t flags) = 0;
    virtual android::status_t linkToDeath(const DeathLink& link) = 0;
    virtual android::status_t unlinkToDeath(const DeathLink& link) = 0;
    virtual void dropDeathLinks(const android::wp<android::IBinder>& who) = 0;
};

}  // namespace kalvorn::host
