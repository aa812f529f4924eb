#include "jni/dispatch.h"

#include <iterator>

#include "aidl/kalvorn_aidl_manager.h"
#include "common/failure.h"
#include "common/java_values.h"
#include "common/log.h"
#include "hidl/kalvorn_hidl_manager.h"
#include "jni/descriptor.h"
#include "jni/local_methods.h"

using namespace kalvorn;

namespace {

// The choice of a backend, afresh on every call: AIDL while that service is held over AIDL, HIDL
// otherwise, whose operation then finds out for itself whether the service is there.
#define TWO_BACKENDS(javaName, name, service, priority, signature)                \
    template <typename... Args>                                                   \
    auto name(JNIEnv* env, jobject obj, Args... args) {                           \
        const bool byAidl = native_aidl::Is##service##AidlVersion();              \
        KV_LOG(ANDROID_LOG_##priority, byAidl ? #name "ByAidl" : #name "ByHidl"); \
        return byAidl ? native_aidl::name(env, obj, args...)                      \
                      : native_hidl::name(env, obj, args...);                     \
    }
// With no backend to choose, the line is at info.
#define AIDL_ONLY(javaName, name, signature)            \
    template <typename... Args>                         \
    auto name(JNIEnv* env, jobject obj, Args... args) { \
        KV_LOGI(#name "ByAidl");                        \
        return native_aidl::name(env, obj, args...);    \
    }
#include "jni/methods.inc"

// intended: two of the satellite chip's methods ask first whether it is held, and are unalike in
// what they log. As functions that are no templates they stand in the table instead of the above.

jstring ChipTtTestCp(JNIEnv* env, jobject obj, jstring scene) {
    if (!native_aidl::IsChipSrvSatAidlVersion()) return InvalidService(env);
    KV_LOGI("ChipTtTestCpByAidl");
    return native_aidl::ChipTtTestCp(env, obj, scene);
}

jstring ChipTtRssiTest(JNIEnv* env, jobject obj, jstring scene) {
    if (!native_aidl::IsChipSrvSatAidlVersion()) {
        KV_LOGI("ChipTtRssiTestByHidl invalidService");
        return InvalidService(env);
    }
    return native_aidl::ChipTtRssiTest(env, obj, scene);
}

}  // namespace

// Of macros only: made by a function, the table would be filled when the library is loaded.
#define ROW(javaName, function, type)              \
    {#javaName, descriptor::Of<type>::text.data(), \
     reinterpret_cast<void*>(static_cast<type*>(function))},
#define TWO_BACKENDS(javaName, name, service, priority, signature) \
    ROW(javaName, name, NativeMethod<signature>)
#define AIDL_ONLY(javaName, name, signature) ROW(javaName, name, NativeMethod<signature>)
#define LOCAL(javaName, name) ROW(javaName, native_local::name, decltype(native_local::name))
#define DEVIATING(javaName, name, descriptor) \
    {#javaName, descriptor, reinterpret_cast<void*>(native_local::name)},
const JNINativeMethod kMethods[] = {
#include "jni/methods.inc"
};

const jint kMethodCount = std::size(kMethods);
