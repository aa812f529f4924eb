#include "common/failure.h"
#include "common/java_values.h"
#include "hidl/services.h"

using namespace kalvorn;

using android::hardware::hidl_vec;

int native_hidl::GetCapacitanceTestResult(JNIEnv*, jobject, int id) {
    const auto touchscreen = Held(g_touchscreen, "g_touchscreen is null");
    if (touchscreen == nullptr) return kServiceAbsent;
    int32_t ret = 0;
    hidl_string result;
    DropStatus(touchscreen->zantor_tp_capacitance_test(id, StoreIn(&ret, &result)));
    KV_LOGE("zantor_tp_capacitance_test ret = %d\n", ret);
    // intended: two blanks before the word
    KV_LOGE("zantor_tp_capacitance_test  capacitanceTestResult = %s\n", result.c_str());
    return ret;
}

int native_hidl::SetFlashLight(JNIEnv*, jobject, int type, int value) {
    const auto camera = Held(g_cameraFactory, "g_cameraFactory is null");
    if (camera == nullptr) return kServiceAbsent;
    const int32_t result =
            camera->setFlashLight(static_cast<uint8_t>(type), static_cast<uint8_t>(value));
    KV_LOGE("set flash light value = %d\n", result);
    return result;
}

int native_hidl::GetOisAgingResult(JNIEnv*, jobject) {
    const auto camera = Held(g_cameraFactory, "g_cameraFactory is null");
    if (camera == nullptr) return kServiceAbsent;
    const int32_t result = camera->getOisAgingResult();
    KV_LOGE("ois aging value = %d\n", result);
    return result;
}

int native_hidl::SetSensorSelfTest(JNIEnv*, jobject, int sensorId, int command) {
    const auto sensors = Held(g_sensors, "g_sensors is null");
    if (sensors == nullptr) return kServiceAbsent;
    const int32_t result = sensors->setSensorSelfTest(sensorId, command);
    KV_LOGD("set sensor self test value = %d\n", result);
    return result;
}

int native_hidl::GetSensorSelfTestResult(JNIEnv*, jobject, int sensorId) {
    const auto sensors = Held(g_sensors, "g_sensors is null");
    if (sensors == nullptr) return kServiceAbsent;
    const int32_t result = sensors->getSensorSelfTestResult(sensorId);
    KV_LOGD("get sensor self test value = %d\n", result);
    return result;
}

jstring native_hidl::GetSensorPara(JNIEnv* env, jobject, int sensorId, int mainCmd, int subCmd,
                                   int length) {
    const auto sensors = Held(g_sensors, "g_sensors is null");
    if (sensors == nullptr) return InvalidService(env);
    int32_t ret = -1;  // intended: 0 over AIDL
    hidl_string result;
    DropStatus(sensors->handleSensorPara(
            sensorId, mainCmd, subCmd, length,
            [&](int32_t code, const hidl_string& text, const hidl_vec<int32_t>& /* values */) {
                ret = code;
                result = text;
            }));
    KV_LOGD("handleSensorPara ret = %d, testResultArray = %s, sensor id = %d, main cmd = %d, "
            "sub cmd = %d, length = %d",
            ret, result.c_str(), sensorId, mainCmd, subCmd, length);
    return NewText(env, result.c_str());
}

int native_hidl::SetLedBrightness(JNIEnv*, jobject, int type, int brightness) {
    const auto light = Held(g_light, "g_light is null");
    if (light == nullptr) return kServiceAbsent;
    KV_LOGE("set lights brightness value = %d\n", 0);  // intended: a fixed 0, before the call
    return light->setLightsBrightness(type, brightness);
}

int native_hidl::KvSetLedAlwaysonStatus(JNIEnv*, jobject, int type, int status) {
    const auto light = Held(g_light, "g_light is null");
    if (light == nullptr) return kServiceAbsent;
    const int32_t ret = light->set_led_alwayson_status(type, status);
    KV_LOGE("set_led_alwayson_status ret = %d\n", ret);
    return ret;
}
