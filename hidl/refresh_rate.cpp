#include "common/failure.h"
#include "common/java_values.h"
#include "hidl/services.h"

using namespace kalvorn;

jstring native_hidl::StartHertzTest(JNIEnv* env, jobject) {
    const auto chip = Held(g_ztChipSrvInterface, "g_ztChipSrvInterface is null");
    if (chip == nullptr) return InvalidService(env);
    int32_t resultCode = 0;
    hidl_string parameters;
    DropStatus(chip->startHertzTest(StoreIn(&resultCode, &parameters)));
    KV_LOGD("StartHertzTest resultCode:%d, parameters carried:%s", resultCode, parameters.c_str());
    return NewText(env, parameters.c_str());
}

int native_hidl::StopHertzTest(JNIEnv*, jobject) {
    const auto chip = Held(g_ztChipSrvInterface, "g_ztChipSrvInterface is null");
    if (chip == nullptr) return kServiceAbsent;
    const int32_t result = chip->stopHertzTest();
    KV_LOGE("stop hertz test result = %d\n", result);
    return result;
}

int native_hidl::GetHertzTestResult(JNIEnv*, jobject) {
    const auto chip = Held(g_ztChipSrvInterface, "g_ztChipSrvInterface is null");
    if (chip == nullptr) return kServiceAbsent;
    const int32_t result = chip->getHertzTestResult();
    KV_LOGE("hertz test result = %d\n", result);
    return result;
}

// intended: HIDL switches the rate to the given index first and then reads without an argument.
jstring native_hidl::GetScreenFpsConfigByScenes(JNIEnv* env, jobject, int scene) {
    const auto display = CastTo<IDisplayV1_1>(g_displayService);
    if (display == nullptr) {
        KV_LOGE("displayServiceNewVer is null, not support multi fps");
        return InvalidService(env);
    }
    int32_t ret = display->setDisplayFps(scene);
    KV_LOGI("setDisplayFps, freqIndex: %d, ret: %d", scene, ret);
    if (ret != 0) {
        KV_LOGE("setDisplayFps failed, ret: %d", ret);
        return nullptr;
    }
    hidl_string fpsConfig;
    DropStatus(display->getDisplayFpsConfig(StoreIn(&ret, &fpsConfig)));
    if (ret != 0) {
        KV_LOGE("get display fps config failed, ret: %d", ret);
        return nullptr;
    }
    KV_LOGI("getDisplayFpsConfig, fpsConfig: %s", fpsConfig.c_str());
    return NewText(env, fpsConfig.c_str());
}

int native_hidl::SetScreenFps(JNIEnv*, jobject, int freqIndex) {
    const auto display = CastTo<IDisplayV1_1>(g_displayService);
    if (display == nullptr) {
        KV_LOGE("displayServiceNewVer is null, not support multi fps");
        return kServiceAbsent;
    }
    const int32_t ret = display->setDisplayFps(freqIndex);
    KV_LOGI("setDisplayFps, freqIndex: %d, ret: %d", freqIndex, ret);
    return ret == 0 ? 0 : -1;
}
