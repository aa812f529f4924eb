#pragma once

#include <utils/StrongPointer.h>

#include "common/log.h"

/**
 * The service as an operation uses it: read once, without a lock (intended), and held for the
 * length of the call, so that a death meanwhile cannot free it. Null, after the line, when it is
 * absent.
 */
template <typename Interface>
android::sp<Interface> Held(const android::sp<Interface>& global, const char* nullText) {
    android::sp<Interface> service = global;
    if (service == nullptr) KV_LOGE("%s", nullText);
    return service;
}
