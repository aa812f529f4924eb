#include <string>

#include "common/bounds_checked.h"
#include "common/failure.h"
#include "common/java_values.h"
#include "common/service_constants.h"
#include "hidl/services.h"

using namespace kalvorn;

jstring native_hidl::SocTest(JNIEnv* env, jobject, jstring testScene, jstring para) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    JavaText sceneText, paraText;
    if (!sceneText.Read(env, testScene, "testScene") || !paraText.Read(env, para, "para")) {
        return InvalidService(env);
    }
    const std::string scene = sceneText.c_str();  // outlives the release
    int32_t code = 0;
    hidl_string out;
    DropStatus(factory->socTest(Borrow(scene.c_str()), Borrow(paraText.c_str()),
                                StoreIn(&code, &out)));
    KV_LOGE("soc test value = %d, testScene = %s, para = %s, out = %s\n", code, scene.c_str(),
            paraText.c_str(), out.c_str());
    sceneText.Release();
    paraText.Release();
    if (scene == "secure_flash" || scene == "secure_weaver") {
        KV_LOGE("current test scene is %s\n", scene.c_str());
        char text[16];
        sprintf_s(text, sizeof(text), "%d", code);
        return NewText(env, text);
    }
    if (code == 0 && out.empty()) {
        KV_LOGE("SocTest value is 0 but out is empty, will set success\n");
        return NewText(env, "success:value=0");
    }
    return NewText(env, out.c_str());
}

jstring native_hidl::DdrTest(JNIEnv* env, jobject, jstring testScene, jstring para,
                             jstring status) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    JavaText sceneText, paraText, statusText;
    if (!sceneText.Read(env, testScene, "testScene") || !paraText.Read(env, para, "para") ||
        !statusText.Read(env, status, "status")) {
        return InvalidService(env);
    }
    const std::string statusWord = statusText.c_str();  // outlives the release
    int32_t code = 0;
    hidl_string out;
    DropStatus(factory->ddrTest(Borrow(sceneText.c_str()), Borrow(paraText.c_str()),
                                Borrow(statusWord.c_str()), StoreIn(&code, &out)));
    KV_LOGE("ddr test value = %d, testScene = %s, para = %s, status = %s, out = %s\n", code,
            sceneText.c_str(), paraText.c_str(), statusWord.c_str(), out.c_str());
    sceneText.Release();
    paraText.Release();
    statusText.Release();
    if (statusWord == "getstate") return NewText(env, code != 0 ? "done" : "busy");
    if (code == 0) {
        KV_LOGE("DdrTest--> ddr test success\n");
        return NewText(env, "success");
    }
    if (code == -1) {
        KV_LOGE("DdrTest--> fail to get ddr test result\n");
        return NewText(env, "get ddr result fail");
    }
    return NewText(env, out.c_str());
}

jstring native_hidl::EmmcTest(JNIEnv* env, jobject, jstring testScene, jstring para,
                              jstring status) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    JavaText sceneText, paraText, statusText;
    if (!sceneText.Read(env, testScene, "testScene") || !paraText.Read(env, para, "para") ||
        !statusText.Read(env, status, "status")) {
        return InvalidService(env);
    }
    int32_t code = 0;
    hidl_string out;
    DropStatus(factory->emmcTest(Borrow(sceneText.c_str()), Borrow(paraText.c_str()),
                                 Borrow(statusText.c_str()), StoreIn(&code, &out)));
    KV_LOGE("emmc test value = %d, testScene = %s, para = %s, status = %s, out = %s\n", code,
            sceneText.c_str(), paraText.c_str(), statusText.c_str(), out.c_str());
    sceneText.Release();
    paraText.Release();
    statusText.Release();
    if (code == 1) {
        KV_LOGE("EmmcTest--> emmc test fail\n");
        return NewText(env, "failed");
    }
    if (code == 0) {
        KV_LOGE("EmmcTest--> emmc test success\n");
        return NewText(env, "success");
    }
    if (code == -1) {
        KV_LOGE("EmmcTest--> fail to get emmc test result\n");
        return NewText(env, "get emmc result fail");
    }
    return NewText(env, out.c_str());
}

int native_hidl::StorageJoblessTest(JNIEnv* env, jobject, jstring testScene, jstring para) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText sceneText, paraText;
    if (!sceneText.Read(env, testScene, "testScene") || !paraText.Read(env, para, "para")) {
        return kServiceAbsent;
    }
    int32_t code = 0;
    hidl_string out;
    DropStatus(factory->storageJoblessTest(Borrow(sceneText.c_str()), Borrow(paraText.c_str()),
                                           StoreIn(&code, &out)));
    KV_LOGE("storage jobless test value = %d, testScene = %s, para = %s, out = %s\n", code,
            sceneText.c_str(), paraText.c_str(), out.c_str());
    SetStaticText(env, "currentValue", out.c_str());
    return code;
}

int native_hidl::StorageTestJudge(JNIEnv* env, jobject, jstring testScene) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText sceneText;
    if (!sceneText.Read(env, testScene, "testScene")) return kServiceAbsent;
    int32_t code = 0;
    hidl_string out;
    DropStatus(factory->storageTestJudge(Borrow(sceneText.c_str()), StoreIn(&code, &out)));
    KV_LOGE("storage test judge value = %d, testScene = %s, out = %s\n", code, sceneText.c_str(),
            out.c_str());
    SetStaticText(env, "currentValue", out.c_str());
    return code;
}

