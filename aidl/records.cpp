#include "aidl/services.h"
#include "common/failure.h"
#include "common/java_values.h"
#include "common/service_constants.h"

using namespace kalvorn;

using vendor::zantor::hardware::qxfactoryinterface::IFacIntStr;

jstring native_aidl::GetTestResult(JNIEnv* env, jobject, int id) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    IFacIntStr reply{};
    factory->getTestResult(id, &reply);
    KV_LOGI("Get test result = %d, id = %d, out = %s\n", reply.resultCode, id, reply.text.c_str());
    if (reply.resultCode == -1) {
        KV_LOGE("Get test result fail");
        return nullptr;
    }
    KV_LOGI("Get test result success");
    return NewText(env, reply.text);
}

int native_aidl::SetTestResult(JNIEnv* env, jobject, jstring value, int id) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText text;
    if (!text.Read(env, value, "value")) return kServiceAbsent;
    int32_t result = -1;
    factory->setTestResult(id, text.c_str(), &result);
    KV_LOGI("Set test result = %d, id = %d, nvValue = %s\n", result, id, text.c_str());
    return result;
}

jstring native_aidl::ReadNv(JNIEnv* env, jobject, int nvId) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    IFacIntStr reply{};
    factory->readNv(nvId, &reply);
    KV_LOGI("ReadNv values = %d, result = %s", reply.resultCode, reply.text.c_str());
    if (reply.resultCode == -1) {
        KV_LOGE("Nv read fail");
        return nullptr;
    }
    KV_LOGI("Nv read success");
    return NewText(env, reply.text);
}

int native_aidl::WriteNv(JNIEnv* env, jobject, jstring value, int nvId) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText text;
    if (!text.Read(env, value, "value")) return kServiceAbsent;
    int32_t result = 0;
    factory->writeNv(nvId, text.c_str(), &result);
    KV_LOGI("writeNv values = %d, nvValues = %s", result, text.c_str());
    return result;
}

// The kv info lives in NV items; only the judgement and the log differ from ReadNv.
jstring native_aidl::GetKvInfoFromOem(JNIEnv* env, jobject, int nvId) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    IFacIntStr reply{};
    factory->readNv(nvId, &reply);
    KV_LOGI("Get kv info = %s, result = %d", reply.text.c_str(), reply.resultCode);
    return reply.resultCode == 0 ? NewText(env, reply.text) : nullptr;
}

int native_aidl::SetKvInfoToOem(JNIEnv* env, jobject, int nvId, jstring value) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText text;
    if (!text.Read(env, value, "value")) return kServiceAbsent;
    int32_t result = 0;
    factory->writeNv(nvId, text.c_str(), &result);
    KV_LOGI("Set kv info = %s, result = %d", text.c_str(), result);
    return result;
}

jstring native_aidl::GetControlFlag(JNIEnv* env, jobject, int flagId) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    KV_LOGI("getControlFlag, flagID is %d", flagId);
    IFacIntStr reply{};
    factory->getControlFlag(flagId, kMaxFlagSize, &reply);
    KV_LOGI("getControlFlag resultCode:%d, flagResult:%s", reply.resultCode, reply.text.c_str());
    return NewText(env, reply.text);
}

int native_aidl::SetControlFlag(JNIEnv* env, jobject, int flagId, jstring flag) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText text;
    if (!text.Read(env, flag, "flag")) return kServiceAbsent;
    KV_LOGI("setControlFlag, flagID is %d, flag is %s", flagId, text.c_str());
    const int32_t flagSize = env->GetStringUTFLength(flag);
    int32_t result = -1;
    factory->setControlFlag(flagId, text.c_str(), flagSize, &result);
    KV_LOGI("setControlFlag result:%d, flag:%s, flagSize:%d", result, text.c_str(), flagSize);
    return result;
}
