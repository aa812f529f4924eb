#include "common/log.h"
#include "jni/local_methods.h"

JavaVM* native_local::g_javaVm = nullptr;

jint native_local::SendCommandMcu(JNIEnv* env, jobject, jint first, jint second, jbyteArray data) {
    env->GetJavaVM(&g_javaVm);
    if (data == nullptr) {
        KV_LOGE("data is null");
        return 0;
    }
    KV_LOGI("g_iextShb register resultRegister:%d , %d, %d", first, second,
            env->GetArrayLength(data));
    return 0;
}

jint native_local::UnregisterCallback(JNIEnv*, jint serviceId, jint result) {
    KV_LOGI("UnregisterCallback, result: %d , serviceId: %d", result, serviceId);
    return 0;
}
