#include <android/binder_libbinder.h>

#include <algorithm>
#include <mutex>
#include <vector>

#include "ndk_binder.h"

using android::IBinder;
using android::sp;
using android::wp;

namespace {

/** The platform's recipient for one link. */
class Notifier : public IBinder::DeathRecipient {
  public:
    Notifier(AIBinder_DeathRecipient_onBinderDied onBinderDied, void* cookie)
        : mOnBinderDied(onBinderDied), mCookie(cookie) {}

    void binderDied(const wp<IBinder>&) override { mOnBinderDied(mCookie); }

  private:
    const AIBinder_DeathRecipient_onBinderDied mOnBinderDied;
    void* const mCookie;
};

struct Link {
    wp<IBinder> who;
    void* cookie;
    sp<IBinder::DeathRecipient> notifier;
};

}  // namespace

/** Owns its notifiers, so the platform's weak links end with it. */
struct AIBinder_DeathRecipient {
    explicit AIBinder_DeathRecipient(AIBinder_DeathRecipient_onBinderDied onBinderDied)
        : mOnBinderDied(onBinderDied) {}

    binder_status_t link(const sp<IBinder>& binder, void* cookie) {
        const sp<IBinder::DeathRecipient> notifier = new Notifier(mOnBinderDied, cookie);
        std::lock_guard<std::mutex> lock(mMutex);
        const binder_status_t status = binder->linkToDeath(notifier, cookie, 0);
        if (status == STATUS_OK) mLinks.push_back({binder, cookie, notifier});
        return status;
    }

    binder_status_t unlink(const sp<IBinder>& binder, void* cookie) {
        std::lock_guard<std::mutex> lock(mMutex);
        const auto found = std::find_if(mLinks.begin(), mLinks.end(), [&](const Link& link) {
            return link.who == binder && link.cookie == cookie;
        });
        if (found == mLinks.end()) return STATUS_NAME_NOT_FOUND;
        const sp<IBinder::DeathRecipient> notifier = found->notifier;
        mLinks.erase(found);
        return binder->unlinkToDeath(notifier, cookie, 0, nullptr);
    }

  private:
    const AIBinder_DeathRecipient_onBinderDied mOnBinderDied;
    std::mutex mMutex;
    std::vector<Link> mLinks;
};

AIBinder_DeathRecipient* AIBinder_DeathRecipient_new(
        AIBinder_DeathRecipient_onBinderDied onBinderDied) {
    return onBinderDied != nullptr ? new AIBinder_DeathRecipient(onBinderDied) : nullptr;
}

void AIBinder_DeathRecipient_delete(AIBinder_DeathRecipient* recipient) {
    delete recipient;
}

binder_status_t AIBinder_linkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                     void* cookie) {
    if (binder == nullptr || recipient == nullptr) return STATUS_UNEXPECTED_NULL;
    return recipient->link(binder->platformBinder(), cookie);
}

binder_status_t AIBinder_unlinkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                       void* cookie) {
    if (binder == nullptr || recipient == nullptr) return STATUS_UNEXPECTED_NULL;
    return recipient->unlink(binder->platformBinder(), cookie);
}
