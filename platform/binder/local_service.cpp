#include "local_service.h"

#include <binder/Parcel.h>
#include <log/log.h>

#include <functional>
#include <utility>
#include <vector>

#include "binder_host.h"
#include "platform/hook.h"
#include "proxy_binder.h"
#include "service_manager.h"
#include "thread_pool.h"

using android::DEAD_OBJECT;
using android::IBinder;
using android::OK;
using android::Parcel;
using android::sp;
using android::status_t;
using android::wp;

namespace kalvorn::host {
namespace {

const char kServiceId = 0;

Hook g_onServiceDied;

using Holder = std::shared_ptr<LocalService>;

void DeleteHolder(const void*, void* holder, void*) {
    delete static_cast<Holder*>(holder);
}

/** Where the one client process receives its replies. */
const std::shared_ptr<TransactionBuffer>& ClientBuffer() {
    static const auto* const buffer =
            new std::shared_ptr<TransactionBuffer>(std::make_shared<TransactionBuffer>());
    return *buffer;
}

/** The weak pointer keeps the proxy's memory until the notice has returned. */
std::function<void()> NoticeFor(const wp<ProxyBinder>& proxy) {
    return [proxy] { proxy.unsafe_get()->sendObituary(); };
}

}  // namespace

sp<IBinder> RemoteView(const sp<IBinder>& binder) {
    if (binder == nullptr || binder->localBinder() == nullptr) return binder;
    return LocalService::Of(binder)->proxy();
}

bool IsServiceAlive(const sp<IBinder>& binder) {
    return binder->localBinder() == nullptr ? binder->isBinderAlive()
                                            : LocalService::Of(binder)->isAlive();
}

std::shared_ptr<LocalService> LocalService::Of(const sp<IBinder>& local) {
    static std::mutex mutex;
    LOG_ALWAYS_FATAL_IF(local == nullptr || local->localBinder() == nullptr,
                        "a local binder is needed");
    std::lock_guard<std::mutex> lock(mutex);
    auto* holder = static_cast<Holder*>(local->findObject(&kServiceId));
    if (holder == nullptr) {
        holder = new Holder(new LocalService(local->localBinder()));
        local->attachObject(&kServiceId, holder, nullptr, DeleteHolder);
    }
    return *holder;
}

sp<IBinder> LocalService::proxy() {
    std::lock_guard<std::mutex> lock(mMutex);
    sp<IBinder> proxy;
    if (mProxy != nullptr && mProxyRefs->attemptIncWeak(this)) {
        proxy.force_set(mProxy);
        mProxyRefs->decWeak(this);
    } else {
        mProxy = new ProxyBinder(shared_from_this());
        mProxyRefs = mProxy->getWeakRefs();
        proxy = mProxy;
    }
    return proxy;
}

void LocalService::forget(const ProxyBinder* proxy) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mProxy == proxy) mProxy = nullptr;
}

bool LocalService::isAlive() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mState == State::kAlive;
}

size_t LocalService::deathLinks() const {
    wp<ProxyBinder> linked;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (mState == State::kAlive) linked = mRequester;
    }
    return linked == nullptr ? 0 : linked.unsafe_get()->livingRecipients();
}

bool LocalService::die() {
    std::lock_guard<std::mutex> lock(mMutex);
    return std::exchange(mState, State::kDying) == State::kAlive;
}

wp<ProxyBinder> LocalService::announce() {
    std::lock_guard<std::mutex> lock(mMutex);
    mState = State::kDead;
    return std::exchange(mRequester, nullptr);
}

void LocalService::refuseDeathLinks(bool refuse) {
    std::lock_guard<std::mutex> lock(mMutex);
    mRefuseLinks = refuse;
}

void LocalService::receiveInto(const std::shared_ptr<TransactionBuffer>& buffer) {
    std::lock_guard<std::mutex> lock(mMutex);
    mBuffer = buffer;
}

/** Null for a service that is dead. */
std::shared_ptr<TransactionBuffer> LocalService::buffer() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mState == State::kAlive ? mBuffer : nullptr;
}

/** Copies what crosses, and calls on the caller's thread. */
status_t LocalService::transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags) {
    Parcel request, answer;
    const std::shared_ptr<TransactionBuffer> into = buffer();
    if (into == nullptr) return DEAD_OBJECT;
    status_t status = Receive(into, data, &request);
    if (status != OK) return status;
    status = mBinder->transact(code, request, &answer, flags);
    if (!isAlive()) return DEAD_OBJECT;
    if (status != OK || reply == nullptr) return status;
    return Receive(ClientBuffer(), answer, reply);
}

bool LocalService::refusesDeathLinks() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mRefuseLinks;
}

void LocalService::requestDeathNotice(ProxyBinder* proxy) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mState == State::kDead) {
        BinderThreads().post(NoticeFor(proxy));
    } else {
        mRequester = proxy;
    }
}

void LocalService::clearDeathNotice(const ProxyBinder* proxy) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mRequester == proxy) mRequester = nullptr;
}

void KillProcess(const std::vector<sp<IBinder>>& locals) {
    std::vector<std::pair<sp<IBinder>, std::shared_ptr<LocalService>>> dying;
    for (const sp<IBinder>& local : locals) {
        const std::shared_ptr<LocalService> service = LocalService::Of(local);
        if (service->die()) dying.emplace_back(local, service);
    }
    for (const auto& [local, service] : dying) {
        const wp<ProxyBinder> proxy = service->announce();
        if (proxy != nullptr) BinderThreads().post(NoticeFor(proxy));
        RemoveRegistrations(local);
        g_onServiceDied.run();
    }
}

void OnServiceDied(std::function<void()> hook) {
    g_onServiceDied.set(std::move(hook));
}

void ShareProcess(const std::vector<sp<IBinder>>& locals) {
    const auto buffer = std::make_shared<TransactionBuffer>();
    for (const sp<IBinder>& local : locals) LocalService::Of(local)->receiveInto(buffer);
}

void RefuseDeathLinks(const sp<IBinder>& local, bool refuse) {
    LocalService::Of(local)->refuseDeathLinks(refuse);
}

size_t DeathLinkCount(const sp<IBinder>& local) {
    return LocalService::Of(local)->deathLinks();
}

}  // namespace kalvorn::host
