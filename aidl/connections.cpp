#include <binder/IInterface.h>
#include <binder/IServiceManager.h>
#include <unistd.h>
#include <utils/Errors.h>
#include <utils/String16.h>

#include <memory>
#include <new>

#include "aidl/services.h"

namespace native_aidl {

using android::IBinder;
using android::IInterface;
using android::String16;

// Released at process exit in the reverse of this order.
sp<IQxFactoryInterface> g_aidlFactory;
sp<IDisplay> g_aidlDisplayService;
sp<ITouchscreen> g_aidlTp;
sp<ISensors> g_aidlSensors;
sp<IQXPower> g_aidlPower;
sp<ILight> g_aidlLight;
sp<ICameraFactory> g_aidlCameraFactory;
sp<IRadioenhance> g_aidlRadioEnhance;
sp<IDisplayFactory> g_aidlDisplayFactory;
sp<IZtChipSrvHertz> g_aidlChipSrvInterface;
sp<IZtsimradio> g_aidlSim;
sp<IZtChipSrvSat> g_aidlChipSat;

std::shared_ptr<IFingerprint> g_aidlFingerprint;
std::shared_ptr<ISession> g_aidlFingerprintSession;
std::shared_ptr<ISessionCallback> g_aidlFingerprintSessionCallback;

}  // namespace native_aidl

__attribute__((visibility("default"))) ndk::ScopedAIBinder_DeathRecipient g_deathRecipient(
        AIBinder_DeathRecipient_new(native_aidl::ServiceDied));

