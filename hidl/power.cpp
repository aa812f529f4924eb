#include "common/failure.h"
#include "common/java_values.h"
#include "hidl/services.h"

using namespace kalvorn;

int native_hidl::KvPowerTest(JNIEnv* env, jobject, jstring testScene, jstring testTimes,
                             jstring maxLimit, jstring minLimit) {
    const auto power = Held(g_Power, "g_qxPower is null");
    if (power == nullptr) return kServiceAbsent;
    int32_t result = 0;
    hidl_string testValue;
    JavaText scene, times, maximum, minimum;
    if (!scene.Read(env, testScene, "testScene") || !times.Read(env, testTimes, "testTimes") ||
        !maximum.Read(env, maxLimit, "maxLimit") || !minimum.Read(env, minLimit, "minLimit")) {
        return kServiceAbsent;
    }
    DropStatus(power->powerTest(Borrow(scene.c_str()), Borrow(times.c_str()),
                                Borrow(maximum.c_str()), Borrow(minimum.c_str()),
                                StoreIn(&result, &testValue)));
    KV_LOGE("KvPowerTest, testScene:%s, testTimes:%s, maxLimit:%s, minLimit:%s, testValue:%s",
            scene.c_str(), times.c_str(), maximum.c_str(), minimum.c_str(), testValue.c_str());
    SetStaticText(env, "currentValue", testValue.c_str());
    return result;
}

int native_hidl::SetPowerState(JNIEnv* env, jobject, jstring testScene, jstring para) {
    const auto power = Held(g_Power, "g_qxPower is null");
    if (power == nullptr) return kServiceAbsent;
    JavaText scene, paraText;
    if (!scene.Read(env, testScene, "testScene") || !paraText.Read(env, para, "para")) {
        return kServiceAbsent;
    }
    KV_LOGE("SetPowerState, testScene:%s, para:%s", scene.c_str(), paraText.c_str());
    const int32_t result = power->setPowerState(Borrow(scene.c_str()), Borrow(paraText.c_str()));
    KV_LOGE("SetPowerState result:%d", result);
    return result;
}

jstring native_hidl::GetPowerState(JNIEnv* env, jobject, jstring scene) {
    const auto power = Held(g_Power, "g_qxPower is null");
    if (power == nullptr) return InvalidService(env);
    JavaText sceneText;
    if (!sceneText.Read(env, scene, "scene")) return InvalidService(env);
    int32_t resultCode = 0;
    hidl_string state;
    KV_LOGE("GetPowerState, scene:%s", sceneText.c_str());
    DropStatus(power->getPowerState(Borrow(sceneText.c_str()), StoreIn(&resultCode, &state)));
    KV_LOGE("GetPowerState, resultCode:%d", resultCode);
    sceneText.Release();
    const char* answer = resultCode == 0 ? state.c_str() : "";
    KV_LOGE("GetPowerState result:%s", answer);
    return NewText(env, answer);
}

int native_hidl::KvLockBigCpu(JNIEnv*, jobject, int lockOrRelease) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    KV_LOGD("LockBigCpu, lockOrRelease: %d\n", lockOrRelease);
    const int32_t result = factory->lockBigCpu(lockOrRelease);
    KV_LOGD("LockBigCpu, result: %d\n", result);
    return result;
}

int native_hidl::KvSetLightSleep(JNIEnv*, jobject, int action) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    KV_LOGD("SetLightSleep, action: %d\n", action);
    const int32_t result = factory->setLightSleep(action);
    KV_LOGD("SetLightSleep, result: %d\n", result);
    return result;
}

int native_hidl::KvModemLog(JNIEnv*, jobject, unsigned int state) {
    const auto radio = Held(g_radioenhance, "g_radioenhance is null");
    if (radio == nullptr) return kServiceAbsent;
    KV_LOGD("KvModemLog, state: %d\n", static_cast<int>(state));
    const int32_t result = radio->setModemLogState(state);
    KV_LOGD("KvModemLog, result: %d\n", result);
    return result;
}
