#include <hidl/HostInterface.h>
#include <hidl/hidl_host.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

#include "platform/binder/thread_pool.h"
#include "platform/hook.h"

namespace kalvorn::host {

namespace hidl_runtime {

namespace {

using ::android::RefBase;
using ::android::wp;
using ::android::hardware::hidl_death_recipient;

/** Descriptor and instance. */
using ServiceName = std::pair<std::string, std::string>;

/** Whether who listens for this hears of a registration; an empty instance stands for all. */
bool Hears(const ServiceName& listened, const ServiceName& registered) {
    return listened.first == registered.first &&
           (listened.second.empty() || listened.second == registered.second);
}

struct DeathLink {
    wp<hidl_death_recipient> recipient;
    uint64_t cookie;
};

/** A service's one notice of its death, which tells all links at once. */
enum class Obituary { kNone, kQueued, kOut };

struct Life {
    wp<IBase> service;  // keeps the identity from being used for another object
    bool dead = false;
    bool refusesLinks = false;
    Obituary obituary = Obituary::kNone;
    std::vector<DeathLink> links;

    /** True if the obituary has to be posted now: not before somebody wants to be told. */
    bool queueObituary() {
        if (!dead || links.empty() || obituary != Obituary::kNone) return false;
        obituary = Obituary::kQueued;
        return true;
    }
};

/**
 * The process's service manager. References leave it before they are dropped, and messages are
 * posted after the lock is released, so that no foreign code ever runs under the lock.
 */
struct Registry {
    std::mutex mutex;
    std::condition_variable changed;
    int resets = 0;
    int registrations = 0;
    bool keepsDeadNames = false;
    std::set<ServiceName> declared;
    std::map<ServiceName, sp<IBase>> services;
    std::map<ServiceName, std::vector<sp<IServiceNotification>>> listeners;
    std::map<const RefBase::weakref_type*, Life> lives;
    /** A client process has one by default, so one that blocks holds up the rest. */
    ThreadPool thread{1};
    Hook onLink;
    std::atomic<size_t> lookUps = 0;

