#pragma once

#include <jni.h>

/**
 * The HIDL backend: eleven services, each held by one strong pointer, and the operations on them.
 *
 * The pointers are read by Java threads and rewritten by death and registration callbacks on HIDL
 * threads without a lock (intended): an operation that meets a released service fails with its
 * failure value. Reading a returned value of a failed call ends the process, as the HIDL runtime
 * wants it; a result callback that never comes leaves the operation's presets.
 */
namespace native_hidl {

/**
 * Connectors. A declared service is waited for; an undeclared one is given up at once. A service
 * already held is kept and not linked to death again.
 */
void InitFactoryInterface();
void InitDisplayService();
void InitTouchScreen();
void InitSensors();
void InitPower();
void InitLight();
void InitCameraFactory();
void InitRadioEnhance();
void InitDisplayFactory();
void InitFingerprintService();
void InitChipSrvInterface();

/** Unlinks and releases every service; the watcher stays, and can bring them back. */
void ExitKvManager();

#include "common/backend_operations.inc"

}  // namespace native_hidl
