/** What stands behind the NDK binder's opaque types. */
#pragma once

#include <android/binder_ibinder.h>
#include <binder/Binder.h>
#include <binder/Parcel.h>
#include <binder/Status.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

struct AIBinder_Class {
    const android::String16 descriptor;
    const AIBinder_Class_onCreate onCreate;
    const AIBinder_Class_onDestroy onDestroy;
    const AIBinder_Class_onTransact onTransact;
};

struct AIBinder : public virtual android::RefBase {
    explicit AIBinder(const AIBinder_Class* clazz) : mClass(clazz) {}

    virtual android::sp<android::IBinder> platformBinder() = 0;
    virtual void* userData() { return nullptr; }

    /** The recipient has a link to this binder, which ends with it. */
    virtual void linkedTo(const android::wp<AIBinder_DeathRecipient>&) {}

    const AIBinder_Class* clazz() const { return mClass.load(); }

    /** Takes `clazz` as the class if there is none yet; false if there is another one. */
    bool setClass(const AIBinder_Class* clazz) {
        const AIBinder_Class* present = nullptr;
        return mClass.compare_exchange_strong(present, clazz) || present == clazz;
    }

  private:
    std::atomic<const AIBinder_Class*> mClass;
};

/**
 * A binder and a cookie together name a link. It is gone when its notice has been given, or when
 * its AIBinder or this recipient goes: only these hold the notifier, which the platform's links
 * refer to weakly. A notice under way keeps what it needs.
 */
struct AIBinder_DeathRecipient : public android::RefBase {
    explicit AIBinder_DeathRecipient(AIBinder_DeathRecipient_onBinderDied onBinderDied)
        : mOnBinderDied(onBinderDied) {}

    binder_status_t link(const android::sp<android::IBinder>& binder, void* cookie);
    binder_status_t unlink(const android::sp<android::IBinder>& binder, void* cookie);
    void forget(const android::IBinder::DeathRecipient* notifier);
    void forgetAll(const android::sp<android::IBinder>& binder);

  private:
    struct Link {
        android::wp<android::IBinder> who;
        void* cookie;
        android::sp<android::IBinder::DeathRecipient> notifier;
    };

    template <typename Predicate>
    std::vector<Link> take(size_t most, Predicate matches);

    const AIBinder_DeathRecipient_onBinderDied mOnBinderDied;
    std::mutex mMutex;
    std::vector<Link> mLinks;
};

struct AIBinder_Weak {
    const android::wp<AIBinder> binder;
};

/** A parcel of our own, or a view of one that a transaction lends. */
struct AParcel {
    AParcel() : own(std::make_unique<android::Parcel>()), platform(own.get()) {}
    explicit AParcel(android::Parcel* lent) : platform(lent) {}

    const std::unique_ptr<android::Parcel> own;
    android::Parcel* const platform;
};

struct AStatus {
    android::binder::Status status;
};

/** The AIBinder of a proxy, with one reference for the caller: always the same one while it lives.
 */
AIBinder* OwnedRemoteBinder(const android::sp<android::IBinder>& proxy);