    Life& lifeOf(const IBase* service);
    const Life* knownLifeOf(const IBase* service) const;
    bool isDead(const IBase* service) const;
    void dropDeadNames(std::vector<sp<IBase>>* dropped);
    void forgetGone(std::vector<sp<IBase>>* held);
};

/** Never destroyed: its threads and late static objects may still need it. */
Registry& TheRegistry() {
    static Registry* registry = new Registry;
    return *registry;
}

Life& Registry::lifeOf(const IBase* service) {
    Life& life = lives[service->getWeakRefs()];
    if (life.service == nullptr) life.service = const_cast<IBase*>(service);
    return life;
}

const Life* Registry::knownLifeOf(const IBase* service) const {
    const auto found = lives.find(service->getWeakRefs());
    return found == lives.end() ? nullptr : &found->second;
}

bool Registry::isDead(const IBase* service) const {
    const Life* life = knownLifeOf(service);
    return life != nullptr && life->dead;
}

void Registry::dropDeadNames(std::vector<sp<IBase>>* dropped) {
    for (auto entry = services.begin(); entry != services.end();) {
        if (isDead(entry->second.get())) {
            dropped->push_back(std::move(entry->second));
            entry = services.erase(entry);
        } else {
            ++entry;
        }
    }
}

/** Lives of objects that nobody holds any more; what was looked at is let go with the vector. */
void Registry::forgetGone(std::vector<sp<IBase>>* held) {
    for (auto entry = lives.begin(); entry != lives.end();) {
        held->push_back(entry->second.service.promote());
        entry = held->back() == nullptr ? lives.erase(entry) : std::next(entry);
    }
}

void PostRegistration(const sp<IServiceNotification>& listener, const ServiceName& name,
                      bool preexisting) {
    TheRegistry().thread.post([=] {
        // A one-way call: nobody waits for its answer.
        (void)listener->onRegistration(name.first, name.second, preexisting).isOk();
    });
}

/** From here on the links cannot be taken back, and no new one is made. */
std::vector<DeathLink> TakeLinksForObituary(const IBase* service) {
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    Life& life = registry.lifeOf(service);
    life.obituary = Obituary::kOut;
    return std::exchange(life.links, {});
}

/** Reaches nobody when no client holds the service any more, as links go with the last proxy. */
void PostObituary(const wp<IBase>& dead) {
    TheRegistry().thread.post([dead] {
        const sp<IBase> service = dead.promote();
        if (service == nullptr) return;
        for (const DeathLink& link : TakeLinksForObituary(service.get())) {
            const sp<hidl_death_recipient> recipient = link.recipient.promote();
            if (recipient != nullptr) recipient->serviceDied(link.cookie, service);
        }
    });
}

/** The descriptors a service is found under; empty if it is dead. */
std::vector<std::string> RegisteredDescriptors(const sp<IBase>& service) {
    std::vector<std::string> descriptors;
    const Return<void> asked = service->interfaceChain([&](const auto& chain) {
        for (const hidl_string& descriptor : chain) descriptors.push_back(descriptor);
    });
    if (!asked.isOk()) return {};
    if (!descriptors.empty()) descriptors.pop_back();  // every chain ends in IBase
    return descriptors;
}

}  // namespace

Return<bool> Implements(const sp<IBase>& service, const char* descriptor) {
    if (service == nullptr) return false;
    bool named = false;
    const Return<void> asked = service->interfaceChain([&](const auto& chain) {
        for (const hidl_string& entry : chain) named = named || entry == descriptor;
    });
    if (!asked.isOk()) return ::android::hardware::details::StatusOf<void, bool>(asked);
    return named;
}

hidl_vec<hidl_string> ExtendChain(const char* descriptor, const hidl_vec<hidl_string>& chain) {
    hidl_vec<hidl_string> extended;
    extended.resize(chain.size() + 1);
    extended[0] = descriptor;
    std::copy(chain.begin(), chain.end(), extended.begin() + 1);
    return extended;
}

namespace {

sp<IBase> Registered(const ServiceName& name) {
    const std::lock_guard<std::mutex> lock(TheRegistry().mutex);
    const auto found = TheRegistry().services.find(name);
    return found == TheRegistry().services.end() ? nullptr : found->second;
}

/** One look-up, which goes on until it is answered; a declaration counts as it was at first. */
class LookUp {
  public:
    explicit LookUp(const ServiceName& name) {
        const std::lock_guard<std::mutex> lock(mRegistry.mutex);
        mDeclared = mRegistry.declared.count(name) != 0;
        mResets = mRegistry.resets;
        mRegistrations = mRegistry.registrations;
    }

    bool isDeclared() const { return mDeclared; }

    /** Until there is cause to look again: a registration, or a second. False after a reset. */
    bool wait() {
        std::unique_lock<std::mutex> lock(mRegistry.mutex);
        mRegistry.changed.wait_for(lock, std::chrono::seconds(1), [this] {
            return mRegistry.registrations != mRegistrations || mRegistry.resets != mResets;
        });
        mRegistrations = mRegistry.registrations;
        return mRegistry.resets == mResets;
    }

