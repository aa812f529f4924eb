#include <new>
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

namespace {

/** What tells one connector from another. */
struct Service {
    void* global;  // an sp of the interface
    void (*getService)(void* service, const std::string& instance);
    bool (*registerForNotifications)(const std::string& instance,
                                     const sp<IServiceNotification>& listener);
    const char* instance;
    uint64_t cookie;
    const char* startText;
    int linkPriority;
    const char* linkText;
    const char* nullText;
};

/** The service, when there is one, in the place of a null sp, of which nothing is lost. */
template <typename Interface>
void GetService(void* service, const std::string& instance) {
    new (service) sp<Interface>(Interface::getService(instance, /* getStub */ false));
}

template <typename Interface>
constexpr Service Describe(sp<Interface>* global, const char* instance, uint64_t cookie,
                           const char* startText, int linkPriority, const char* linkText,
                           const char* nullText) {
    static_assert(held::kAtOneAddress<IBase, Interface>,
                  "Connect takes the global for one of the base class");
    return {global,
            GetService<Interface>,
            Interface::registerForNotifications,
            instance,
            cookie,
            startText,
            linkPriority,
            linkText,
            nullText};
}

void Connect(const Service& wanted) {
    KV_LOGD("%s", wanted.startText);
    auto* const global = static_cast<sp<IBase>*>(wanted.global);
    if (held::IsHeld(*global)) return;
    sp<IBase> service;
    wanted.getService(&service, wanted.instance);
    if (service == nullptr) {
        KV_LOGE("%s", wanted.nullText);
        return;
    }
    if (!held::Publish(global, service)) return;  // another connector was first
    KV_LOG(wanted.linkPriority, "%s", wanted.linkText);
    const sp<android::HidlUtil>& watcher =
            held::MadeOnce(&g_hidlUtil, ProcessServiceDied, ReinitHal);
    DropStatus(service->linkToDeath(watcher, wanted.cookie));
    if (!held::MarkLinked(global, service)) DropStatus(service->unlinkToDeath(watcher));
    // intended: registered anew on every connection, so a service that comes back often is
    // announced as often
    wanted.registerForNotifications("", watcher);
}

}  // namespace

// intended: 8, 11 and 12 are never given as cookies, and three of the links log at error priority.

void InitFactoryInterface() {
    static constexpr Service kService = Describe(
            &g_qxFactoryInterface, "qxfactoryinterface_hal", 1, "InitHidlFactoryInterface",
            ANDROID_LOG_DEBUG, "g_qxFactoryInterface linkToDeath", "g_qxFactoryInterface is null");
    Connect(kService);
}

void InitDisplayService() {
    static constexpr Service kService =
            Describe(&g_displayService, "default", 2, "InitHidlDisplayService", ANDROID_LOG_DEBUG,
                     "g_displayService linkToDeath", "g_displayService is null");
    Connect(kService);
}

void InitTouchScreen() {
    static constexpr Service kService =
            Describe(&g_touchscreen, "default", 3, "InitHidlTouchScreen", ANDROID_LOG_DEBUG,
                     "g_touchscreen linkToDeath", "g_touchscreen is null");
    Connect(kService);
}

void InitSensors() {
    static constexpr Service kService =
            Describe(&g_sensors, "default", 4, "InitHidlSensors", ANDROID_LOG_DEBUG,
                     "g_sensors linkToDeath", "g_sensors is null");
    Connect(kService);
}

void InitPower() {
    static constexpr Service kService =
            Describe(&g_Power, "default", 5, "InitHidlPower", ANDROID_LOG_DEBUG,
                     "g_Power linkToDeath", "g_Power is null");
    Connect(kService);
}

void InitLight() {
    static constexpr Service kService =
            Describe(&g_light, "default", 6, "InitHidlLight", ANDROID_LOG_DEBUG,
                     "g_light linkToDeath", "g_light is null");
    Connect(kService);
}

void InitCameraFactory() {
    static constexpr Service kService =
            Describe(&g_cameraFactory, "default", 7, "InitHidlCameraFactory", ANDROID_LOG_DEBUG,
                     "g_cameraFactory linkToDeath", "g_cameraFactory is null");
    Connect(kService);
}

void InitRadioEnhance() {
    static constexpr Service kService =
            Describe(&g_radioenhance, "default", 9, "InitHidlRadioEnhance", ANDROID_LOG_ERROR,
                     "g_radioenhance linkToDeath", "g_radioenhance is null");
    Connect(kService);
}

void InitDisplayFactory() {
    static constexpr Service kService =
            Describe(&g_displayFactory, "default", 10, "InitHidlDisplayFactory", ANDROID_LOG_ERROR,
                     "g_displayFactory linkToDeath", "g_displayFactory is null");
    Connect(kService);
}

void InitFingerprintService() {
    static constexpr Service kService =
            Describe(&g_qxFingerprint, "default", 13, "InitHidlFingerprintService",
                     ANDROID_LOG_DEBUG, "g_qxFingerprint linkToDeath", "g_qxFingerprint is null");
    Connect(kService);
}

void InitChipSrvInterface() {
    static constexpr Service kService = Describe(
            &g_ztChipSrvInterface, "ztchipsrv_hal", 14, "InitHidlChipSrvInterface",
            ANDROID_LOG_ERROR, "g_ztChipSrvInterface linkToDeath", "g_ztChipSrvInterface is null");
    Connect(kService);
}

}  // namespace native_hidl
