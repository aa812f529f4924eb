#pragma once

#include <binder/IBinder.h>

namespace kalvorn::host {

class ProxyBinder;

/**
 * A proxy's way to its service, which may be anywhere. All functions may be called on any thread;
 * errors are as IBinder describes them.
 */
class ServiceLink {
  public:
    virtual ~ServiceLink() = default;

    /** The proxy has come to be held, or is held again: so is the service, which lives now. */
    virtual void acquire(const ProxyBinder* proxy) = 0;

    /** Nobody holds the proxy any more. */
    virtual void release(const ProxyBinder* proxy) = 0;

    /** The proxy's memory goes. */
    virtual void forget(const ProxyBinder* proxy) = 0;

    virtual android::status_t transact(uint32_t code, const android::Parcel& data,
                                       android::Parcel* reply, uint32_t flags) = 0;

    virtual bool refusesDeathLinks() const = 0;

    /** Calls the proxy's sendObituary() on a binder thread when the service dies, or has died. */
    virtual void requestDeathNotice(ProxyBinder* proxy) = 0;

    /** Takes the request back. A notice that is on its way arrives all the same. */
    virtual void clearDeathNotice(const ProxyBinder* proxy) = 0;
};

}  // namespace kalvorn::host
