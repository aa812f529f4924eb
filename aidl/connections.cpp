#include <binder/IInterface.h>
#include <binder/IServiceManager.h>
#include <utils/Errors.h>
#include <utils/String16.h>

#include <memory>

#include "aidl/services.h"

using namespace kalvorn;

namespace native_aidl {

using android::IBinder;
using android::IInterface;
using android::String16;

#define SERVICE(connector, query, Interface, global, ...) \
    KALVORN_NEVER_DESTROYED sp<Interface> global;
#include "aidl/services.inc"

KALVORN_NEVER_DESTROYED std::shared_ptr<IFingerprint> g_aidlFingerprint;
KALVORN_NEVER_DESTROYED std::shared_ptr<ISession> g_aidlFingerprintSession;
KALVORN_NEVER_DESTROYED std::shared_ptr<ISessionCallback> g_aidlFingerprintSessionCallback;

held::Retired<IInterface> g_retired;

}  // namespace native_aidl

KALVORN_NEVER_DESTROYED __attribute__((visibility("default")))
ndk::ScopedAIBinder_DeathRecipient g_deathRecipient(
        AIBinder_DeathRecipient_new(native_aidl::ServiceDied));

namespace native_aidl {

KALVORN_NEVER_DESTROYED sp<DeathNotifier> g_deathNotifier;

namespace {

/** What tells one connector from another. */
struct Service {
    void* global;  // an sp of the interface
    const String16* descriptor;
    sp<IInterface> (*fromBinder)(const sp<IBinder>& binder);
    const char* instance;
    const char* startText;
    const char* nullText;
    const char* linkText;
};

template <typename Interface>
sp<IInterface> FromBinder(const sp<IBinder>& binder) {
    static_assert(held::kAtOneAddress<IInterface, Interface>,
                  "Connect takes the global for one of the base class");
    return Interface::asInterface(binder);
}

/** As android::waitForVintfService does it for one interface. */
sp<IInterface> WaitForDeclared(const Service& wanted) {
    const String16 name = *wanted.descriptor + String16("/") + String16(wanted.instance);
    const sp<android::IServiceManager> manager = android::defaultServiceManager();
    if (!manager->isDeclared(name)) return nullptr;
    return wanted.fromBinder(manager->waitForService(name));
}

/**
 * Whether the proxy has told of the death of its service, after which it tells of nothing any more.
 * It says so to whoever wants to undo a link, also one that is not there.
 */
bool IsObituaryOut(const sp<IBinder>& binder) {
    constexpr uint32_t kFlagsOfNoLink = ~0u;
    return binder->unlinkToDeath(nullptr, nullptr, kFlagsOfNoLink, nullptr) == android::DEAD_OBJECT;
}

/** Whether the global holds a service of whose death a notice will come; a dead one is taken out.
 */
bool IsConnected(sp<IInterface>* global) {
    const sp<IInterface> service = held::Copy(*global);
    if (service == nullptr) return false;
    if (!IsObituaryOut(IInterface::asBinder(service))) return true;
    if (held::TakeBack(global, service)) g_retired.Add(service, global);
    return false;
}

/**
 * Whether the proxy may be linked. One of no use, on which a call has broken off, may not: somebody
 * may drop the last reference to it at this moment, and the link with it. But a living service's
 * may be held by others for ever, so the last try takes it if it can still tell of a death.
 */
bool MayBeLinked(const sp<IBinder>& binder, int tries) {
    return binder->isBinderAlive() || (tries >= held::kTries && !IsObituaryOut(binder));
}

/**
 * False when another connector was first. A refused link goes unnoticed: the service is used all
 * the same.
 */
bool LinkAndPublish(const Service& wanted, const sp<IInterface>& service) {
    KV_LOGI("%s", wanted.linkText);
    const sp<IBinder> binder = IInterface::asBinder(service);
    const bool isLinked =
            binder->linkToDeath(held::MadeOnce(&g_deathNotifier), nullptr, 0) == android::OK;
    if (held::Publish(static_cast<sp<IInterface>*>(wanted.global), service)) return true;
    if (isLinked) Unlink(binder);
    return false;
}

// The notice of a death between the link and the publication finds nothing to take, so the
// connector asks once more when it has published. Whoever comes second leaves the service to the
// first. What may not be linked goes, so that the name gives a new proxy.
int Connect(const Service& wanted) {
    KV_LOGI("%s", wanted.startText);
    auto* const global = static_cast<sp<IInterface>*>(wanted.global);
    for (int tries = 1; !IsConnected(global);) {
        const sp<IInterface> service = WaitForDeclared(wanted);
        if (service == nullptr) {
            KV_LOGE("%s", wanted.nullText);
            return 0;
        }
        if (!MayBeLinked(IInterface::asBinder(service), tries)) {
            tries++;
            LetGoOfUseless();
            usleep(held::kPause);
        } else if (held::IsHeld(*global) || !LinkAndPublish(wanted, service)) {
            g_retired.Add(service, global);
        }
    }
    return 1;
}

}  // namespace

#define SERVICE(connector, query, Interface, global, instance, startText, nullText, linkText) \
    int connector() {                                                                         \
        static constexpr Service kService{&global,                                            \
                                          &Interface::descriptor,                             \
                                          FromBinder<Interface>,                              \
                                          instance,                                           \
                                          startText,                                          \
                                          nullText,                                           \
                                          linkText};                                          \
        return Connect(kService);                                                             \
    }                                                                                         \
    bool query() {                                                                            \
        return held::IsHeld(global);                                                          \
    }
#include "aidl/services.inc"

bool IsFingerprintServiceAidlVersion() {
    return held::IsHeld(g_aidlFingerprintSession);
}

}  // namespace native_aidl
