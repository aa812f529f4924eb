#pragma once

#include <jni.h>

#include "common/native_method.h"

/**
 * The AIDL backend: thirteen services, each held by one strong pointer, and the operations on them.
 *
 * The pointers are read by Java threads while death notices, several at once, empty and fill them
 * on binder threads, without a lock (intended; common/held.h): a call keeps the service that it
 * read, gets its presets when that dies, and its failure value when there is none.
 */
namespace native_aidl {

/**
 * Connectors. Each returns 1 when its service is held after the call, 0 when not. A declared
 * service is waited for; an undeclared one is given up at once. A service already held, or
 * connected by another thread meanwhile, is kept and not linked to death again. intended: a
 * fingerprint service that refused a session gives 0 first and 1 ever after, while its query stays
 * false.
 */
#define SERVICE(connector, ...) int connector();
#define FINGERPRINT(connector, query) int connector();
#include "aidl/services.inc"

/** Queries: true while the service is held (the fingerprint: while its session is open). */
#define SERVICE(connector, query, ...) bool query();
#define FINGERPRINT(connector, query) bool query();
#include "aidl/services.inc"

/**
 * Unlinks and releases every service; of several calls at once each service meets one. A
 * fingerprint interface without a session is kept (intended), and so are the death notifiers.
 */
void ExitKvManager();

// The operations on them, with the contract that stands there.
#define TWO_BACKENDS(javaName, name, service, priority, signature) \
    kalvorn::NativeMethod<signature> name;
#define AIDL_ONLY(javaName, name, signature) kalvorn::NativeMethod<signature> name;
#include "jni/methods.inc"

}  // namespace native_aidl
