#include "common/failure.h"
#include "common/java_values.h"
#include "common/service_constants.h"
#include "hidl/services.h"

using namespace kalvorn;

jstring native_hidl::NativeSetCommand(JNIEnv* env, jobject, jstring first, jstring second) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    JavaText firstText, secondText;
    if (!firstText.Read(env, first, "first") || !secondText.Read(env, second, "second")) {
        return InvalidService(env);
    }
    int32_t code = -1;  // intended: no answer is a failure here, and an empty text over AIDL
    hidl_string text;
    KV_LOGE("NativeSetCommand, %s %s\n", firstText.c_str(), secondText.c_str());
    DropStatus(factory->setCommand(Borrow(firstText.c_str()), Borrow(secondText.c_str()),
                                   kCommandCapacity, StoreIn(&code, &text)));
    firstText.Release();
    secondText.Release();
    if (code != 0) {
        KV_LOGE("NativeSetCommand, resultCode %d\n", code);
        return NewText(env, "native setCommand fail");
    }
    return NewText(env, text.c_str());
}

jstring native_hidl::SetWifiCommand(JNIEnv* env, jobject, jstring testScene, jstring cmd) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    JavaText sceneText, cmdText;
    if (!sceneText.Read(env, testScene, "testScene") || !cmdText.Read(env, cmd, "cmd")) {
        return InvalidService(env);
    }
    int32_t code = -1;  // intended: no answer is a failure here, and an empty text over AIDL
    hidl_string text;
    DropStatus(factory->setWifiCommand(Borrow(sceneText.c_str()), Borrow(cmdText.c_str()),
                                       kWifiCapacity,
                                       [&](bool result, const hidl_string& resultText) {
                                           code = result ? 1 : 0;
                                           text = resultText;
                                       }));
    KV_LOGE("SetWifiCommand, testScene:%s, cmd:%s, buf:%s, resultCode:%d\n", sceneText.c_str(),
            cmdText.c_str(), text.c_str(), code);
    sceneText.Release();
    cmdText.Release();
    if (code != 0) return NewText(env, "setWifiCommand fail");  // intended: true is failure
    return NewText(env, text.c_str());
}
