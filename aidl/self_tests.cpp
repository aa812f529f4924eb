#include <string>

#include "aidl/services.h"
#include "common/bounds_checked.h"
#include "common/failure.h"
#include "common/java_values.h"
#include "common/service_constants.h"

using namespace kalvorn;

using vendor::zantor::hardware::qxfactoryinterface::IFacIntStr;
using vendor::zantor::hardware::qxfactoryinterface::IFacIntStrStr;

jstring native_aidl::SocTest(JNIEnv* env, jobject, jstring testScene, jstring para) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    JavaText sceneText, paraText;
    if (!sceneText.Read(env, testScene, "testScene") || !paraText.Read(env, para, "para")) {
        return InvalidService(env);
    }
    const std::string scene = sceneText.c_str();  // outlives the release
    IFacIntStr reply{};
    factory->socTest(scene, paraText.c_str(), &reply);
    KV_LOGI("soc test result = %d, testScene = %s, para = %s, out = %s\n", reply.resultCode,
            scene.c_str(), paraText.c_str(), reply.text.c_str());
    sceneText.Release();
    paraText.Release();
    if (scene == "secure_flash" || scene == "secure_weaver") {
        KV_LOGI("current test Scene is %s\n", scene.c_str());
        char code[16];
        sprintf_s(code, sizeof(code), "%d", reply.resultCode);
        return NewText(env, code);
    }
    if (reply.resultCode == 0 && reply.text.empty()) {
        KV_LOGI("socTest value is 0 but out is empty, will set success\n");
        return NewText(env, "success:value=0");
    }
    return NewText(env, reply.text);
}

jstring native_aidl::DdrTest(JNIEnv* env, jobject, jstring testScene, jstring para,
                             jstring status) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    JavaText sceneText, paraText, statusText;
    if (!sceneText.Read(env, testScene, "testScene") || !paraText.Read(env, para, "para") ||
        !statusText.Read(env, status, "status")) {
        return InvalidService(env);
    }
    const std::string statusWord = statusText.c_str();  // outlives the release
    IFacIntStr reply{};
    factory->ddrTest(sceneText.c_str(), paraText.c_str(), statusWord, &reply);
    KV_LOGI("ddr test result = %d, testScene = %s, para = %s, status = %s, out = %s\n",
            reply.resultCode, sceneText.c_str(), paraText.c_str(), statusWord.c_str(),
            reply.text.c_str());
    sceneText.Release();
    paraText.Release();
    statusText.Release();
    if (statusWord == "getstate") return NewText(env, reply.resultCode != 0 ? "done" : "busy");
    if (reply.resultCode == 0) {
        KV_LOGI("DdrTest--> ddr test Success\n");
        return NewText(env, "success");
    }
    if (reply.resultCode == -1) {
        KV_LOGE("DdrTest--> Fail to get ddr test result\n");
        return NewText(env, "get ddr result fail");
    }
    return NewText(env, reply.text);
}

jstring native_aidl::EmmcTest(JNIEnv* env, jobject, jstring testScene, jstring para,
                              jstring status) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    JavaText sceneText, paraText, statusText;
    if (!sceneText.Read(env, testScene, "testScene") || !paraText.Read(env, para, "para") ||
        !statusText.Read(env, status, "status")) {
        return InvalidService(env);
    }
    IFacIntStr reply{};
    factory->emmcTest(sceneText.c_str(), paraText.c_str(), statusText.c_str(), &reply);
    KV_LOGI("emmc test result = %d, testScene = %s, para = %s, status = %s, out = %s\n",
            reply.resultCode, sceneText.c_str(), paraText.c_str(), statusText.c_str(),
            reply.text.c_str());
    sceneText.Release();
    paraText.Release();
    statusText.Release();
    if (reply.resultCode == 1) {
        KV_LOGE("emmcTest--> emmc test fail\n");
        return NewText(env, "failed");
    }
    if (reply.resultCode == 0) {
        KV_LOGI("emmcTest--> emmc test success\n");
        return NewText(env, "success");
    }
    if (reply.resultCode == -1) {
        KV_LOGE("emmcTest--> fail to get emmc test result\n");
        return NewText(env, "get emmc result fail");
    }
    return NewText(env, reply.text);
}

int native_aidl::StorageJoblessTest(JNIEnv* env, jobject, jstring testScene, jstring para) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText sceneText, paraText;
    if (!sceneText.Read(env, testScene, "testScene") || !paraText.Read(env, para, "para")) {
        return kServiceAbsent;
    }
    IFacIntStr reply{};
    factory->storageJoblessTest(sceneText.c_str(), paraText.c_str(), &reply);
    KV_LOGI("Storage jobless test result = %d, testScene = %s, para = %s, out = %s\n",
            reply.resultCode, sceneText.c_str(), paraText.c_str(), reply.text.c_str());
    SetStaticText(env, "currentValue", reply.text.c_str());
    return reply.resultCode;
}

