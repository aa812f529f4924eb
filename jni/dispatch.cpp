#include "jni/dispatch.h"

#include <iterator>

#include "aidl/kalvorn_aidl_manager.h"
#include "common/failure.h"
#include "common/java_values.h"
#include "common/log.h"
#include "hidl/kalvorn_hidl_manager.h"
#include "jni/descriptor.h"
#include "jni/local_methods.h"

namespace {

// The choice of a backend, afresh on every call: AIDL while that service is held over AIDL, HIDL
// otherwise, whose operation then finds out for itself whether the service is there.
#define TWO_BACKENDS(javaName, name, query, priority, signature) \
    template <typename... Args>                                  \
    auto name(JNIEnv* env, jobject obj, Args... args) {          \
        if (native_aidl::query()) {                              \
            KV_LOG(priority, #name "ByAidl");                    \
            return native_aidl::name(env, obj, args...);         \
        }                                                        \
        KV_LOG(priority, #name "ByHidl");                        \
        return native_hidl::name(env, obj, args...);             \
    }
#define AIDL_ONLY(javaName, name, signature)
#define LOCAL(javaName, name, signature)
#define DEVIATING(javaName, name, signature)
#include "jni/methods.inc"
#undef TWO_BACKENDS
#undef AIDL_ONLY
#undef LOCAL
#undef DEVIATING

// intended: the methods with the AIDL backend only are unalike in what they ask and log.

jint SetSimPowerState(JNIEnv* env, jobject obj, jint state) {
    KV_LOGI("SetSimPowerStateByAidl");
    return native_aidl::SetSimPowerState(env, obj, state);
}

jstring ChipTtTestCp(JNIEnv* env, jobject obj, jstring scene) {
    if (!native_aidl::IsChipSrvSatAidlVersion()) return NewText(env, kInvalidService);
    KV_LOGI("ChipTtTestCpByAidl");
    return native_aidl::ChipTtTestCp(env, obj, scene);
}

jstring ChipTtRssiTest(JNIEnv* env, jobject obj, jstring scene) {
    if (!native_aidl::IsChipSrvSatAidlVersion()) {
        KV_LOGI("ChipTtRssiTestByHidl invalidService");
        return NewText(env, kInvalidService);
    }
    return native_aidl::ChipTtRssiTest(env, obj, scene);
}

jstring ChipTtTestPa(JNIEnv* env, jobject obj, jstring scene) {
    KV_LOGI("ChipTtTestPaByAidl");
    return native_aidl::ChipTtTestPa(env, obj, scene);
}

jstring ChipTtTestPdet(JNIEnv* env, jobject obj, jstring scene) {
    KV_LOGI("ChipTtTestPdetByAidl");
    return native_aidl::ChipTtTestPdet(env, obj, scene);
}

#define TWO_BACKENDS(javaName, name, query, priority, signature)               \
    static_assert(descriptor::Fits(&native_aidl::name, signature), #javaName); \
    static_assert(descriptor::Fits(&native_hidl::name, signature), #javaName);
#define AIDL_ONLY(javaName, name, signature) \
    static_assert(descriptor::Fits(&name, signature), #javaName);
#define LOCAL(javaName, name, signature) \
    static_assert(descriptor::Fits(&name, signature), #javaName);
#define DEVIATING(javaName, name, signature)
#include "jni/methods.inc"
#undef TWO_BACKENDS
#undef AIDL_ONLY
#undef LOCAL
#undef DEVIATING

}  // namespace

#define ROW(javaName, signature, function) \
    {#javaName, signature, reinterpret_cast<void*>(function)},
#define TWO_BACKENDS(javaName, name, query, priority, signature) \
    ROW(javaName, signature, static_cast<decltype(&native_aidl::name)>(&name))
#define AIDL_ONLY(javaName, name, signature) ROW(javaName, signature, &name)
#define LOCAL(javaName, name, signature) ROW(javaName, signature, &name)
#define DEVIATING(javaName, name, signature) ROW(javaName, signature, &name)
const JNINativeMethod kMethods[] = {
#include "jni/methods.inc"
};
static_assert(std::size(kMethods) == kMethodCount);
