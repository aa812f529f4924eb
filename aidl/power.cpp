#include <string>

#include "aidl/services.h"
#include "common/failure.h"
#include "common/java_values.h"

using namespace kalvorn;

using vendor::zantor::hardware::power::PowerOutInfo;

namespace {

constexpr const char* kPackageName = "com.quorvin.kalvornii";

}  // namespace

// intended: the AIDL service has no power test; it is a power state with a composed parameter.
int native_aidl::KvPowerTest(JNIEnv* env, jobject, jstring testScene, jstring testTimes,
                             jstring maxLimit, jstring minLimit) {
    const auto power = Held(g_aidlPower, "aidlPower is null");
    if (power == nullptr) return kServiceAbsent;
    int32_t result = 0;
    JavaText scene, times, maximum, minimum;
    if (!scene.Read(env, testScene, "testScene") || !times.Read(env, testTimes, "testTimes") ||
        !maximum.Read(env, maxLimit, "maxLimit") || !minimum.Read(env, minLimit, "minLimit")) {
        return kServiceAbsent;
    }
    std::string para = "testTimes=";
    para.append(times.c_str()).append(",maxLimit=").append(maximum.c_str());
    para.append(",minLimit=").append(minimum.c_str());
    power->setPowerState(kPackageName, scene.c_str(), para, &result);
    KV_LOGI("kvPowerTest, testScene:%s, testTimes:%s, maxLimit:%s, minLimit:%s", scene.c_str(),
            times.c_str(), maximum.c_str(), minimum.c_str());
    SetStaticText(env, "currentValue", "");  // intended: there is no test value over AIDL
    return result;
}

int native_aidl::SetPowerState(JNIEnv* env, jobject, jstring testScene, jstring para) {
    const auto power = Held(g_aidlPower, "aidlPower is null");
    if (power == nullptr) return kServiceAbsent;
    int32_t result = 0;
    JavaText scene, paraText;
    if (!scene.Read(env, testScene, "testScene") || !paraText.Read(env, para, "para")) {
        return kServiceAbsent;
    }
    KV_LOGI("setPowerState, testScene:%s, para:%s", scene.c_str(), paraText.c_str());
    power->setPowerState(kPackageName, scene.c_str(), paraText.c_str(), &result);
    KV_LOGI("setPowerState result:%d", result);
    return result;
}

jstring native_aidl::GetPowerState(JNIEnv* env, jobject, jstring scene) {
    const auto power = Held(g_aidlPower, "aidlPower is null");
    if (power == nullptr) return InvalidService(env);
    JavaText sceneText;
    if (!sceneText.Read(env, scene, "scene")) return InvalidService(env);
    int32_t resultCode = 0;
    PowerOutInfo info{};
    KV_LOGI("getPowerState, scene:%s", sceneText.c_str());
    power->getPowerState(kPackageName, sceneText.c_str(), &info, &resultCode);
    KV_LOGI("getPowerState, resultCode:%d", resultCode);
    sceneText.Release();
    if (resultCode != 0) info.state.clear();
    KV_LOGI("getPowerState result:%s", info.state.c_str());
    return NewText(env, info.state);
}

int native_aidl::KvLockBigCpu(JNIEnv*, jobject, int lockOrRelease) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    KV_LOGI("lockBigCpu, lockOrRelease: %d\n", lockOrRelease);
    int32_t result = -1;
    factory->lockBigCpu(lockOrRelease, &result);
    KV_LOGI("lockBigCpu, result: %d\n", result);
    return result;
}

int native_aidl::KvSetLightSleep(JNIEnv*, jobject, int action) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    KV_LOGI("setLightSleep, action: %d\n", action);
    int32_t result = -1;
    factory->setLightSleep(action, &result);
    KV_LOGI("setLightSleep, result: %d\n", result);
    return result;
}

int native_aidl::KvModemLog(JNIEnv*, jobject, unsigned int state) {
    const auto radio = Held(g_aidlRadioEnhance, "g_aidlRadioEnhance is null");
    if (radio == nullptr) return kServiceAbsent;
    KV_LOGI("kvModemLog, state: %d\n", static_cast<int>(state));
    int32_t result = -1;
    radio->setModemLogState(static_cast<int32_t>(state), &result);
    KV_LOGI("kvModemLog, result: %d\n", result);
    return result;
}