  private:
    Registry& mRegistry = TheRegistry();
    bool mDeclared;
    int mResets, mRegistrations;
};

}  // namespace

sp<IBase> FindService(const char* descriptor, const std::string& instance, bool wait) {
    const ServiceName name(descriptor, instance);
    ++TheRegistry().lookUps;
    LookUp lookUp(name);
    if (!lookUp.isDeclared()) return nullptr;
    do {
        const sp<IBase> found = Registered(name);
        const Return<bool> castable = Implements(found, descriptor);
        if (found != nullptr && !castable.isDeadObject()) {
            return castable.isOk() && castable ? found : nullptr;
        }
    } while (wait && lookUp.wait());
    return nullptr;
}

::android::status_t RegisterService(const sp<IBase>& service, const std::string& instance) {
    Registry& registry = TheRegistry();
    const std::vector<std::string> descriptors = RegisteredDescriptors(service);
    std::vector<sp<IBase>> replaced;
    std::vector<std::pair<sp<IServiceNotification>, ServiceName>> messages;
    {
        const std::lock_guard<std::mutex> lock(registry.mutex);
        if (descriptors.empty() || registry.isDead(service.get())) return ::android::UNKNOWN_ERROR;
        for (const std::string& descriptor : descriptors) {
            const ServiceName name(descriptor, instance);
            replaced.push_back(std::exchange(registry.services[name], service));
            for (const auto& [listened, listeners] : registry.listeners) {
                if (!Hears(listened, name)) continue;
                for (const auto& listener : listeners) messages.emplace_back(listener, name);
            }
        }
        registry.forgetGone(&replaced);
        ++registry.registrations;
        registry.changed.notify_all();
    }
    for (const auto& [listener, name] : messages) PostRegistration(listener, name, false);
    return ::android::OK;
}

bool AddListener(const char* descriptor, const std::string& instance,
                 const sp<IServiceNotification>& listener) {
    if (listener == nullptr) return false;
    Registry& registry = TheRegistry();
    const ServiceName listened(descriptor, instance);
    std::vector<ServiceName> present;
    {
        const std::lock_guard<std::mutex> lock(registry.mutex);
        registry.listeners[listened].push_back(listener);
        for (const auto& [name, service] : registry.services) {
            if (Hears(listened, name)) present.push_back(name);
        }
    }
    for (const ServiceName& name : present) PostRegistration(listener, name, true);
    return true;
}

namespace {

/** A dead service takes links as long as its obituary can still tell them. */
bool AddDeathLink(IBase* service, const DeathLink& link) {
    Registry& registry = TheRegistry();
    bool post;
    {
        const std::lock_guard<std::mutex> lock(registry.mutex);
        Life& life = registry.lifeOf(service);
        if (life.obituary == Obituary::kOut || life.refusesLinks) return false;
        life.links.push_back(link);
        post = life.queueObituary();
    }
    if (post) PostObituary(service);
    TheRegistry().onLink.run();
    return true;
}

/** The youngest link of a recipient goes first. */
bool RemoveDeathLink(const IBase* service, const wp<hidl_death_recipient>& recipient) {
    Registry& registry = TheRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    std::vector<DeathLink>& links = registry.lifeOf(service).links;
    for (auto link = links.rbegin(); link != links.rend(); ++link) {
        if (link->recipient == recipient) {
            links.erase(std::next(link).base());
            return true;
        }
    }
    return false;
}

/** What a call gets as its status: a dead service answers none any more. */
::android::hardware::Status StatusOfCall(const IBase* service) {
    return ::android::hardware::Status::fromStatusT(
            IsHidlServiceDead(service) ? ::android::DEAD_OBJECT : ::android::OK);
}

}  // namespace

}  // namespace hidl_runtime

using hidl_runtime::Life;
using hidl_runtime::Registry;
using hidl_runtime::TheRegistry;

void DeclareHidlService(const std::string& descriptor, const std::string& instance, bool declared) {
    const std::lock_guard<std::mutex> lock(TheRegistry().mutex);
    if (declared) {
        TheRegistry().declared.emplace(descriptor, instance);
    } else {
        TheRegistry().declared.erase({descriptor, instance});
    }
}

void KillHidlProcess(const std::vector<HidlService>& services,
                     const std::function<void()>& killTheRest) {
    Registry& registry = TheRegistry();
    std::vector<HidlService> mourned, dropped;  // let go of after the lock is released
    {
        const std::lock_guard<std::mutex> lock(registry.mutex);
        for (const HidlService& service : services) {
            if (service == nullptr) continue;
            Life& life = registry.lifeOf(service.get());
            life.dead = true;
            if (life.queueObituary()) mourned.push_back(service);
        }
        if (!registry.keepsDeadNames) registry.dropDeadNames(&dropped);
    }
    if (killTheRest) killTheRest();
    for (const HidlService& service : mourned) hidl_runtime::PostObituary(service);
}

void KeepDeadHidlNames(bool keep) {
    Registry& registry = TheRegistry();
    std::vector<HidlService> dropped;
    const std::lock_guard<std::mutex> lock(registry.mutex);
    registry.keepsDeadNames = keep;
    if (!keep) registry.dropDeadNames(&dropped);
}

bool IsHidlServiceDead(const ::android::hidl::base::V1_0::IBase* service) {
    const std::lock_guard<std::mutex> lock(TheRegistry().mutex);
    return TheRegistry().isDead(service);
}

void RefuseHidlDeathLinks(const HidlService& service, bool refuse) {
    const std::lock_guard<std::mutex> lock(TheRegistry().mutex);
    TheRegistry().lifeOf(service.get()).refusesLinks = refuse;
}

size_t HidlLookUpCount() {
    return TheRegistry().lookUps;
}

void OnHidlLink(std::function<void()> hook) {
    TheRegistry().onLink.set(std::move(hook));
}

size_t HidlDeathLinkCount(const HidlService& service) {
    const std::lock_guard<std::mutex> lock(TheRegistry().mutex);
    const Life* life = TheRegistry().knownLifeOf(service.get());
    return life == nullptr ? 0 : life->links.size();
}

size_t HidlNotificationCount(const std::string& descriptor) {
    const std::lock_guard<std::mutex> lock(TheRegistry().mutex);
    size_t count = 0;
    for (const auto& [listened, listeners] : TheRegistry().listeners) {
        if (descriptor.empty() || listened.first == descriptor) count += listeners.size();
    }
    return count;
}

size_t HidlDeliveryCount() {
    return TheRegistry().thread.posted();
}

bool WaitForHidlDelivery(std::chrono::milliseconds timeout) {
    return TheRegistry().thread.waitUntilIdle(timeout);
}

void ResetHidlRegistry() {
    Registry& registry = TheRegistry();
    decltype(registry.services) services;  // destroyed after the lock is released
    decltype(registry.listeners) listeners;
    std::vector<HidlService> held;  // the dead that clients hold still have to be known as dead
    {
        const std::lock_guard<std::mutex> lock(registry.mutex);
        ++registry.resets;
        registry.keepsDeadNames = false;
        registry.declared.clear();
        services.swap(registry.services);
        listeners.swap(registry.listeners);
        for (auto entry = registry.lives.begin(); entry != registry.lives.end();) {
            Life& life = entry->second;
            life.links.clear();
            life.refusesLinks = false;
            // A queued obituary goes with the messages, so the dead take no links any more.
            life.obituary = hidl_runtime::Obituary::kOut;
            held.push_back(life.dead ? life.service.promote() : nullptr);
            entry = held.back() != nullptr ? std::next(entry) : registry.lives.erase(entry);
        }
        registry.changed.notify_all();
    }
    registry.thread.clear();
}

}  // namespace kalvorn::host

// The base interface itself. On a device these members answer for the proxy.
namespace android::hidl::base::V1_0 {

using hardware::Return;
using namespace ::kalvorn::host::hidl_runtime;

const char* IBase::descriptor = "android.hidl.base@1.0::IBase";

Return<void> IBase::interfaceChain(interfaceChain_cb callback) {
    const hardware::Status status = StatusOfCall(this);
    if (status.isOk()) callback(ExtendChain(descriptor, {}));
    return status;
}

Return<void> IBase::ping() {
    return StatusOfCall(this);
}

Return<bool> IBase::linkToDeath(const sp<hardware::hidl_death_recipient>& recipient,
                                uint64_t cookie) {
    return recipient != nullptr && AddDeathLink(this, {recipient, cookie});
}

Return<bool> IBase::unlinkToDeath(const sp<hardware::hidl_death_recipient>& recipient) {
    return RemoveDeathLink(this, recipient);
}

Return<sp<IBase>> IBase::castFrom(const sp<IBase>& same, bool) {
    return same;
}

}  // namespace android::hidl::base::V1_0
