// What a device's HIDL interface libraries define besides their headers.
#include <hidl/HostInterface.h>
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

#define ZANTOR ::vendor::zantor::hardware
#define PACKAGE "vendor.zantor.hardware."

KALVORN_HIDL_INTERFACE(ZANTOR::biometrics::fingerprint::V2_2::IExtBiometricsFingerprint,
                       PACKAGE "biometrics.fingerprint@2.2::IExtBiometricsFingerprint")
KALVORN_HIDL_INTERFACE(ZANTOR::camera::factory::V1_0::ICameraFactory,
                       PACKAGE "camera.factory@1.0::ICameraFactory")
KALVORN_HIDL_INTERFACE(ZANTOR::light::V2_0::ILight, PACKAGE "light@2.0::ILight")
KALVORN_HIDL_INTERFACE(ZANTOR::power::V1_0::IQXPower, PACKAGE "power@1.0::IQXPower")
KALVORN_HIDL_INTERFACE(ZANTOR::qxdisplay::V1_0::IDisplay, PACKAGE "qxdisplay@1.0::IDisplay")
KALVORN_HIDL_INTERFACE_EXTENDS(ZANTOR::qxdisplay::V1_1::IDisplay, PACKAGE "qxdisplay@1.1::IDisplay",
                               ZANTOR::qxdisplay::V1_0::IDisplay)
KALVORN_HIDL_INTERFACE(ZANTOR::qxdisplay::displayfactory::V1_0::IDisplayFactory,
                       PACKAGE "qxdisplay.displayfactory@1.0::IDisplayFactory")
KALVORN_HIDL_INTERFACE(ZANTOR::qxfactoryinterface::V1_0::IQxFactoryInterface,
                       PACKAGE "qxfactoryinterface@1.0::IQxFactoryInterface")
KALVORN_HIDL_INTERFACE_EXTENDS(ZANTOR::qxfactoryinterface::V1_1::IQxFactoryInterface,
                               PACKAGE "qxfactoryinterface@1.1::IQxFactoryInterface",
                               ZANTOR::qxfactoryinterface::V1_0::IQxFactoryInterface)
KALVORN_HIDL_INTERFACE(ZANTOR::radioenhance::V1_0::IRadioenhance,
                       PACKAGE "radioenhance@1.0::IRadioenhance")
KALVORN_HIDL_INTERFACE(ZANTOR::sensors::V1_2::ISensors, PACKAGE "sensors@1.2::ISensors")
KALVORN_HIDL_INTERFACE(ZANTOR::tp::V1_0::ITouchscreen, PACKAGE "tp@1.0::ITouchscreen")
KALVORN_HIDL_INTERFACE(ZANTOR::ztchipsrv::V1_0::IZtChipSrvInterface,
                       PACKAGE "ztchipsrv@1.0::IZtChipSrvInterface")