jstring native_hidl::I2cTest(JNIEnv* env, jobject) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    int32_t code = 0;
    hidl_string checkResult, detail;
    DropStatus(factory->i2cTest(kMaxReplySize, [&](int32_t resultCode, const hidl_string& result,
                                                   const hidl_string& text) {
        code = resultCode;
        checkResult = result;
        detail = text;
    }));
    KV_LOGE("i2c test value = %d, checkResult = %s, out = %s\n", code, checkResult.c_str(),
            detail.c_str());
    if (code == -1) {
        KV_LOGE("failed to get i2c checking info");
        return NewText(env, "get i2c result error");
    }
    SetStaticText(env, "i2cInfo", detail.c_str());
    KV_LOGE("succeed to get i2c checking info");
    return NewText(env, checkResult.c_str());
}

int native_hidl::DdrMapperTest(JNIEnv* env, jobject, jstring status) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText statusText;
    if (!statusText.Read(env, status, "status")) return kServiceAbsent;
    int32_t code = 0;
    hidl_string out;
    DropStatus(factory->ddrMapperTest(Borrow(statusText.c_str()), StoreIn(&code, &out)));
    KV_LOGE("ddr mapper value = %d, status = %s, out = %s\n", code, statusText.c_str(),
            out.c_str());
    return code;
}

jstring native_hidl::GetSocInfo(JNIEnv* env, jobject, jstring testScene) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    JavaText sceneText;
    if (!sceneText.Read(env, testScene, "testScene")) return InvalidService(env);
    int32_t code = 0;
    hidl_string out;
    DropStatus(factory->getSocInfo(Borrow(sceneText.c_str()), StoreIn(&code, &out)));
    KV_LOGE("get soc info value = %d, testScene = %s, out = %s\n", code, sceneText.c_str(),
            out.c_str());
    sceneText.Release();
    return NewText(env, code == 0 ? out.c_str() : "");  // intended: unlike AIDL
}

int native_hidl::SetSocInfo(JNIEnv* env, jobject, jstring testScene, jstring para) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText sceneText, paraText;
    if (!sceneText.Read(env, testScene, "testScene") || !paraText.Read(env, para, "para")) {
        return kServiceAbsent;
    }
    const int32_t result = factory->setSocInfo(Borrow(sceneText.c_str()), Borrow(paraText.c_str()));
    KV_LOGE("set soc info value = %d, testScene = %s, para = %s\n", result, sceneText.c_str(),
            paraText.c_str());
    return result;
}

jstring native_hidl::FpgaTest(JNIEnv* env, jobject, jstring testScene) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    JavaText sceneText;
    if (!sceneText.Read(env, testScene, "testScene")) return InvalidService(env);
    int32_t code = 0;
    hidl_string out;
    DropStatus(factory->fpgaTest(Borrow(sceneText.c_str()), kMaxReplySize, StoreIn(&code, &out)));
    KV_LOGE("fpga test value = %d, testScene = %s, out = %s\n", code, sceneText.c_str(),
            out.c_str());
    sceneText.Release();
    return NewText(env, out.c_str());
}

// intended: the board name is what the service calls its version name.
jstring native_hidl::GetBoardName(JNIEnv* env, jobject) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    int32_t code = 0;
    hidl_string out;
    DropStatus(factory->getVersionName(StoreIn(&code, &out)));
    KV_LOGE("get version out = %s\n", out.c_str());
    return NewText(env, code == 0 ? out.c_str() : "");  // intended: unlike AIDL
}

int native_hidl::OemWatchdogSetFunc(JNIEnv* env, jobject, jstring cmd) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText cmdText;
    if (!cmdText.Read(env, cmd, "cmd")) return kServiceAbsent;
    int32_t code = 0;
    hidl_string out;
    DropStatus(factory->setWatchdog(Borrow(cmdText.c_str()), StoreIn(&code, &out)));
    KV_LOGE("set watchdog value = %d, cmd = %s, out = %s\n", code, cmdText.c_str(), out.c_str());
    return code;
}

int native_hidl::OemJtagtosdSetFunc(JNIEnv* env, jobject, jstring cmd) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    JavaText cmdText;
    if (!cmdText.Read(env, cmd, "cmd")) return kServiceAbsent;
    int32_t code = 0;
    hidl_string out;
    DropStatus(factory->setJtagtosd(Borrow(cmdText.c_str()), StoreIn(&code, &out)));
    KV_LOGE("set jtagtosd value = %d, cmd = %s, out = %s\n", code, cmdText.c_str(), out.c_str());
    return code;
}

// The service is looked at only after the first line, unlike AIDL.
jstring native_hidl::KvSocVoltageOffsetById(JNIEnv* env, jobject, int socId) {
    KV_LOGD("KvSocVoltageOffsetById, setSocID is %d", socId);
    const auto factory = HeldFactory();
    if (factory == nullptr) return InvalidService(env);
    int32_t code = 0;
    hidl_string out;
    DropStatus(factory->socVoltageOffsetById(socId, StoreIn(&code, &out)));
    KV_LOGD("KvSocVoltageOffsetById resultCode:%d, result:%s", code, out.c_str());
    return NewText(env, out.c_str());
}
