#pragma once

#include <stddef.h>

#include "aidl/kalvorn_aidl_manager.h"

/** What the library makes of one service, a row each. */
struct ServiceRow {
    const char* name;
    bool (*isHeld)();  // over AIDL
    size_t hidlCookie;
    const char* aidlStart;
    const char* aidlNull;
    const char* aidlLink;
    const char* hidlStart;  // null, and so the next: no HIDL side
    const char* hidlLink;
    const char* hidlNull;
};

// In the order of connection.
inline constexpr ServiceRow kServices[] = {
        {"factory", native_aidl::IsFactoryInterfaceAidlVersion, 1, "I InitAidlFactoryInterface",
         "E aidlFactoryInterface is null", "I g_aidlFactory linkToDeath",
         "D InitHidlFactoryInterface", "D g_qxFactoryInterface linkToDeath",
         "E g_qxFactoryInterface is null"},
        {"display", native_aidl::IsDisplayServiceAidlVersion, 2, "I InitAidlDisplayService",
         "E aidlDisplayService is null", "I g_aidlDisplayService linkToDeath",
         "D InitHidlDisplayService", "D g_displayService linkToDeath",
         "E g_displayService is null"},
        {"touch", native_aidl::IsTouchScreenAidlVersion, 3, "I InitAidlTouchscreen",
         "E aidlTouchscreen is null", "I g_aidlTp linkToDeath", "D InitHidlTouchScreen",
         "D g_touchscreen linkToDeath", "E g_touchscreen is null"},
        {"sensors", native_aidl::IsSensorsAidlVersion, 4, "I InitAidlSensors",
         "E aidlSensors is null", "I g_aidlSensors linkToDeath", "D InitHidlSensors",
         "D g_sensors linkToDeath", "E g_sensors is null"},
        {"power", native_aidl::IsPowerAidlVersion, 5, "I InitAidlPower", "E aidlPower is null",
         "I g_aidlPower linkToDeath", "D InitHidlPower", "D g_Power linkToDeath",
         "E g_Power is null"},
        {"light", native_aidl::IsLightAidlVersion, 6, "I InitAidlLight", "E aidlLight is null",
         "I g_aidlLight linkToDeath", "D InitHidlLight", "D g_light linkToDeath",
         "E g_light is null"},
        {"camera", native_aidl::IsCameraFactoryAidlVersion, 7, "I InitAidlCameraFactory",
         "E aidlCameraFactory is null", "I g_aidlCameraFactory linkToDeath",
         "D InitHidlCameraFactory", "D g_cameraFactory linkToDeath", "E g_cameraFactory is null"},
        {"radio", native_aidl::IsRadioEnhanceAidlVersion, 9, "I InitAidlRadioEnhance",
         "E g_aidlRadioEnhance is null", "I g_aidlRadioEnhance linkToDeath",
         "D InitHidlRadioEnhance", "E g_radioenhance linkToDeath", "E g_radioenhance is null"},
        {"display_factory", native_aidl::IsDisplayFactoryAidlVersion, 10,
         "I InitAidlDisplayFactory", "E aidlDisplayFactory is null",
         "I aidlDisplayFactory linkToDeath", "D InitHidlDisplayFactory",
         "E g_displayFactory linkToDeath", "E g_displayFactory is null"},
        {"fingerprint", native_aidl::IsFingerprintServiceAidlVersion, 13,
         "I InitAidlFingerprintService",
         "E vendor.zantor.hardware.biometrics.fingerprint.IFingerprint/default is not Declared\n",
         "I g_aidlFingerprintSession linkToDeath", "D InitHidlFingerprintService",
         "D g_qxFingerprint linkToDeath", "E g_qxFingerprint is null"},
        {"chip", native_aidl::IsChipSrvInterfaceAidlVersion, 14, "I InitAidlChipSrvInterface",
         "E aidlChipSrvInterface is null", "I aidlChipSrc linkToDeath",
         "D InitHidlChipSrvInterface", "E g_ztChipSrvInterface linkToDeath",
         "E g_ztChipSrvInterface is null"},
        {"sim", native_aidl::IsSimAidlVersion, 0, "I InitSimInterface", "E g_aidlSim is null",
         "I g_aidlSim linkToDeath", nullptr, nullptr, nullptr},
        {"satellite", native_aidl::IsChipSrvSatAidlVersion, 0, "I InitChipSrvSat",
         "E g_aidlChipSat is null", "I g_aidlChipSat linkToDeath", nullptr, nullptr, nullptr},
};
