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
bool ServedByAidl(bool heldOverAidl, int priority, const char* name) {
    KV_LOG(priority, heldOverAidl ? "%sByAidl" : "%sByHidl", name);
    return heldOverAidl;
}

#define TWO_BACKENDS(javaName, name, query, priority, signature)   \
    template <typename... Args>                                    \
    auto name(JNIEnv* env, jobject obj, Args... args) {            \
        return ServedByAidl(native_aidl::query(), priority, #name) \
                       ? native_aidl::name(env, obj, args...)      \
                       : native_hidl::name(env, obj, args...);     \
    }
#define AIDL_ONLY(javaName, name, signature)
#define LOCAL(javaName, name, signature)
#define DEVIATING(javaName, name, signature)
#include "jni/methods.inc"

// intended: the methods with the AIDL backend only are unalike in what they ask and log.

jint SetSimPowerState(JNIEnv* env, jobject obj, jint state) {
    KV_LOGI("SetSimPowerStateByAidl");
    return native_aidl::SetSimPowerState(env, obj, state);
}

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

jstring ChipTtTestPa(JNIEnv* env, jobject obj, jstring scene) {
    KV_LOGI("ChipTtTestPaByAidl");
    return native_aidl::ChipTtTestPa(env, obj, scene);
}

jstring ChipTtTestPdet(JNIEnv* env, jobject obj, jstring scene) {
    KV_LOGI("ChipTtTestPdetByAidl");
    return native_aidl::ChipTtTestPdet(env, obj, scene);
}

template <bool fits>
constexpr const char* Checked(const char* signature) {
    static_assert(fits, "the signature in this row is not that of the function");
    return signature;
}

}  // namespace

#define ROW(javaName, signature, fits, function) \
    {#javaName, Checked<fits>(signature), reinterpret_cast<void*>(function)},
#define TWO_BACKENDS(javaName, name, query, priority, signature) \
    ROW(javaName, signature,                                     \
        descriptor::Fits(&native_aidl::name, signature) &&       \
                descriptor::Fits(&native_hidl::name, signature), \
        static_cast<decltype(&native_aidl::name)>(&name))
#define AIDL_ONLY(javaName, name, signature) \
    ROW(javaName, signature, descriptor::Fits(&name, signature), &name)
#define LOCAL(javaName, name, signature) AIDL_ONLY(javaName, name, signature)
#define DEVIATING(javaName, name, signature) ROW(javaName, signature, true, &name)
const JNINativeMethod kMethods[] = {
#include "jni/methods.inc"
};

const jint kMethodCount = std::size(kMethods);
