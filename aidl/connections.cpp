#include <binder/IInterface.h>
#include <binder/IServiceManager.h>
#include <utils/String16.h>

#include "aidl/services.h"

namespace native_aidl {

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

template <typename Interface>
int Connect(sp<Interface>* global, const char* instance, const char* startText,
            const char* nullText, const char* linkText) {
    KV_LOGI("%s", startText);
    if (*global != nullptr) return 1;
    const sp<Interface> service =
            android::waitForVintfService<Interface>(android::String16(instance));
    *global = service;
    if (service == nullptr) {
        KV_LOGE("%s", nullText);
        return 0;
    }
    KV_LOGI("%s", linkText);
    if (g_deathNotifier == nullptr) g_deathNotifier = new DeathNotifier();
    // A refused link goes unnoticed: the service is used all the same.
    android::IInterface::asBinder(service)->linkToDeath(g_deathNotifier, nullptr, 0);
    return 1;
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
    return g_aidlFactory != nullptr;
}

bool IsDisplayServiceAidlVersion() {
    return g_aidlDisplayService != nullptr;
}

bool IsTouchScreenAidlVersion() {
    return g_aidlTp != nullptr;
}

bool IsSensorsAidlVersion() {
    return g_aidlSensors != nullptr;
}

bool IsPowerAidlVersion() {
    return g_aidlPower != nullptr;
}

bool IsLightAidlVersion() {
    return g_aidlLight != nullptr;
}

bool IsCameraFactoryAidlVersion() {
    return g_aidlCameraFactory != nullptr;
}

bool IsRadioEnhanceAidlVersion() {
    return g_aidlRadioEnhance != nullptr;
}

bool IsDisplayFactoryAidlVersion() {
    return g_aidlDisplayFactory != nullptr;
}

bool IsFingerprintServiceAidlVersion() {
    return g_aidlFingerprintSession != nullptr;
}

bool IsChipSrvInterfaceAidlVersion() {
    return g_aidlChipSrvInterface != nullptr;
}

bool IsSimAidlVersion() {
    return g_aidlSim != nullptr;
}

bool IsChipSrvSatAidlVersion() {
    return g_aidlChipSat != nullptr;
}

}  // namespace native_aidl
