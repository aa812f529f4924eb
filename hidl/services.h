#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hidl/HidlSupport.h>
#include <hidl/Status.h>
#include <utils/RefBase.h>
#include <utils/StrongPointer.h>
#include <vendor/zantor/hardware/biometrics/fingerprint/2.2/IExtBiometricsFingerprint.h>
#include <vendor/zantor/hardware/camera/factory/1.0/ICameraFactory.h>
#include <vendor/zantor/hardware/light/2.0/ILight.h>
#include <vendor/zantor/hardware/power/1.0/IQXPower.h>
#include <vendor/zantor/hardware/qxdisplay/1.0/IDisplay.h>
#include <vendor/zantor/hardware/qxdisplay/1.1/IDisplay.h>
#include <vendor/zantor/hardware/qxdisplay/displayfactory/1.0/IDisplayFactory.h>
#include <vendor/zantor/hardware/qxfactoryinterface/1.0/IQxFactoryInterface.h>
#include <vendor/zantor/hardware/qxfactoryinterface/1.1/IQxFactoryInterface.h>
#include <vendor/zantor/hardware/radioenhance/1.0/IRadioenhance.h>
#include <vendor/zantor/hardware/sensors/1.2/ISensors.h>
#include <vendor/zantor/hardware/tp/1.0/ITouchscreen.h>
#include <vendor/zantor/hardware/ztchipsrv/1.0/IZtChipSrvInterface.h>

#include <functional>

#include "common/held.h"
#include "common/log.h"
#include "hidl/kalvorn_hidl_manager.h"
#include "hidl/watcher.h"

namespace native_hidl {

using android::sp;
using android::hardware::hidl_string;
using android::hardware::Return;
using android::hidl::base::V1_0::IBase;
using vendor::zantor::hardware::biometrics::fingerprint::V2_2::IExtBiometricsFingerprint;
using vendor::zantor::hardware::camera::factory::V1_0::ICameraFactory;
using vendor::zantor::hardware::light::V2_0::ILight;
using vendor::zantor::hardware::power::V1_0::IQXPower;
using vendor::zantor::hardware::qxdisplay::displayfactory::V1_0::IDisplayFactory;
using vendor::zantor::hardware::qxdisplay::V1_0::IDisplay;
using vendor::zantor::hardware::qxfactoryinterface::V1_0::IQxFactoryInterface;
using vendor::zantor::hardware::radioenhance::V1_0::IRadioenhance;
using vendor::zantor::hardware::sensors::V1_2::ISensors;
using vendor::zantor::hardware::tp::V1_0::ITouchscreen;
using vendor::zantor::hardware::ztchipsrv::V1_0::IZtChipSrvInterface;

using IDisplayV1_1 = vendor::zantor::hardware::qxdisplay::V1_1::IDisplay;
using IQxFactoryInterfaceV1_1 =
        vendor::zantor::hardware::qxfactoryinterface::V1_1::IQxFactoryInterface;

// Touched through common/held.h only: filled by the connectors, emptied by the teardown.
#define SERVICE(connector, Interface, global, ...) extern sp<Interface> global;
#include "hidl/services.inc"

extern sp<android::HidlUtil> g_hidlUtil;

/** What the teardown and the connectors took out, until it may go. */
extern kalvorn::held::Retired<IBase> g_retired;

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

/** The service in a newer revision, asked for on every call; null when it is absent or older. */
template <typename Newer, typename Interface>
sp<Newer> CastTo(const sp<Interface>& global) {
    return Newer::castFrom(kalvorn::held::Copy(global));
}

/**
 * Drops a call's transport status. The runtime ends the process when a failed status was never
 * seen, so it is looked at; what the call left in the operation's presets is the answer.
 */
template <typename T>
void DropStatus(const Return<T>& status) {
    (void)status.isOk();
}

/** Undoes the death link of a service. */
void Unlink(const sp<IBase>& service);

/** The result callback of the read-style methods: copies both values to where the presets stand. */
std::function<void(int32_t, const hidl_string&)> StoreIn(int32_t* code, hidl_string* text);

/** Characters as a HIDL string without a copy; they must outlive it. */
hidl_string Borrow(const char* chars);
void BorrowInto(const char* chars, hidl_string* text);

/**
 * The watcher's callbacks: a death releases every service, a new registration reconnects them,
 * waiting for each that is declared.
 */
void ProcessServiceDied(uint64_t cookie, const android::wp<IBase>& who);
void ReinitHal(const hidl_string& fqName, const hidl_string& name, bool preexisting);

}  // namespace native_hidl
