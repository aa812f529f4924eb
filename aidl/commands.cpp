#include "aidl/services.h"
#include "common/failure.h"
#include "common/java_values.h"
#include "common/service_constants.h"

using namespace kalvorn;

using vendor::zantor::hardware::qxfactoryinterface::IFacBoolStr;
using vendor::zantor::hardware::qxfactoryinterface::IFacIntStr;

jstring native_aidl::NativeSetCommand(JNIEnv* env, jobject, jstring first, jstring second) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    JavaText firstText, secondText;
    if (!firstText.Read(env, first, "first") || !secondText.Read(env, second, "second")) {
        return InvalidService(env);
    }
    KV_LOGI("nativeSetCommand, %s %s\n", firstText.c_str(), secondText.c_str());
    IFacIntStr reply{};
    factory->setCommand(firstText.c_str(), secondText.c_str(), kCommandCapacity, &reply);
    firstText.Release();
    secondText.Release();
    if (reply.resultCode != 0) {
        KV_LOGI("nativeSetCommand, resultCode %d\n", reply.resultCode);
        return NewText(env, "native setCommand fail");
    }
    return NewText(env, reply.text);
}

jstring native_aidl::SetWifiCommand(JNIEnv* env, jobject, jstring testScene, jstring cmd) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    JavaText sceneText, cmdText;
    if (!sceneText.Read(env, testScene, "testScene") || !cmdText.Read(env, cmd, "cmd")) {
        return InvalidService(env);
    }
    IFacBoolStr reply{};
    factory->setWifiCommand(sceneText.c_str(), cmdText.c_str(), kWifiCapacity, &reply);
    KV_LOGI("setWifiCommand, testScene:%s, cmd:%s, buf:%s, resultCode:%d\n", sceneText.c_str(),
            cmdText.c_str(), reply.text.c_str(), reply.result);
    sceneText.Release();
    cmdText.Release();
    if (reply.result) return NewText(env, "setWifiCommand fail");  // intended: true is failure
    return NewText(env, reply.text);
}
