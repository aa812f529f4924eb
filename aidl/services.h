#pragma once

#include <aidl/android/hardware/biometrics/fingerprint/ISessionCallback.h>
#include <aidl/vendor/zantor/hardware/biometrics/fingerprint/IFingerprint.h>
#include <aidl/vendor/zantor/hardware/biometrics/fingerprint/ISession.h>
#include <android/binder_auto_utils.h>
#include <binder/IBinder.h>
#include <binder/IInterface.h>
#include <utils/StrongPointer.h>
#include <vendor/zantor/hardware/camera/factory/ICameraFactory.h>
#include <vendor/zantor/hardware/light/ILight.h>
#include <vendor/zantor/hardware/power/IQXPower.h>
#include <vendor/zantor/hardware/qxdisplay/IDisplay.h>
#include <vendor/zantor/hardware/qxdisplay/displayfactory/IDisplayFactory.h>
#include <vendor/zantor/hardware/qxfactoryinterface/IQxFactoryInterface.h>
#include <vendor/zantor/hardware/radioenhance/IRadioenhance.h>
#include <vendor/zantor/hardware/sensors/ISensors.h>
#include <vendor/zantor/hardware/tp/ITouchscreen.h>
#include <vendor/zantor/hardware/ztchipsrvhertz/IZtChipSrvHertz.h>
#include <vendor/zantor/hardware/ztchipsrvsat/IZtChipSrvSat.h>
#include <vendor/zantor/hardware/ztsimradio/IZtsimradio.h>

#include <memory>

#include "aidl/kalvorn_aidl_manager.h"
#include "common/held.h"
#include "common/log.h"

namespace native_aidl {

using android::sp;
using vendor::zantor::hardware::camera::factory::ICameraFactory;
using vendor::zantor::hardware::light::ILight;
using vendor::zantor::hardware::power::IQXPower;
using vendor::zantor::hardware::qxdisplay::IDisplay;
using vendor::zantor::hardware::qxdisplay::displayfactory::IDisplayFactory;
using vendor::zantor::hardware::qxfactoryinterface::IQxFactoryInterface;
using vendor::zantor::hardware::radioenhance::IRadioenhance;
using vendor::zantor::hardware::sensors::ISensors;
using vendor::zantor::hardware::tp::ITouchscreen;
using vendor::zantor::hardware::ztchipsrvhertz::IZtChipSrvHertz;
using vendor::zantor::hardware::ztchipsrvsat::IZtChipSrvSat;
using vendor::zantor::hardware::ztsimradio::IZtsimradio;

using aidl::android::hardware::biometrics::fingerprint::ISessionCallback;
using aidl::vendor::zantor::hardware::biometrics::fingerprint::IFingerprint;
using aidl::vendor::zantor::hardware::biometrics::fingerprint::ISession;

/** Watches the twelve services of libbinder; the dead binder is not looked at. */
class DeathNotifier : public android::IBinder::DeathRecipient {
  public:
    ~DeathNotifier() override;
    void binderDied(const android::wp<android::IBinder>& who) override;
};

// Touched through common/held.h only: filled by the connectors, emptied by the teardown.
#define SERVICE(connector, query, Interface, global, ...) extern sp<Interface> global;
#include "aidl/services.inc"

extern std::shared_ptr<IFingerprint> g_aidlFingerprint;
extern std::shared_ptr<ISession> g_aidlFingerprintSession;
extern std::shared_ptr<ISessionCallback> g_aidlFingerprintSessionCallback;

extern sp<DeathNotifier> g_deathNotifier;

/** What the teardown and the connectors took out, until it may go. */
extern kalvorn::held::Retired<android::IInterface> g_retired;

/**
 * The service as an operation uses it: read once and held for the length of the call, so that a
 * death meanwhile cannot free it. Null, after the line, when it is absent. Not inlined, as Copy.
 */
template <typename Interface>
[[gnu::noinline]] sp<Interface> Held(const sp<Interface>& global, const char* nullText) {
    sp<Interface> service = kalvorn::held::Copy(global);
    if (service == nullptr) KV_LOGE("%s", nullText);
    return service;
}

/** The same for the factory service, which serves more than half of the operations. */
sp<IQxFactoryInterface> HeldFactory();

/** Drops the retired services whose proxies are of no use, which no connector links any more. */
void LetGoOfUseless();

/** Undoes the death link of a service. */
void Unlink(const sp<android::IBinder>& binder);

/** The same link of the fingerprint session, made (false when it is refused) and undone. */
bool LinkSession(const std::shared_ptr<ISession>& session);
void UnlinkSession(const std::shared_ptr<ISession>& session);

/** Callback of the fingerprint session's death recipient; the cookie is not looked at. */
void ServiceDied(void* cookie);

/** Connects all thirteen services again, without HIDL; returns what the last connector gave. */
int RestartAidlService();

}  // namespace native_aidl

/** Watches the fingerprint session; the one global that the library exports by name. */
extern ndk::ScopedAIBinder_DeathRecipient g_deathRecipient;
