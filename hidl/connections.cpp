#include <string>

#include "hidl/services.h"

using namespace kalvorn;

namespace native_hidl {

using android::hidl::manager::V1_0::IServiceNotification;

#define SERVICE(connector, Interface, global, ...) KALVORN_NEVER_DESTROYED sp<Interface> global;
#include "hidl/services.inc"

KALVORN_NEVER_DESTROYED sp<android::HidlUtil> g_hidlUtil;

held::Retired<IBase> g_retired;

namespace {

/** What tells one connector from another. */
struct Service {
    void* global;  // an sp of the interface
    sp<IBase> (*getService)(const std::string& instance);
    bool (*registerForNotifications)(const std::string& instance,
                                     const sp<IServiceNotification>& listener);
    const char* instance;
    uint64_t cookie;
    const char* startText;
    int linkPriority;
    const char* linkText;
    const char* nullText;
};

template <typename Interface>
sp<IBase> GetService(const std::string& instance) {
    static_assert(held::kAtOneAddress<IBase, Interface>,
                  "Connect takes the global for one of the base class");
    return Interface::getService(instance, /* getStub */ false);
}

bool Link(const sp<IBase>& service, const Service& wanted) {
    KV_LOG(wanted.linkPriority, "%s", wanted.linkText);
    const Return<bool> linked = service->linkToDeath(
            held::MadeOnce(&g_hidlUtil, ProcessServiceDied, ReinitHal), wanted.cookie);
    return linked.isOk() && linked;
}

// The notice of a death between the link and the publication finds nothing to take, so the
// connector asks the service itself when it has published, and takes a dead one back. The last try
// takes what is there: a living service may answer as the dead do.
void Connect(const Service& wanted) {
    KV_LOGD("%s", wanted.startText);
    auto* const global = static_cast<sp<IBase>*>(wanted.global);
    for (int tries = 1; !held::IsHeld(*global); tries++) {
        const sp<IBase> service = wanted.getService(wanted.instance);
        if (service == nullptr) {
            KV_LOGE("%s", wanted.nullText);
            return;
        }
        if (held::IsHeld(*global)) {
            g_retired.Add(service, global);
            return;
        }
        // A refused link goes unnoticed: the service is used all the same.
        const bool isLinked = Link(service, wanted);
        const bool isPublished = held::Publish(global, service);
        if (isPublished && (tries >= held::kTries || service->ping().isOk())) {
            // intended: registered anew on every connection, so a service that comes back often is
            // announced as often
            wanted.registerForNotifications("", g_hidlUtil);
            return;
        }
        // Another connector was first, or the service has died: a teardown may have taken it.
        if (isPublished && !held::TakeBack(global, service)) continue;
        if (isLinked) Unlink(service);
        g_retired.Add(service, global);
        if (isPublished) usleep(held::kPause);
    }
}

}  // namespace

#define SERVICE(connector, Interface, global, instance, cookie, startText, linkPriority, linkText, \
                nullText)                                                                          \
    void connector() {                                                                             \
        static constexpr Service kService{&global,                                                 \
                                          GetService<Interface>,                                   \
                                          Interface::registerForNotifications,                     \
                                          instance,                                                \
                                          cookie,                                                  \
                                          startText,                                               \
                                          linkPriority,                                            \
                                          linkText,                                                \
                                          nullText};                                               \
        Connect(kService);                                                                         \
    }
#include "hidl/services.inc"

}  // namespace native_hidl
