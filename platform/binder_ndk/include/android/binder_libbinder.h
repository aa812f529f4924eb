/** The bridge from the NDK binder to the platform's binder. */
#pragma once

#include <android/binder_ibinder.h>
#include <binder/IBinder.h>

/** The platform object behind `binder`: the service itself or its proxy. Null gives null. */
android::sp<android::IBinder> AIBinder_toPlatformBinder(AIBinder* binder);
