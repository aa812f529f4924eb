#pragma once

#include <jni.h>

#include "common/native_method.h"

/**
 * The HIDL backend: eleven services, each held by one strong pointer, and the operations on them.
 *
 * The pointers are read by Java threads while death and registration callbacks empty and fill them
 * on HIDL threads, without a lock (intended; common/held.h): a call keeps the service that it read,
 * and fails with its failure value when there is none. Reading a returned value of a failed call
 * ends the process, as the HIDL runtime wants it; a result callback that never comes leaves the
 * operation's presets.
 */
namespace native_hidl {

/**
 * Connectors. A declared service is waited for; an undeclared one is given up at once. A service
 * already held, or connected by another thread meanwhile, is kept and not linked to death again.
 */
#define SERVICE(connector, ...) void connector();
#include "hidl/services.inc"

/** Unlinks and releases every service; the watcher stays, and can bring them back. */
void ExitKvManager();

// The operations on them, with the contract that stands there.
#define TWO_BACKENDS(javaName, name, service, priority, signature) \
    kalvorn::NativeMethod<signature> name;
#include "jni/methods.inc"

}  // namespace native_hidl
