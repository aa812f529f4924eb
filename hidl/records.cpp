#include "common/failure.h"
#include "common/java_values.h"
#include "common/service_constants.h"
#include "hidl/services.h"

using namespace kalvorn;

jstring native_hidl::GetTestResult(JNIEnv* env, jobject, int id) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    int32_t code = 0;
    hidl_string out;
    DropStatus(factory->getTestResult(id, StoreIn(&code, &out)));
    KV_LOGE("get test result = %d, id = %d, out = %s\n", code, id, out.c_str());
    if (code == -1) {
        KV_LOGE("get test result fail");
        return nullptr;
    }
    KV_LOGE("get test result success");
    return NewText(env, out.c_str());
}

int native_hidl::SetTestResult(JNIEnv* env, jobject, jstring value, int id) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText text;
    if (!text.Read(env, value, "value")) return kServiceAbsent;
    const int32_t result = factory->setTestResult(id, Borrow(text.c_str()));
    KV_LOGE("set test result = %d, id = %d, nvValue = %s\n", result, id, text.c_str());
    if (result == -1) {  // intended: other negative values count as success
        KV_LOGE("set test result fail");
        return -1;
    }
    KV_LOGE("set test result success");
    return result;
}

jstring native_hidl::ReadNv(JNIEnv* env, jobject, int nvId) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    int32_t code = 0;
    hidl_string value;
    DropStatus(factory->readNv(nvId, StoreIn(&code, &value)));
    KV_LOGE("ReadNv value = %d, result = %s", code, value.c_str());
    if (code == -1) {
        KV_LOGE("nv read fail");
        return nullptr;
    }
    KV_LOGD("nv read success");
    return NewText(env, value.c_str());
}

int native_hidl::WriteNv(JNIEnv* env, jobject, jstring value, int nvId) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText text;
    if (!text.Read(env, value, "value")) return kServiceAbsent;
    const int32_t result = factory->writeNv(nvId, Borrow(text.c_str()));
    KV_LOGE("WriteNv value = %d, nvValue = %s", result, text.c_str());
    if (result == -1) {  // intended: other negative values count as success
        KV_LOGE("nv write fail");
        return -1;
    }
    KV_LOGE("nv write success");
    return result;
}

// The kv info lives in NV items; only the judgement and the log differ from ReadNv.
jstring native_hidl::GetKvInfoFromOem(JNIEnv* env, jobject, int nvId) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    int32_t code = 0;
    hidl_string value;
    DropStatus(factory->readNv(nvId, StoreIn(&code, &value)));
    KV_LOGD("get kv info = %s, result = %d", value.c_str(), code);
    return code == 0 ? NewText(env, value.c_str()) : nullptr;
}

// intended: -1 is no failure of its own here, unlike WriteNv.
int native_hidl::SetKvInfoToOem(JNIEnv* env, jobject, int nvId, jstring value) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText text;
    if (!text.Read(env, value, "value")) return kServiceAbsent;
    const int32_t result = factory->writeNv(nvId, Borrow(text.c_str()));
    KV_LOGD("set kv info = %s, result = %d", text.c_str(), result);
    return result;
}

jstring native_hidl::GetControlFlag(JNIEnv* env, jobject, int flagId) {
    KV_LOGD("GetControlFlag, flagID is %d", flagId);
    const auto fi = CastTo<IQxFactoryInterfaceV1_1>(g_qxFactoryInterface);
    if (fi == nullptr) {
        KV_LOGD("fi is null, IQxFactoryV1_1 not support!");
        return InvalidService(env);
    }
    int32_t code = 0;
    hidl_string flag;
    DropStatus(fi->getControlFlag(flagId, kMaxFlagSize, StoreIn(&code, &flag)));
    KV_LOGD("GetControlFlag resultCode:%d, flagResult:%s", code, flag.c_str());
    return NewText(env, flag.c_str());
}

// intended: the flag is read and logged before the service is looked at, unlike AIDL.
int native_hidl::SetControlFlag(JNIEnv* env, jobject, int flagId, jstring flag) {
    JavaText text;
    if (!text.Read(env, flag, "flag")) return kServiceAbsent;
    KV_LOGD("SetControlFlag, flagID is %d, flag is %s", flagId, text.c_str());
    const auto fi = CastTo<IQxFactoryInterfaceV1_1>(g_qxFactoryInterface);
    if (fi == nullptr) {
        KV_LOGD("fi is null, IQxFactoryV1_1 not support!");
        return kServiceAbsent;
    }
    const int32_t flagSize = env->GetStringUTFLength(flag);
    const int32_t result = fi->setControlFlag(flagId, Borrow(text.c_str()), flagSize);
    KV_LOGD("SetControlFlag result:%d, flag:%s, flagSize:%d", result, text.c_str(), flagSize);
    return result;
}
