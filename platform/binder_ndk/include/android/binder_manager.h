/** The service manager, for services of the NDK binder. */
#pragma once

#include <android/binder_ibinder.h>
#include <android/binder_status.h>

extern "C" {

/** EX_NONE once the service is registered. The registration holds a reference of its own. */
binder_exception_t AServiceManager_addService(AIBinder* binder, const char* instance)
        __attribute__((warn_unused_result));

bool AServiceManager_isDeclared(const char* instance);

/** Blocks until the service is registered. The caller owns the reference. */
AIBinder* AServiceManager_waitForService(const char* instance) __attribute__((warn_unused_result));

}  // extern "C"
