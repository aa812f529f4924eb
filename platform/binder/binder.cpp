#include <binder/Binder.h>
#include <binder/IInterface.h>
#include <binder/Parcel.h>

#include "attached_objects.h"

namespace android {

IBinder::IBinder() = default;
IBinder::~IBinder() = default;

sp<IInterface> IBinder::queryLocalInterface(const String16&) {
    return nullptr;
}
bool IBinder::checkSubclass(const void*) const {
    return false;
}
BBinder* IBinder::localBinder() {
    return nullptr;
}
BpBinder* IBinder::remoteBinder() {
    return nullptr;
}

class BBinder::Extras : public kalvorn::host::AttachedObjects {};

BBinder::BBinder() : mExtras(nullptr), mReserved0(nullptr) {}
BBinder::~BBinder() {
    delete mExtras.load();
}

BBinder::Extras* BBinder::getOrCreateExtras() {
    Extras* extras = mExtras.load();
    if (extras != nullptr) return extras;
    auto created = std::make_unique<Extras>();
    return mExtras.compare_exchange_strong(extras, created.get()) ? created.release() : extras;
}

const String16& BBinder::getInterfaceDescriptor() const {
    static const auto* const none = new String16;
    return *none;
}

bool BBinder::isBinderAlive() const {
    return true;
}
status_t BBinder::pingBinder() {
    return OK;
}
status_t BBinder::dump(int, const Vector<String16>&) {
    return OK;
}
BBinder* BBinder::localBinder() {
    return this;
}

status_t BBinder::transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags) {
    data.setDataPosition(0);
    const status_t status =
            code == PING_TRANSACTION ? pingBinder() : onTransact(code, data, reply, flags);
    if (reply != nullptr) reply->setDataPosition(0);
    return status;
}

status_t BBinder::onTransact(uint32_t code, const Parcel&, Parcel* reply, uint32_t) {
    if (code != INTERFACE_TRANSACTION) return UNKNOWN_TRANSACTION;
    return reply->writeString16(getInterfaceDescriptor());
}

// A local object cannot outlive its process, so there is no death to hear of.
status_t BBinder::linkToDeath(const sp<DeathRecipient>&, void*, uint32_t) {
    return INVALID_OPERATION;
}

status_t BBinder::unlinkToDeath(const wp<DeathRecipient>&, void*, uint32_t, wp<DeathRecipient>*) {
    return INVALID_OPERATION;
}

void BBinder::attachObject(const void* id, void* object, void* cookie,
                           object_cleanup_func cleanup) {
    getOrCreateExtras()->attach(id, object, cookie, cleanup);
}

void* BBinder::findObject(const void* id) const {
    const Extras* extras = mExtras.load();
    return extras != nullptr ? extras->find(id) : nullptr;
}

void BBinder::detachObject(const void* id) {
    getOrCreateExtras()->detach(id);
}

BpRefBase::BpRefBase(const sp<IBinder>& remote) : mRemote(remote.get()), mRefs(nullptr), mState(0) {
    if (mRemote != nullptr) mRemote->incStrong(this);
}

BpRefBase::~BpRefBase() {
    if (mRemote != nullptr) mRemote->decStrong(this);
}

void BpRefBase::onFirstRef() {
    RefBase::onFirstRef();
}
void BpRefBase::onLastStrongRef(const void* id) {
    RefBase::onLastStrongRef(id);
}
bool BpRefBase::onIncStrongAttempted(uint32_t flags, const void* id) {
    return RefBase::onIncStrongAttempted(flags, id);
}

IInterface::IInterface() = default;
IInterface::~IInterface() = default;

sp<IBinder> IInterface::asBinder(const IInterface* iface) {
    return iface != nullptr ? const_cast<IInterface*>(iface)->onAsBinder() : nullptr;
}

sp<IBinder> IInterface::asBinder(const sp<IInterface>& iface) {
    return asBinder(iface.get());
}

}  // namespace android
