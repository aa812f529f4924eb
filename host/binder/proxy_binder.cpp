#include "proxy_binder.h"

#include <binder/Parcel.h>

using android::OK;
using android::Parcel;
using android::sp;
using android::status_t;
using android::String16;
using android::Vector;
using android::wp;

namespace kalvorn::host {

const String16& ProxyBinder::getInterfaceDescriptor() const {
    std::lock_guard<std::mutex> lock(mDescriptorMutex);
    if (mDescriptor.size() == 0) {
        Parcel data, reply;
        if (mLink->transact(INTERFACE_TRANSACTION, data, &reply, 0) == OK) {
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
    return mLink->transact(code, data, reply, flags);
}

status_t ProxyBinder::linkToDeath(const sp<DeathRecipient>& recipient, void* cookie,
                                  uint32_t flags) {
    if (recipient == nullptr) return android::BAD_VALUE;
    return mLink->linkToDeath({this, recipient, cookie, flags});
}

status_t ProxyBinder::unlinkToDeath(const wp<DeathRecipient>& recipient, void* cookie,
                                    uint32_t flags, wp<DeathRecipient>* outRecipient) {
    const status_t status = mLink->unlinkToDeath({this, recipient, cookie, flags});
    if (status == OK && outRecipient != nullptr) *outRecipient = recipient;
    return status;
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

}  // namespace kalvorn::host
