#pragma once

#include <binder/Binder.h>

#include <memory>
#include <mutex>

#include "transaction_buffer.h"

namespace kalvorn::host {

class ProxyBinder;

/** What clients get for `binder`: a local object's proxy; a proxy and null stay what they are. */
android::sp<android::IBinder> RemoteView(const android::sp<android::IBinder>& binder);

/** Whether the service has not been killed, whatever its proxy has heard of it. */
bool IsServiceAlive(const android::sp<android::IBinder>& binder);

/**
 * What the driver would know of a service of this process. The service's BBinder and its proxy
 * share it. Its lock is taken under a proxy's lock, never the other way round.
 */
class LocalService : public std::enable_shared_from_this<LocalService> {
  public:
    /** The same object as long as `local` lives. Aborts if it is not a local binder. */
    static std::shared_ptr<LocalService> Of(const android::sp<android::IBinder>& local);

    /** The one proxy of the service, made anew if nobody refers to the last one any more. */
    android::sp<android::IBinder> proxy();

    bool isAlive() const;
    size_t deathLinks() const;

    /** From here on transactions fail, but nobody hears of it yet. False if it was dead. */
    bool die();

    /** Ends the silence after die(): returns the proxy to be told, null if none wants to be. */
    android::wp<ProxyBinder> announce();

    void refuseDeathLinks(bool refuse);
    void receiveInto(const std::shared_ptr<TransactionBuffer>& buffer);

    // For the proxy; errors are as IBinder describes them.

    /** The proxy has come to be held, or is held again: so is the service, which lives now. */
    void acquire(const ProxyBinder* proxy) { mBinder->incStrong(proxy); }
    /** Nobody holds the proxy any more. */
    void release(const ProxyBinder* proxy) { mBinder->decStrong(proxy); }
    /** The proxy's memory goes. */
    void forget(const ProxyBinder* proxy);
    android::status_t transact(uint32_t code, const android::Parcel& data, android::Parcel* reply,
                               uint32_t flags);
    bool refusesDeathLinks() const;
    /** Calls the proxy's sendObituary() on a binder thread when the service dies, or has died. */
    void requestDeathNotice(ProxyBinder* proxy);
    /** Takes the request back. A notice that is on its way arrives all the same. */
    void clearDeathNotice(const ProxyBinder* proxy);

  private:
    enum class State { kAlive, kDying, kDead };

    explicit LocalService(android::BBinder* binder) : mBinder(binder) {}

    std::shared_ptr<TransactionBuffer> buffer() const;

    android::BBinder* const mBinder;  // lives as long as the proxy is held
    mutable std::mutex mMutex;
    ProxyBinder* mProxy = nullptr;
    android::RefBase::weakref_type* mProxyRefs = nullptr;
    android::wp<ProxyBinder> mRequester;
    State mState = State::kAlive;
    bool mRefuseLinks = false;
    std::shared_ptr<TransactionBuffer> mBuffer = std::make_shared<TransactionBuffer>();
};

}  // namespace kalvorn::host
