#include "hidl/services.h"

namespace native_hidl {

namespace {

void Release(sp<IBase>* global) {
    const held::Taken<IBase> taken = held::Take(global);
    if (taken.service == nullptr) return;
    if (taken.linked) DropStatus(taken.service->unlinkToDeath(g_hidlUtil));
    held::Retire(taken.service);
}

template <typename Interface>
void Release(sp<Interface>* global) {
    Release(held::As<IBase>(global));
}

}  // namespace

// Whichever service died, all are released; the next registration connects them again.
void ProcessServiceDied(uint64_t cookie, const android::wp<IBase>& /* who */) {
    KV_LOGW("enter into ProcessServiceDied, cookie is:%llu",
            static_cast<unsigned long long>(cookie));
    ExitKvManager();
}

void ReinitHal(const hidl_string& fqName, const hidl_string& name, bool preexisting) {
    KV_LOGW("enter into ReinitHal, fqName:%s, name:%s, preexisting:%d", fqName.c_str(),
            name.c_str(), preexisting);
    if (preexisting) return;
    InitFactoryInterface();
    InitDisplayService();
    InitTouchScreen();
    InitSensors();
    InitPower();
    InitLight();
    InitCameraFactory();
    InitRadioEnhance();
    InitDisplayFactory();
    InitFingerprintService();
    InitChipSrvInterface();
}

void ExitKvManager() {
    KV_LOGD("ExitKvManager by hidl");
    Release(&g_qxFactoryInterface);
    Release(&g_displayService);
    Release(&g_touchscreen);
    Release(&g_sensors);
    Release(&g_Power);
    Release(&g_light);
    Release(&g_cameraFactory);
    Release(&g_radioenhance);
    Release(&g_displayFactory);
    Release(&g_qxFingerprint);
    Release(&g_ztChipSrvInterface);
    held::LetGoOfRetired();
}

}  // namespace native_hidl
