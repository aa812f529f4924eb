#include <binder/IInterface.h>
#include <binder/IServiceManager.h>
#include <unistd.h>
#include <utils/Errors.h>
#include <utils/String16.h>

#include <memory>

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

void Hold(const sp<IInterface>& global, const char* nullText, sp<IInterface>* service) {
    *service = held::Copy(global);
    if (*service == nullptr) KV_LOGE("%s", nullText);
}

sp<IQxFactoryInterface> HeldFactory() {
    return Held(g_aidlFactory, "aidlFactoryInterface is null");
}

namespace {

// A name may outlive its service for a moment, and then gives the dead one once more.
constexpr useconds_t kDeadNamePause = 1000;

/** From a binder, which may be null, to its interface. */
using Cast = sp<IInterface> (*)(const sp<IBinder>& binder);

/** As android::waitForVintfService does it for one interface. */
sp<IInterface> WaitForDeclared(const String16& descriptor, const char* instance, Cast cast) {
    const String16 name = descriptor + String16("/") + String16(instance);
    const sp<android::IServiceManager> manager = android::defaultServiceManager();
    if (!manager->isDeclared(name)) return nullptr;
    return cast(manager->waitForService(name));
}

int Connect(sp<IInterface>* global, const String16& descriptor, const char* instance, Cast cast,
            const char* startText, const char* nullText, const char* linkText) {
    KV_LOGI("%s", startText);
    if (held::IsHeld(*global)) return 1;
    for (;;) {
        const sp<IInterface> service = WaitForDeclared(descriptor, instance, cast);
        if (service == nullptr) {
            KV_LOGE("%s", nullText);
            return 0;
        }
        if (!held::Publish(global, service)) return 1;  // another connector was first
        KV_LOGI("%s", linkText);
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

template <typename Interface>
int Connect(sp<Interface>* global, const char* instance, const char* startText,
            const char* nullText, const char* linkText) {
    const Cast cast = [](const sp<IBinder>& binder) -> sp<IInterface> {
        return Interface::asInterface(binder);
    };
    return Connect(held::As<IInterface>(global), Interface::descriptor, instance, cast, startText,
                   nullText, linkText);
}

}  // namespace

// intended: the texts differ from one service to the next in prefix and wording; log readers know
// them so.

int InitFactoryInterface() {
    return Connect(&g_aidlFactory, "qxfactoryinterface_hal", "InitAidlFactoryInterface",
                   "aidlFactoryInterface is null", "g_aidlFactory linkToDeath");
}

int InitDisplayService() {
    return Connect(&g_aidlDisplayService, "default", "InitAidlDisplayService",
                   "aidlDisplayService is null", "g_aidlDisplayService linkToDeath");
}

int InitTouchScreen() {
    return Connect(&g_aidlTp, "default", "InitAidlTouchscreen", "aidlTouchscreen is null",
                   "g_aidlTp linkToDeath");
}

int InitSensors() {
    return Connect(&g_aidlSensors, "default", "InitAidlSensors", "aidlSensors is null",
                   "g_aidlSensors linkToDeath");
}

int InitPower() {
    return Connect(&g_aidlPower, "default", "InitAidlPower", "aidlPower is null",
                   "g_aidlPower linkToDeath");
}

int InitLight() {
    return Connect(&g_aidlLight, "default", "InitAidlLight", "aidlLight is null",
                   "g_aidlLight linkToDeath");
}

int InitCameraFactory() {
    return Connect(&g_aidlCameraFactory, "default", "InitAidlCameraFactory",
                   "aidlCameraFactory is null", "g_aidlCameraFactory linkToDeath");
}

int InitRadioEnhance() {
    return Connect(&g_aidlRadioEnhance, "default", "InitAidlRadioEnhance",
                   "g_aidlRadioEnhance is null", "g_aidlRadioEnhance linkToDeath");
}

int InitDisplayFactory() {
    return Connect(&g_aidlDisplayFactory, "default", "InitAidlDisplayFactory",
                   "aidlDisplayFactory is null", "aidlDisplayFactory linkToDeath");
}

int InitChipSrvInterface() {
    return Connect(&g_aidlChipSrvInterface, "ztchipsrv_hertz", "InitAidlChipSrvInterface",
                   "aidlChipSrvInterface is null", "aidlChipSrc linkToDeath");
}

int InitSimService() {
    return Connect(&g_aidlSim, "slot1", "InitSimInterface", "g_aidlSim is null",
                   "g_aidlSim linkToDeath");
}

int InitChipSrvSat() {
    return Connect(&g_aidlChipSat, "ztchipsrv_sat", "InitChipSrvSat", "g_aidlChipSat is null",
                   "g_aidlChipSat linkToDeath");
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
