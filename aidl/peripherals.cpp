#include <vector>

#include "aidl/services.h"
#include "common/failure.h"
#include "common/java_values.h"

using namespace kalvorn;

using vendor::zantor::hardware::sensors::ZtSensorString;
using vendor::zantor::hardware::tp::ITPIntString;

int native_aidl::GetCapacitanceTestResult(JNIEnv*, jobject, int id) {
    const auto touchscreen = Held(g_aidlTp, "aidlTouchscreen is null");
    if (touchscreen == nullptr) return kServiceAbsent;
    ITPIntString reply{};
    touchscreen->zantor_tp_capacitance_test(id, &reply);
    KV_LOGI("zantor_tp_capacitance_test result = %d\n", reply.result);
    KV_LOGI("zantor_tp_capacitance_test capacitanceTestResult = %s\n", reply.text.c_str());
    return reply.result;
}

// intended: the camera operations name the factory interface when the camera service is absent.

int native_aidl::SetFlashLight(JNIEnv*, jobject, int type, int value) {
    const auto camera = Held(g_aidlCameraFactory, "aidlFactoryInterface is null");
    if (camera == nullptr) return kServiceAbsent;
    int32_t result = 0;
    camera->setFlashLight(static_cast<int8_t>(type), static_cast<int8_t>(value), &result);
    KV_LOGI("set flash light values = %d\n", result);
    return result;
}

int native_aidl::GetOisAgingResult(JNIEnv*, jobject) {
    const auto camera = Held(g_aidlCameraFactory, "aidlFactoryInterface is null");
    if (camera == nullptr) return kServiceAbsent;
    int32_t result = 0;
    camera->getOisAgingResult(&result);
    KV_LOGI("ois aging values = %d\n", result);
    return result;
}

int native_aidl::SetSensorSelfTest(JNIEnv*, jobject, int sensorId, int command) {
    const auto sensors = Held(g_aidlSensors, "aidlSensors is null");
    if (sensors == nullptr) return kServiceAbsent;
    int32_t result = 0;
    sensors->setSensorSelfTest(sensorId, command, &result);
    KV_LOGI("Set sensor self test value = %d\n", result);
    return result;
}

int native_aidl::GetSensorSelfTestResult(JNIEnv*, jobject, int sensorId) {
    const auto sensors = Held(g_aidlSensors, "aidlSensors is null");
    if (sensors == nullptr) return kServiceAbsent;
    int32_t result = 0;
    sensors->getSensorSelfTestResult(sensorId, &result);
    KV_LOGI("Get sensor self test value = %d\n", result);
    return result;
}

jstring native_aidl::GetSensorPara(JNIEnv* env, jobject, int sensorId, int mainCmd, int subCmd,
                                   int length) {
    const auto sensors = Held(g_aidlSensors, "aidlSensors is null");
    if (sensors == nullptr) return InvalidService(env);
    int32_t ret = 0;
    ZtSensorString result{};
    std::vector<int32_t> values;  // never read
    sensors->handleSensorPara(sensorId, mainCmd, subCmd, length, &result, &values, &ret);
    KV_LOGI("handleSensorPara ret = %d, testResultArray = %s, sensor id = %d, main cmd = %d, "
            "sub cmd = %d, length =%d",  // intended: no blank after the last "="
            ret, result.text.c_str(), sensorId, mainCmd, subCmd, length);
    return NewText(env, result.text);
}

int native_aidl::SetLedBrightness(JNIEnv*, jobject, int type, int brightness) {
    const auto light = Held(g_aidlLight, "aidlLight is null");
    if (light == nullptr) return kServiceAbsent;
    int32_t result = 0;
    light->setLightsBrightness(type, brightness, &result);
    KV_LOGI("set lights brightness values = %d\n", result);
    return result;
}

int native_aidl::KvSetLedAlwaysonStatus(JNIEnv*, jobject, int type, int status) {
    const auto light = Held(g_aidlLight, "aidlLight is null");
    if (light == nullptr) return kServiceAbsent;
    int32_t result = 0;
    light->set_led_alwayson_status(type, status, &result);
    KV_LOGI("Set_led_alwayson_status value = %d\n", result);
    return result;
}