namespace native_aidl {

sp<DeathNotifier> g_deathNotifier;

namespace {

// A name may outlive its service for a moment, and then gives the dead one once more.
constexpr useconds_t kDeadNamePause = 1000;

/** What tells one connector from another. */
struct Service {
    void* global;  // an sp of the interface
    const String16* descriptor;
    void (*fromBinder)(void* service, const sp<IBinder>& binder);
    const char* instance;
    const char* startText;
    const char* nullText;
    const char* linkText;
};

/** The interface of a binder, null for null, in the place of a null sp, of which nothing is lost.
 */
template <typename Interface>
void FromBinder(void* service, const sp<IBinder>& binder) {
    new (service) sp<Interface>(Interface::asInterface(binder));
}

template <typename Interface>
constexpr Service Describe(sp<Interface>* global, const char* instance, const char* startText,
                           const char* nullText, const char* linkText) {
    static_assert(held::kAtOneAddress<IInterface, Interface>,
                  "Connect takes the global for one of the base class");
    return {global,  &Interface::descriptor, FromBinder<Interface>, instance, startText, nullText,
            linkText};
}

/** As android::waitForVintfService does it for one interface. */
sp<IInterface> WaitForDeclared(const Service& wanted) {
    const String16 name = *wanted.descriptor + String16("/") + String16(wanted.instance);
    const sp<android::IServiceManager> manager = android::defaultServiceManager();
    sp<IInterface> service;
    if (manager->isDeclared(name)) wanted.fromBinder(&service, manager->waitForService(name));
    return service;
}

int Connect(const Service& wanted) {
    KV_LOGI("%s", wanted.startText);
    auto* const global = static_cast<sp<IInterface>*>(wanted.global);
    if (held::IsHeld(*global)) return 1;
    for (;;) {
        const sp<IInterface> service = WaitForDeclared(wanted);
        if (service == nullptr) {
            KV_LOGE("%s", wanted.nullText);
            return 0;
        }
        if (!held::Publish(global, service)) return 1;  // another connector was first
        KV_LOGI("%s", wanted.linkText);
        const sp<DeathNotifier>& notifier = held::MadeOnce(&g_deathNotifier);
        const sp<IBinder> binder = IInterface::asBinder(service);
        // A refused link goes unnoticed: the service is used all the same. But of a proxy whose
        // obituary is out no notice will ever come: it is given back, and looked up again.
        if (binder->linkToDeath(notifier, nullptr, 0) != android::DEAD_OBJECT) {
            if (!held::MarkLinked(global, service)) Unlink(binder);
            return 1;
        }
        if (held::TakeBack(global, service)) held::Retire(service);
        held::LetGoOfRetired();
        usleep(kDeadNamePause);
    }
}

}  // namespace

// intended: the texts differ from one service to the next in prefix and wording; log readers know
// them so.

int InitFactoryInterface() {
    static constexpr Service kService =
            Describe(&g_aidlFactory, "qxfactoryinterface_hal", "InitAidlFactoryInterface",
                     "aidlFactoryInterface is null", "g_aidlFactory linkToDeath");
    return Connect(kService);
}

int InitDisplayService() {
    static constexpr Service kService =
            Describe(&g_aidlDisplayService, "default", "InitAidlDisplayService",
                     "aidlDisplayService is null", "g_aidlDisplayService linkToDeath");
    return Connect(kService);
}

int InitTouchScreen() {
    static constexpr Service kService = Describe(&g_aidlTp, "default", "InitAidlTouchscreen",
                                                 "aidlTouchscreen is null", "g_aidlTp linkToDeath");
    return Connect(kService);
}

int InitSensors() {
    static constexpr Service kService =
            Describe(&g_aidlSensors, "default", "InitAidlSensors", "aidlSensors is null",
                     "g_aidlSensors linkToDeath");
    return Connect(kService);
}

int InitPower() {
    static constexpr Service kService = Describe(&g_aidlPower, "default", "InitAidlPower",
                                                 "aidlPower is null", "g_aidlPower linkToDeath");
    return Connect(kService);
}

int InitLight() {
    static constexpr Service kService = Describe(&g_aidlLight, "default", "InitAidlLight",
                                                 "aidlLight is null", "g_aidlLight linkToDeath");
    return Connect(kService);
}

int InitCameraFactory() {
    static constexpr Service kService =
            Describe(&g_aidlCameraFactory, "default", "InitAidlCameraFactory",
                     "aidlCameraFactory is null", "g_aidlCameraFactory linkToDeath");
    return Connect(kService);
}

int InitRadioEnhance() {
    static constexpr Service kService =
            Describe(&g_aidlRadioEnhance, "default", "InitAidlRadioEnhance",
                     "g_aidlRadioEnhance is null", "g_aidlRadioEnhance linkToDeath");
    return Connect(kService);
}

int InitDisplayFactory() {
    static constexpr Service kService =
            Describe(&g_aidlDisplayFactory, "default", "InitAidlDisplayFactory",
                     "aidlDisplayFactory is null", "aidlDisplayFactory linkToDeath");
    return Connect(kService);
}

int InitChipSrvInterface() {
    static constexpr Service kService =
            Describe(&g_aidlChipSrvInterface, "ztchipsrv_hertz", "InitAidlChipSrvInterface",
                     "aidlChipSrvInterface is null", "aidlChipSrc linkToDeath");
    return Connect(kService);
}

int InitSimService() {
    static constexpr Service kService = Describe(&g_aidlSim, "slot1", "InitSimInterface",
                                                 "g_aidlSim is null", "g_aidlSim linkToDeath");
    return Connect(kService);
}

int InitChipSrvSat() {
    static constexpr Service kService =
            Describe(&g_aidlChipSat, "ztchipsrv_sat", "InitChipSrvSat", "g_aidlChipSat is null",
                     "g_aidlChipSat linkToDeath");
    return Connect(kService);
}

bool IsFactoryInterfaceAidlVersion() {
    return held::IsHeld(g_aidlFactory);
}

bool IsDisplayServiceAidlVersion() {
    return held::IsHeld(g_aidlDisplayService);
}

bool IsTouchScreenAidlVersion() {
    return held::IsHeld(g_aidlTp);
}

bool IsSensorsAidlVersion() {
    return held::IsHeld(g_aidlSensors);
}

bool IsPowerAidlVersion() {
    return held::IsHeld(g_aidlPower);
}

bool IsLightAidlVersion() {
    return held::IsHeld(g_aidlLight);
}

bool IsCameraFactoryAidlVersion() {
    return held::IsHeld(g_aidlCameraFactory);
}

bool IsRadioEnhanceAidlVersion() {
    return held::IsHeld(g_aidlRadioEnhance);
}

bool IsDisplayFactoryAidlVersion() {
    return held::IsHeld(g_aidlDisplayFactory);
}

bool IsFingerprintServiceAidlVersion() {
    return held::IsHeld(g_aidlFingerprintSession);
}

bool IsChipSrvInterfaceAidlVersion() {
    return held::IsHeld(g_aidlChipSrvInterface);
}

bool IsSimAidlVersion() {
    return held::IsHeld(g_aidlSim);
}

bool IsChipSrvSatAidlVersion() {
    return held::IsHeld(g_aidlChipSat);
}

}  // namespace native_aidl
