#include <binder/IInterface.h>

#include "aidl/services.h"

namespace native_aidl {

namespace {

template <typename Interface>
void Release(sp<Interface>* global) {
    const sp<Interface> service = *global;
    if (service == nullptr) return;
    // Fails harmlessly for the service that has just died.
    android::IInterface::asBinder(service)->unlinkToDeath(g_deathNotifier, nullptr, 0, nullptr);
    global->clear();
}

// intended: the session is not closed and its callback not touched, and without a session the
// interface is kept too, with the effect that a later connector does not ask for one again.
void ReleaseFingerprint() {
    const std::shared_ptr<ISession> session = g_aidlFingerprintSession;
    if (session == nullptr) return;
    AIBinder_unlinkToDeath(session->asBinder().get(), g_deathRecipient.get(), session.get());
    g_aidlFingerprint.reset();
    g_aidlFingerprintSession.reset();
}

// Whichever service died, all are released and connected afresh. The restart waits here, on the
// binder thread of the notification, until every declared service is back.
void OnServiceDied() {
    KV_LOGW("serviceDied, remote hal service died");
    ExitKvManager();
    RestartAidlService();
}

}  // namespace

DeathNotifier::~DeathNotifier() = default;

void DeathNotifier::binderDied(const android::wp<android::IBinder>& /* who */) {
    OnServiceDied();
}

void ServiceDied(void* /* cookie */) {
    OnServiceDied();
}

void RestartAidlService() {
    KV_LOGI("RestartAidlService");
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
    InitSimService();
    InitChipSrvSat();
}

void ExitKvManager() {
    KV_LOGI("ExitKvManager by aidl");
    Release(&g_aidlFactory);
    Release(&g_aidlDisplayService);
    Release(&g_aidlTp);
    Release(&g_aidlSensors);
    Release(&g_aidlPower);
    Release(&g_aidlLight);
    Release(&g_aidlCameraFactory);
    Release(&g_aidlRadioEnhance);
    Release(&g_aidlDisplayFactory);
    ReleaseFingerprint();
    Release(&g_aidlChipSrvInterface);
    Release(&g_aidlSim);
    Release(&g_aidlChipSat);
}

}  // namespace native_aidl
