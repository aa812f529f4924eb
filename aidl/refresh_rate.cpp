#include <string>

#include "aidl/services.h"
#include "common/failure.h"
#include "common/java_values.h"

using namespace kalvorn;

using vendor::zantor::hardware::qxdisplay::DisplayOutInfo;

jstring native_aidl::StartHertzTest(JNIEnv* env, jobject) {
    const auto chip = Held(g_aidlChipSrvInterface, "aidlChipSrvInterface is null");
    if (chip == nullptr) return InvalidService(env);
    std::string parameters;
    chip->startHertzTest(&parameters);
    KV_LOGI("startHertzTest parameters carried:%s", parameters.c_str());
    return NewText(env, parameters);
}

int native_aidl::StopHertzTest(JNIEnv*, jobject) {
    const auto chip = Held(g_aidlChipSrvInterface, "aidlChipSrvInterface is null");
    if (chip == nullptr) return kServiceAbsent;
    int32_t result = 0;
    chip->stopHertzTest(&result);
    KV_LOGI("Stop hertz test result = %d\n", result);
    return result;
}

int native_aidl::GetHertzTestResult(JNIEnv*, jobject) {
    const auto chip = Held(g_aidlChipSrvInterface, "aidlChipSrvInterface is null");
    if (chip == nullptr) return kServiceAbsent;
    int32_t result = 0;
    chip->getHertzTestResult(&result);
    KV_LOGI("hertz test res = %d\n", result);
    return result;
}

jstring native_aidl::GetScreenFpsConfigByScenes(JNIEnv* env, jobject, int scene) {
    const auto display = Held(g_aidlDisplayService, "aidlDisplayService is null");
    if (display == nullptr) return InvalidService(env);
    DisplayOutInfo info{};
    display->getDisplayFpsConfig(scene, &info);
    if (info.resultCode != 0) {
        KV_LOGE("Get display fps config failed, res: %d", info.resultCode);
        return nullptr;
    }
    KV_LOGI("GetDisplayFpsConfig, fpsConfig: %s", info.text.c_str());
    return NewText(env, info.text);
}

int native_aidl::SetScreenFps(JNIEnv*, jobject, int freqIndex) {
    const auto display = Held(g_aidlDisplayService, "aidlDisplayService is null");
    if (display == nullptr) return kServiceAbsent;
    int32_t res = -2;
    display->setDisplayFps(freqIndex, &res);
    KV_LOGI("setDisplayFps, freqIndex: %d, res: %d", freqIndex, res);
    return res == 0 ? 0 : -1;
}
