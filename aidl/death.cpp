#include <binder/IInterface.h>

#include <memory>

#include "aidl/services.h"

namespace native_aidl {

using android::IInterface;

namespace {

void Release(sp<IInterface>* global) {
    const held::Taken<IInterface> taken = held::Take(global);
    if (taken.service == nullptr) return;
    if (taken.linked) Unlink(IInterface::asBinder(taken.service));
    held::Retire(taken.service);
}

template <typename Interface>
void Release(sp<Interface>* global) {
    Release(held::As<IInterface>(global));
}

// intended: the session is not closed and its callback not touched, and without a session the
// interface is kept too, with the effect that a later connector does not ask for one again.
void ReleaseFingerprint() {
    const std::shared_ptr<ISession> session = held::Take(&g_aidlFingerprintSession);
    if (session == nullptr) return;
    UnlinkSession(session);
    held::Take(&g_aidlFingerprint);
}

// Whichever service died, all are released and connected afresh. The restart waits here, on the
// binder thread of the notification, until every declared service is back. Of services that die
// together each notice does all of this, on a thread of its own and beside the others.
void OnServiceDied() {
    KV_LOGW("serviceDied, remote hal service died");
    ExitKvManager();
    RestartAidlService();
}

}  // namespace

void Unlink(const sp<android::IBinder>& binder) {
    // Fails harmlessly for the service that has just died.
    binder->unlinkToDeath(g_deathNotifier, nullptr, 0, nullptr);
}

void UnlinkSession(const std::shared_ptr<ISession>& session) {
    AIBinder_unlinkToDeath(session->asBinder().get(), g_deathRecipient.get(), session.get());
}

DeathNotifier::~DeathNotifier() = default;

void DeathNotifier::binderDied(const android::wp<android::IBinder>& /* who */) {
    OnServiceDied();
}

void ServiceDied(void* /* cookie */) {
    OnServiceDied();
}

int RestartAidlService() {
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
    return InitChipSrvSat();
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
    held::LetGoOfRetired();
}

}  // namespace native_aidl
