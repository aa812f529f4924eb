#include <jni.h>

#include "aidl/kalvorn_aidl_manager.h"
#include "common/java_values.h"
#include "common/log.h"
#include "hidl/kalvorn_hidl_manager.h"
#include "jni/dispatch.h"

using namespace kalvorn;

namespace {

// AIDL first, HIDL only for a service that AIDL does not give: each service is decided separately.
// The lines of the two connectors tell which backend it got.
void ConnectServices() {
    KV_LOGE("InitKvNativeManager");
#define SERVICE(connector, ...) \
    if (native_aidl::connector() == 0) native_hidl::connector();
#define FINGERPRINT(connector, query) SERVICE(connector)
#define ONLY_OVER_AIDL(connector, ...) native_aidl::connector();
#include "aidl/services.inc"
}

// A Java exception of FindClass or RegisterNatives is left pending for the virtual machine.
bool RegisterNativeMethods(JNIEnv* env) {
    if (env == nullptr) {
        KV_LOGE("RegisterNativeMethods fail, env is null");
        return false;
    }
    jclass clazz = env->FindClass(kKvNativeInterface);
    if (clazz == nullptr) {
        KV_LOGE("Native registration unable to find class '%s'", kKvNativeInterface);
        return false;
    }
    if (env->RegisterNatives(clazz, kMethods, kMethodCount) < 0) {
        KV_LOGE("RegisterNatives failed for '%s'", kKvNativeInterface);
        return false;
    }
    return true;
}

}  // namespace

/**
 * Connects the services, which blocks until each declared one is there, and registers the
 * methods. Returns JNI_VERSION_1_4, or -1 when the methods cannot be registered; a service that
 * does not connect fails only its own operations.
 */
extern "C" JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM* vm, void* /* reserved */) {
    KV_LOGI("JNI_OnLoad");
    ConnectServices();
    JNIEnv* env = nullptr;
    if (vm->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_4) != JNI_OK) {
        KV_LOGE("ERROR: GetEnv failed");
        return -1;
    }
    if (!RegisterNativeMethods(env)) {
        KV_LOGE("ERROR: RegisterAllNatives failed");
        return -1;
    }
    return JNI_VERSION_1_4;
}

/** Releases every service of both backends. */
extern "C" JNIEXPORT void JNICALL JNI_OnUnload(JavaVM* /* vm */, void* /* reserved */) {
    KV_LOGI("JNI_onUnLoad");  // intended: capitalised unlike the load message
    KV_LOGE("ExitKvNativeManager");
    native_aidl::ExitKvManager();
    native_hidl::ExitKvManager();
}
