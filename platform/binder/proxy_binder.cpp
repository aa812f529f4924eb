#include "proxy_binder.h"

#include <binder/Parcel.h>

#include <algorithm>
#include <utility>

#include "binder_host.h"
#include "platform/hook.h"

using android::DEAD_OBJECT;
using android::OK;
using android::Parcel;
using android::sp;
using android::status_t;
using android::String16;
using android::Vector;
using android::wp;

namespace kalvorn::host {

namespace {

Hook g_onLink, g_onLastReference;

}  // namespace

void OnLink(std::function<void()> hook) {
    g_onLink.set(std::move(hook));
}

void OnLastReference(std::function<void()> hook) {
    g_onLastReference.set(std::move(hook));
}

ProxyBinder::ProxyBinder(std::shared_ptr<LocalService> service) : mService(std::move(service)) {
    extendObjectLifetime(OBJECT_LIFETIME_WEAK);
}

const String16& ProxyBinder::getInterfaceDescriptor() const {
    std::lock_guard<std::mutex> lock(mDescriptorMutex);
    if (mDescriptor.size() == 0) {
        Parcel data, reply;
        auto* const self = const_cast<ProxyBinder*>(this);
        if (self->transact(INTERFACE_TRANSACTION, data, &reply, 0) == OK) {
            reply.readString16(&mDescriptor);
        }
    }
    return mDescriptor;
}

status_t ProxyBinder::pingBinder() {
    Parcel data, reply;
    return transact(PING_TRANSACTION, data, &reply, 0);
}

status_t ProxyBinder::dump(int, const Vector<String16>&) {
    return android::INVALID_OPERATION;
}

status_t ProxyBinder::transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags) {
    if (!mAlive) return DEAD_OBJECT;
    const status_t status = mService->transact(code, data, reply, flags);
    if (status == DEAD_OBJECT) mAlive = false;
    return status;
}

// Whether the service lives makes no difference here: only the obituary ends the links.
status_t ProxyBinder::linkToDeath(const sp<DeathRecipient>& recipient, void* cookie,
                                  uint32_t flags) {
    if (recipient == nullptr) return android::BAD_VALUE;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (mObituarySent) return DEAD_OBJECT;
        if (mService->refusesDeathLinks()) return android::INVALID_OPERATION;
        mObituaries.push_back({recipient, cookie, flags});
        if (mObituaries.size() == 1) mService->requestDeathNotice(this);
    }
    g_onLink.run();
    return OK;
}

status_t ProxyBinder::unlinkToDeath(const wp<DeathRecipient>& recipient, void* cookie,
                                    uint32_t flags, wp<DeathRecipient>* outRecipient) {
    // The cookie tells links apart only for a caller who no longer has the recipient.
    const auto matches = [&](const Obituary& obituary) {
        const bool known =
                recipient == nullptr ? obituary.cookie == cookie : obituary.recipient == recipient;
        return known && obituary.flags == flags;
    };
    wp<DeathRecipient> removed;  // let go when the lock is: it may be the recipient's end
    std::lock_guard<std::mutex> lock(mMutex);
    if (mObituarySent) return DEAD_OBJECT;
    const auto found = std::find_if(mObituaries.begin(), mObituaries.end(), matches);
    if (found == mObituaries.end()) return android::NAME_NOT_FOUND;
    removed = found->recipient;
    mObituaries.erase(found);
    if (mObituaries.empty()) mService->clearDeathNotice(this);
    if (outRecipient != nullptr) *outRecipient = removed;
    return OK;
}

void ProxyBinder::attachObject(const void* id, void* object, void* cookie,
                               object_cleanup_func cleanup) {
    mAttached.attach(id, object, cookie, cleanup);
}

void* ProxyBinder::findObject(const void* id) const {
    return mAttached.find(id);
}

void ProxyBinder::detachObject(const void* id) {
    mAttached.detach(id);
}

/** With the lock held. */
ProxyBinder::Obituaries ProxyBinder::takeObituaries() {
    mService->clearDeathNotice(this);
    return std::exchange(mObituaries, {});
}

void ProxyBinder::sendObituary() {
    Obituaries obituaries;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mAlive = false;
        if (std::exchange(mObituarySent, true)) return;
        obituaries = takeObituaries();
    }
    for (const Obituary& obituary : obituaries) {
        const sp<DeathRecipient> recipient = obituary.recipient.promote();
        if (recipient != nullptr) recipient->binderDied(this);
    }
}

size_t ProxyBinder::livingRecipients() const {
    Obituaries obituaries;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        obituaries = mObituaries;
    }
    return std::count_if(obituaries.begin(), obituaries.end(), [](const Obituary& obituary) {
        return obituary.recipient.promote() != nullptr;
    });
}

// Nobody asks whether the service was looked up again in this moment, and linked: the link goes
// too.
void ProxyBinder::onLastStrongRef(const void*) {
    g_onLastReference.run();
    Obituaries unlinked;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        unlinked = takeObituaries();
    }
    mService->release(this);
}

bool ProxyBinder::onIncStrongAttempted(uint32_t, const void*) {
    return false;
}

}  // namespace kalvorn::host
