#include <string>

#include "hidl/services.h"

namespace native_hidl {

using android::hidl::manager::V1_0::IServiceNotification;

// Released at process exit in the reverse of this order.
sp<IQxFactoryInterface> g_qxFactoryInterface;
sp<IDisplay> g_displayService;
sp<IDisplayFactory> g_displayFactory;
sp<ITouchscreen> g_touchscreen;
sp<ISensors> g_sensors;
sp<IQXPower> g_Power;
sp<ICameraFactory> g_cameraFactory;
sp<ILight> g_light;
sp<IRadioenhance> g_radioenhance;
sp<IExtBiometricsFingerprint> g_qxFingerprint;
sp<IZtChipSrvInterface> g_ztChipSrvInterface;

sp<android::HidlUtil> g_hidlUtil;

void Hold(const sp<IBase>& global, const char* nullText, sp<IBase>* service) {
    *service = held::Copy(global);
    if (*service == nullptr) KV_LOGE("%s", nullText);
}

sp<IQxFactoryInterface> HeldFactory() {
    return Held(g_qxFactoryInterface, "g_qxFactoryInterface is null");
}

namespace {

/** The two calls that each interface has for itself. */
struct Calls {
    sp<IBase> (*getService)(const std::string& instance);
    bool (*registerForNotifications)(const std::string& instance,
                                     const sp<IServiceNotification>& listener);
};

void Connect(sp<IBase>* global, const Calls& calls, const char* instance, uint64_t cookie,
             const char* startText, int linkPriority, const char* linkText, const char* nullText) {
    KV_LOGD("%s", startText);
    if (held::IsHeld(*global)) return;
    const sp<IBase> service = calls.getService(instance);
    if (service == nullptr) {
        KV_LOGE("%s", nullText);
        return;
    }
    if (!held::Publish(global, service)) return;  // another connector was first
    KV_LOG(linkPriority, "%s", linkText);
    const sp<android::HidlUtil>& watcher =
            held::MadeOnce(&g_hidlUtil, ProcessServiceDied, ReinitHal);
    DropStatus(service->linkToDeath(watcher, cookie));
    if (!held::MarkLinked(global, service)) DropStatus(service->unlinkToDeath(watcher));
    // intended: registered anew on every connection, so a service that comes back often is
    // announced as often
    calls.registerForNotifications("", watcher);
}

template <typename Interface>
void Connect(sp<Interface>* global, const char* instance, uint64_t cookie, const char* startText,
             int linkPriority, const char* linkText, const char* nullText) {
    static constexpr Calls kCalls = {
            [](const std::string& name) -> sp<IBase> {
                return Interface::getService(name, /* getStub */ false);
            },
            Interface::registerForNotifications,
    };
    Connect(held::As<IBase>(global), kCalls, instance, cookie, startText, linkPriority, linkText,
            nullText);
}

}  // namespace

// intended: 8, 11 and 12 are never given as cookies, and three of the links log at error priority.

void InitFactoryInterface() {
    Connect(&g_qxFactoryInterface, "qxfactoryinterface_hal", 1, "InitHidlFactoryInterface",
            ANDROID_LOG_DEBUG, "g_qxFactoryInterface linkToDeath", "g_qxFactoryInterface is null");
}

void InitDisplayService() {
    Connect(&g_displayService, "default", 2, "InitHidlDisplayService", ANDROID_LOG_DEBUG,
            "g_displayService linkToDeath", "g_displayService is null");
}

void InitTouchScreen() {
    Connect(&g_touchscreen, "default", 3, "InitHidlTouchScreen", ANDROID_LOG_DEBUG,
            "g_touchscreen linkToDeath", "g_touchscreen is null");
}

void InitSensors() {
    Connect(&g_sensors, "default", 4, "InitHidlSensors", ANDROID_LOG_DEBUG, "g_sensors linkToDeath",
            "g_sensors is null");
}

void InitPower() {
    Connect(&g_Power, "default", 5, "InitHidlPower", ANDROID_LOG_DEBUG, "g_Power linkToDeath",
            "g_Power is null");
}

void InitLight() {
    Connect(&g_light, "default", 6, "InitHidlLight", ANDROID_LOG_DEBUG, "g_light linkToDeath",
            "g_light is null");
}

void InitCameraFactory() {
    Connect(&g_cameraFactory, "default", 7, "InitHidlCameraFactory", ANDROID_LOG_DEBUG,
            "g_cameraFactory linkToDeath", "g_cameraFactory is null");
}

void InitRadioEnhance() {
    Connect(&g_radioenhance, "default", 9, "InitHidlRadioEnhance", ANDROID_LOG_ERROR,
            "g_radioenhance linkToDeath", "g_radioenhance is null");
}

void InitDisplayFactory() {
    Connect(&g_displayFactory, "default", 10, "InitHidlDisplayFactory", ANDROID_LOG_ERROR,
            "g_displayFactory linkToDeath", "g_displayFactory is null");
}

void InitFingerprintService() {
    Connect(&g_qxFingerprint, "default", 13, "InitHidlFingerprintService", ANDROID_LOG_DEBUG,
            "g_qxFingerprint linkToDeath", "g_qxFingerprint is null");
}

void InitChipSrvInterface() {
    Connect(&g_ztChipSrvInterface, "ztchipsrv_hal", 14, "InitHidlChipSrvInterface",
            ANDROID_LOG_ERROR, "g_ztChipSrvInterface linkToDeath", "g_ztChipSrvInterface is null");
}

}  // namespace native_hidl
