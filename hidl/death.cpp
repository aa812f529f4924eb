#include "hidl/services.h"

using namespace kalvorn;

namespace native_hidl {

namespace {

void Release(sp<IBase>* global) {
    const sp<IBase> service = held::Take(global);
    if (service == nullptr) return;
    Unlink(service);
    g_retired.Add(service, global);
}

void ReleaseAll() {
#define SERVICE(connector, Interface, global, ...) Release(held::As<IBase>(&global));
#include "hidl/services.inc"
}

void Exit() {
    KV_LOGD("ExitKvManager by hidl");
    ReleaseAll();
}

/** At exit HIDL threads may still be connecting: what they fill later stays. */
const struct ReleaseAtExit {
    ~ReleaseAtExit() {
        ReleaseAll();
        g_retired.LetGoOfAll();
    }
} g_releaseAtExit;

}  // namespace

void Unlink(const sp<IBase>& service) {
    DropStatus(service->unlinkToDeath(g_hidlUtil));
}

// Whichever service died, all are released; the next registration connects them again. What was
// released stays until then: the last reference to a living service's proxy would clear also a link
// that is made meanwhile.
void ProcessServiceDied(uint64_t cookie, const android::wp<IBase>& /* who */) {
    KV_LOGW("enter into ProcessServiceDied, cookie is:%llu",
            static_cast<unsigned long long>(cookie));
    Exit();
}

void ReinitHal(const hidl_string& fqName, const hidl_string& name, bool preexisting) {
    KV_LOGW("enter into ReinitHal, fqName:%s, name:%s, preexisting:%d", fqName.c_str(),
            name.c_str(), preexisting);
    if (preexisting) return;
#define SERVICE(connector, ...) connector();
#include "hidl/services.inc"
    g_retired.LetGoOfAll();
}

void ExitKvManager() {
    Exit();
    g_retired.LetGoOfAll();
}

}  // namespace native_hidl