int native_aidl::StorageTestJudge(JNIEnv* env, jobject, jstring testScene) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText sceneText;
    if (!sceneText.Read(env, testScene, "testScene")) return kServiceAbsent;
    IFacIntStr reply{};
    factory->storageTestJudge(sceneText.c_str(), &reply);
    KV_LOGI("storage test judge res = %d, testScene = %s, out = %s\n", reply.resultCode,
            sceneText.c_str(), reply.text.c_str());
    SetStaticText(env, "currentValue", reply.text.c_str());
    return reply.resultCode;
}

jstring native_aidl::I2cTest(JNIEnv* env, jobject) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    IFacIntStrStr reply{};
    factory->i2cTest(kMaxReplySize, &reply);
    KV_LOGI("i2c test values = %d, checkResult = %s, out = %s\n", reply.resultCode,
            reply.checkResult.c_str(), reply.detail.c_str());
    if (reply.resultCode == -1) {
        KV_LOGE("Failed to get i2c checking info");
        return NewText(env, "Get i2c result error");
    }
    SetStaticText(env, "i2cInfo", reply.detail.c_str());
    KV_LOGI("Succeed to get i2c checking info");
    return NewText(env, reply.checkResult);
}

int native_aidl::DdrMapperTest(JNIEnv* env, jobject, jstring status) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText statusText;
    if (!statusText.Read(env, status, "status")) return kServiceAbsent;
    IFacIntStr reply{};
    factory->ddrMapperTest(statusText.c_str(), &reply);
    KV_LOGI("ddr mapper result = %d, status = %s, out = %s\n", reply.resultCode, statusText.c_str(),
            reply.text.c_str());
    return reply.resultCode;
}

jstring native_aidl::GetSocInfo(JNIEnv* env, jobject, jstring testScene) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    JavaText sceneText;
    if (!sceneText.Read(env, testScene, "testScene")) return InvalidService(env);
    IFacIntStr reply{};
    factory->getSocInfo(sceneText.c_str(), &reply);
    KV_LOGI("Get soc info result = %d, testScene = %s, out = %s\n", reply.resultCode,
            sceneText.c_str(), reply.text.c_str());
    if (reply.resultCode != 0) KV_LOGE("Get soc info failed");
    sceneText.Release();
    return NewText(env, reply.text);  // intended: the text whatever the code, unlike HIDL
}

int native_aidl::SetSocInfo(JNIEnv* env, jobject, jstring testScene, jstring para) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText sceneText, paraText;
    if (!sceneText.Read(env, testScene, "testScene") || !paraText.Read(env, para, "para")) {
        return kServiceAbsent;
    }
    int32_t result = 0;
    factory->setSocInfo(sceneText.c_str(), paraText.c_str(), &result);
    KV_LOGI("set soc info result = %d, testScene = %s, para = %s\n", result, sceneText.c_str(),
            paraText.c_str());
    return result;
}

jstring native_aidl::FpgaTest(JNIEnv* env, jobject, jstring testScene) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    JavaText sceneText;
    if (!sceneText.Read(env, testScene, "testScene")) return InvalidService(env);
    IFacIntStr reply{};
    factory->fpgaTest(sceneText.c_str(), kMaxReplySize, &reply);
    KV_LOGI("Fpga test value = %d, testScene = %s, out = %s\n", reply.resultCode, sceneText.c_str(),
            reply.text.c_str());
    sceneText.Release();
    return NewText(env, reply.text);
}

// intended: the board name is what the service calls its version name.
jstring native_aidl::GetBoardName(JNIEnv* env, jobject) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    IFacIntStr reply{};
    factory->getVersionName(&reply);
    KV_LOGI("Get version name = %s\n", reply.text.c_str());
    if (reply.resultCode != 0) KV_LOGE("Get version failed");
    return NewText(env, reply.text);  // intended: the text whatever the code, unlike HIDL
}

int native_aidl::OemWatchdogSetFunc(JNIEnv* env, jobject, jstring cmd) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText cmdText;
    if (!cmdText.Read(env, cmd, "cmd")) return kServiceAbsent;
    IFacIntStr reply{};
    factory->setWatchdog(cmdText.c_str(), &reply);
    KV_LOGI("Set watchdog result = %d, cmd = %s, out = %s\n", reply.resultCode, cmdText.c_str(),
            reply.text.c_str());
    return reply.resultCode;
}

int native_aidl::OemJtagtosdSetFunc(JNIEnv* env, jobject, jstring cmd) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText cmdText;
    if (!cmdText.Read(env, cmd, "cmd")) return kServiceAbsent;
    IFacIntStr reply{};
    factory->setJtagtosd(cmdText.c_str(), &reply);
    KV_LOGI("set jtagtosd result = %d, cmd = %s, out = %s\n", reply.resultCode, cmdText.c_str(),
            reply.text.c_str());
    return reply.resultCode;
}

jstring native_aidl::KvSocVoltageOffsetById(JNIEnv* env, jobject, int socId) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    KV_LOGI("kvSocVoltageOffsetById, setSocID is %d", socId);
    IFacIntStr reply{};
    factory->socVoltageOffsetById(socId, &reply);
    KV_LOGI("kvSocVoltageOffsetById resultCode:%d, result:%s", reply.resultCode,
            reply.text.c_str());
    return NewText(env, reply.text);
}
