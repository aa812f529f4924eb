#include <android/binder_libbinder.h>

#include <set>
#include <utility>

#include "ndk_binder.h"

using android::BBinder;
using android::IBinder;
using android::Parcel;
using android::sp;
using android::status_t;
using android::String16;
using android::wp;

namespace {

const char kRemoteObjectId = 0;

/** A service written against the NDK: a platform object whose calls go to its class. */
class LocalObject : public AIBinder, public BBinder {
  public:
    LocalObject(const AIBinder_Class* clazz, void* userData)
        : AIBinder(clazz), mUserData(userData) {}
    ~LocalObject() override { clazz()->onDestroy(mUserData); }

    sp<IBinder> platformBinder() override { return this; }
    void* userData() override { return mUserData; }
    const String16& getInterfaceDescriptor() const override { return clazz()->descriptor; }

  protected:
    status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags) override {
        if (code < ::FIRST_CALL_TRANSACTION || code > ::LAST_CALL_TRANSACTION) {
            return BBinder::onTransact(code, data, reply, flags);
        }
        if (!data.checkInterface(this)) return STATUS_BAD_TYPE;
        const AParcel in(const_cast<Parcel*>(&data));
        AParcel out(reply);
        return clazz()->onTransact(this, code, &in, &out);
    }

  private:
    void* const mUserData;
};

class RemoteObject : public AIBinder {
  public:
    explicit RemoteObject(const sp<IBinder>& proxy) : AIBinder(nullptr), mProxy(proxy) {}
    ~RemoteObject() override {
        for (const wp<AIBinder_DeathRecipient>& linked : mRecipients) {
            const sp<AIBinder_DeathRecipient> recipient = linked.promote();
            if (recipient != nullptr) recipient->forgetAll(mProxy);
        }
    }

    sp<IBinder> platformBinder() override { return mProxy; }

    void linkedTo(const wp<AIBinder_DeathRecipient>& recipient) override {
        std::lock_guard<std::mutex> lock(mMutex);
        mRecipients.insert(recipient);
    }

  private:
    const sp<IBinder> mProxy;
    std::mutex mMutex;
    std::set<wp<AIBinder_DeathRecipient>> mRecipients;
};

void DeleteAttached(const void*, void* attached, void*) {
    delete static_cast<wp<RemoteObject>*>(attached);
}

wp<RemoteObject>* AttachedTo(const sp<IBinder>& proxy) {
    auto* attached = static_cast<wp<RemoteObject>*>(proxy->findObject(&kRemoteObjectId));
    if (attached == nullptr) {
        attached = new wp<RemoteObject>;
        proxy->attachObject(&kRemoteObjectId, attached, nullptr, DeleteAttached);
    }
    return attached;
}

sp<RemoteObject> RemoteObjectOf(const sp<IBinder>& proxy) {
    static std::mutex mutex;
    std::lock_guard<std::mutex> lock(mutex);
    wp<RemoteObject>* const attached = AttachedTo(proxy);
    sp<RemoteObject> object = attached->promote();
    if (object == nullptr) {
        object = new RemoteObject(proxy);
        *attached = object;
    }
    return object;
}

AIBinder* Owned(const sp<AIBinder>& binder) {
    if (binder != nullptr) AIBinder_incStrong(binder.get());
    return binder.get();
}

}  // namespace

AIBinder* OwnedRemoteBinder(const sp<IBinder>& proxy) {
    return proxy != nullptr ? Owned(RemoteObjectOf(proxy)) : nullptr;
}

sp<IBinder> AIBinder_toPlatformBinder(AIBinder* binder) {
    return binder != nullptr ? binder->platformBinder() : nullptr;
}

AIBinder_Class* AIBinder_Class_define(const char* interfaceDescriptor,
                                      AIBinder_Class_onCreate onCreate,
                                      AIBinder_Class_onDestroy onDestroy,
                                      AIBinder_Class_onTransact onTransact) {
    return new AIBinder_Class{String16(interfaceDescriptor), onCreate, onDestroy, onTransact};
}

AIBinder* AIBinder_new(const AIBinder_Class* clazz, void* args) {
    return Owned(new LocalObject(clazz, clazz->onCreate(args)));
}

void AIBinder_incStrong(AIBinder* binder) {
    binder->incStrong(nullptr);
}

void AIBinder_decStrong(AIBinder* binder) {
    binder->decStrong(nullptr);
}

AIBinder_Weak* AIBinder_Weak_new(AIBinder* binder) {
    return new AIBinder_Weak{binder};
}

void AIBinder_Weak_delete(AIBinder_Weak* weakBinder) {
    delete weakBinder;
}

AIBinder* AIBinder_Weak_promote(AIBinder_Weak* weakBinder) {
    return Owned(weakBinder->binder.promote());
}

binder_status_t AIBinder_ping(AIBinder* binder) {
    if (binder == nullptr) return STATUS_UNEXPECTED_NULL;
    return binder->platformBinder()->pingBinder();
}

bool AIBinder_associateClass(AIBinder* binder, const AIBinder_Class* clazz) {
    if (binder == nullptr) return false;
    const bool known = binder->clazz() != nullptr;
    const bool fits =
            known || binder->platformBinder()->getInterfaceDescriptor() == clazz->descriptor;
    return fits && binder->setClass(clazz);
}

void* AIBinder_getUserData(AIBinder* binder) {
    return binder != nullptr ? binder->userData() : nullptr;
}

binder_status_t AIBinder_prepareTransaction(AIBinder* binder, AParcel** in) {
    if (binder == nullptr) return STATUS_UNEXPECTED_NULL;
    if (binder->clazz() == nullptr) return STATUS_INVALID_OPERATION;
    auto parcel = std::make_unique<AParcel>();
    const status_t status = parcel->platform->writeInterfaceToken(binder->clazz()->descriptor);
    if (status == STATUS_OK) *in = parcel.release();
    return status;
}

binder_status_t AIBinder_transact(AIBinder* binder, transaction_code_t code, AParcel** in,
                                  AParcel** out, binder_flags_t flags) {
    const std::unique_ptr<AParcel> request(std::exchange(*in, nullptr));
    if (binder == nullptr) return STATUS_UNEXPECTED_NULL;
    auto reply = std::make_unique<AParcel>();
    const status_t status =
            binder->platformBinder()->transact(code, *request->platform, reply->platform, flags);
    if (status == STATUS_OK) *out = reply.release();
    return status;
}
