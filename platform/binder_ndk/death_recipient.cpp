#include <android/binder_libbinder.h>
#include <log/log.h>

#include <cstdint>
#include <utility>

#include "ndk_binder.h"

using android::IBinder;
using android::sp;
using android::wp;

namespace {

/** The platform's recipient for one link. */
class Notifier : public IBinder::DeathRecipient {
  public:
    Notifier(AIBinder_DeathRecipient_onBinderDied onBinderDied, void* cookie,
             const wp<AIBinder_DeathRecipient>& owner)
        : mOnBinderDied(onBinderDied), mCookie(cookie), mOwner(owner) {}

    void binderDied(const wp<IBinder>&) override {
        mOnBinderDied(mCookie);
        const sp<AIBinder_DeathRecipient> owner = mOwner.promote();
        if (owner != nullptr) owner->forget(this);
    }

  private:
    const AIBinder_DeathRecipient_onBinderDied mOnBinderDied;
    void* const mCookie;
    const wp<AIBinder_DeathRecipient> mOwner;
};

}  // namespace

binder_status_t AIBinder_DeathRecipient::link(const sp<IBinder>& binder, void* cookie) {
    const sp<IBinder::DeathRecipient> notifier = new Notifier(mOnBinderDied, cookie, this);
    // Locked throughout, so that a notice that comes at once finds its link to forget.
    std::lock_guard<std::mutex> lock(mMutex);
    const binder_status_t status = binder->linkToDeath(notifier, cookie, 0);
    if (status == STATUS_OK) mLinks.push_back({binder, cookie, notifier});
    return status;
}

binder_status_t AIBinder_DeathRecipient::unlink(const sp<IBinder>& binder, void* cookie) {
    const auto matches = [&](const Link& link) {
        return link.who == binder && link.cookie == cookie;
    };
    const std::vector<Link> removed = take(1, matches);
    if (removed.empty()) return STATUS_NAME_NOT_FOUND;
    const binder_status_t status = binder->unlinkToDeath(removed[0].notifier, cookie, 0, nullptr);
    if (status != STATUS_OK) ALOGE("the link is forgotten, but unlinking answers %d", status);
    return status;
}

void AIBinder_DeathRecipient::forget(const IBinder::DeathRecipient* notifier) {
    take(1, [&](const Link& link) { return link.notifier == notifier; });
}

void AIBinder_DeathRecipient::forgetAll(const sp<IBinder>& binder) {
    take(SIZE_MAX, [&](const Link& link) { return link.who == binder; });
}

/** Takes out up to `most` links, the latest first; the caller lets them go without the lock. */
template <typename Predicate>
std::vector<AIBinder_DeathRecipient::Link> AIBinder_DeathRecipient::take(size_t most,
                                                                         Predicate matches) {
    std::vector<Link> taken;
    std::lock_guard<std::mutex> lock(mMutex);
    for (size_t i = mLinks.size(); i-- > 0 && taken.size() < most;) {
        if (!matches(mLinks[i])) continue;
        taken.push_back(std::move(mLinks[i]));
        mLinks.erase(mLinks.begin() + static_cast<ptrdiff_t>(i));
    }
    return taken;
}

AIBinder_DeathRecipient* AIBinder_DeathRecipient_new(
        AIBinder_DeathRecipient_onBinderDied onBinderDied) {
    if (onBinderDied == nullptr) return nullptr;
    auto* const recipient = new AIBinder_DeathRecipient(onBinderDied);
    recipient->incStrong(nullptr);
    return recipient;
}

void AIBinder_DeathRecipient_delete(AIBinder_DeathRecipient* recipient) {
    if (recipient != nullptr) recipient->decStrong(nullptr);
}

binder_status_t AIBinder_linkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                     void* cookie) {
    if (binder == nullptr || recipient == nullptr) return STATUS_UNEXPECTED_NULL;
    const binder_status_t status = recipient->link(binder->platformBinder(), cookie);
    if (status == STATUS_OK) binder->linkedTo(recipient);
    return status;
}

binder_status_t AIBinder_unlinkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                       void* cookie) {
    if (binder == nullptr || recipient == nullptr) return STATUS_UNEXPECTED_NULL;
    return recipient->unlink(binder->platformBinder(), cookie);
}
