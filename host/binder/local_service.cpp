#include "local_service.h"

#include <binder/Parcel.h>
#include <log/log.h>

#include <algorithm>
#include <utility>

#include "binder_host.h"
#include "binder_threads.h"
#include "proxy_binder.h"
#include "service_manager.h"

using android::BBinder;
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

void Replace(Parcel* target, const Parcel& source) {
    target->freeData();
    target->appendFrom(&source, 0, source.dataSize());
    target->setDataPosition(0);
}

/** The way to a service of this process: copies what crosses, and calls on the caller's thread. */
class LocalLink : public ServiceLink {
  public:
    LocalLink(const sp<BBinder>& binder, LocalService* service)
        : mBinder(binder), mService(*service) {}

    bool isAlive() const override { return mService.isAlive(); }

    status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags) override {
        const status_t admitted = mService.admit(code);
        return admitted == OK ? deliver(code, data, reply, flags) : admitted;
    }

    status_t linkToDeath(const DeathLink& link) override { return mService.link(link); }
    status_t unlinkToDeath(const DeathLink& link) override { return mService.unlink(link); }
    void dropDeathLinks(const wp<IBinder>& who) override { mService.dropLinks(who); }

  private:
    status_t deliver(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags) {
        Parcel request, answer;
        Replace(&request, data);
        const status_t status = mBinder->transact(code, request, &answer, flags);
        if (!mService.isAlive()) return DEAD_OBJECT;
        if (status == OK && reply != nullptr) Replace(reply, answer);
        return status;
    }

    const sp<BBinder> mBinder;
    LocalService& mService;
};

void Notify(const std::vector<DeathLink>& links) {
    for (const DeathLink& link : links) {
        const sp<IBinder::DeathRecipient> recipient = link.recipient.promote();
        if (recipient != nullptr) recipient->binderDied(link.who);
    }
}

bool IsLive(const DeathLink& link) {
    return link.recipient.promote() != nullptr;
}

}  // namespace

sp<IBinder> RemoteView(const sp<IBinder>& binder) {
    if (binder == nullptr || binder->localBinder() == nullptr) return binder;
    return LocalService::Of(binder).proxy();
}

LocalService& LocalService::Of(const sp<IBinder>& local) {
    static std::mutex mutex;
    LOG_ALWAYS_FATAL_IF(local == nullptr || local->localBinder() == nullptr,
                        "a local binder is needed");
    std::lock_guard<std::mutex> lock(mutex);
    auto* service = static_cast<LocalService*>(local->findObject(&kServiceId));
    if (service == nullptr) {
        service = new LocalService(local->localBinder());
        local->attachObject(&kServiceId, service, nullptr, [](const void*, void* object, void*) {
            delete static_cast<LocalService*>(object);
        });
    }
    return *service;
}

sp<IBinder> LocalService::proxy() {
    std::lock_guard<std::mutex> lock(mMutex);
    sp<IBinder> proxy = mProxy.promote();
    if (proxy == nullptr) {
        proxy = new ProxyBinder(std::make_unique<LocalLink>(mBinder, this));
        mProxy = proxy;
    }
    return proxy;
}

bool LocalService::isAlive() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mAlive;
}

status_t LocalService::admit(uint32_t code) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (!mAlive) return DEAD_OBJECT;
    // A ping or a question for the descriptor must not use up the failure.
    return code <= IBinder::LAST_CALL_TRANSACTION ? std::exchange(mNextFailure, OK) : OK;
}

status_t LocalService::link(const DeathLink& link) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (!mAlive) return DEAD_OBJECT;
    if (mRefuseLinks) return android::INVALID_OPERATION;
    mLinks.push_back(link);
    return OK;
}

status_t LocalService::unlink(const DeathLink& link) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (!mAlive) return DEAD_OBJECT;
    auto found = std::find(mLinks.begin(), mLinks.end(), link);
    if (found == mLinks.end()) return android::NAME_NOT_FOUND;
    mLinks.erase(found);
    return OK;
}

void LocalService::dropLinks(const wp<IBinder>& who) {
    std::lock_guard<std::mutex> lock(mMutex);
    mLinks.erase(std::remove_if(mLinks.begin(), mLinks.end(),
                                [&](const DeathLink& link) { return link.who == who; }),
                 mLinks.end());
}

std::vector<DeathLink> LocalService::links() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mLinks;
}

std::vector<DeathLink> LocalService::die() {
    std::lock_guard<std::mutex> lock(mMutex);
    mAlive = false;
    return std::exchange(mLinks, {});
}

void LocalService::failNextTransaction(status_t status) {
    std::lock_guard<std::mutex> lock(mMutex);
    mNextFailure = status;
}

void LocalService::refuseDeathLinks(bool refuse) {
    std::lock_guard<std::mutex> lock(mMutex);
    mRefuseLinks = refuse;
}

void KillService(const sp<IBinder>& local) {
    std::vector<DeathLink> links = LocalService::Of(local).die();
    // First, so that a recipient finds the name free.
    RemoveRegistrations(local);
    if (!links.empty()) BinderThreads::Get().post([links = std::move(links)] { Notify(links); });
}

void FailNextTransaction(const sp<IBinder>& local, status_t status) {
    LocalService::Of(local).failNextTransaction(status);
}

void RefuseDeathLinks(const sp<IBinder>& local, bool refuse) {
    LocalService::Of(local).refuseDeathLinks(refuse);
}

size_t DeathLinkCount(const sp<IBinder>& local) {
    // Outside the service's lock: a recipient may end here, and its destructor call the service.
    const std::vector<DeathLink> links = LocalService::Of(local).links();
    return std::count_if(links.begin(), links.end(), IsLive);
}

}  // namespace kalvorn::host
