#include <android/binder_ibinder.h>
#include <android/binder_manager.h>

#include <memory>
#include <string>
#include <vector>

#include "aidl/services.h"
#include "common/failure.h"
#include "common/hex.h"
#include "common/java_values.h"
#include "common/service_constants.h"

namespace {

constexpr int32_t kAnySensor = -1;
constexpr int32_t kNoUser = -1000;

}  // namespace

namespace native_aidl {

int InitFingerprintService() {
    KV_LOGI("InitAidlFingerprintService");
    if (held::IsHeld(g_aidlFingerprint)) return 1;
    const std::string name = std::string(IFingerprint::descriptor) + "/default";
    if (!AServiceManager_isDeclared(name.c_str())) {
        KV_LOGE("%s is not Declared\n", name.c_str());
        return 0;
    }
    const ndk::SpAIBinder binder(AServiceManager_waitForService(name.c_str()));
    if (binder.get() == nullptr) {
        KV_LOGE("Could not connect to declared sensors AIDL HAL");  // intended: "sensors"
        return 0;
    }
    const std::shared_ptr<IFingerprint> fingerprint = IFingerprint::fromBinder(binder);
    if (fingerprint != nullptr && !held::Publish(&g_aidlFingerprint, fingerprint)) {
        return 1;  // another connector was first, and asks for the session
    }
    std::shared_ptr<ISession> session;
    if (fingerprint != nullptr) {
        fingerprint->createSession(kAnySensor, kNoUser, g_aidlFingerprintSessionCallback, &session);
    }
    if (session == nullptr) {
        KV_LOGE("g_aidlFingerprintSession is null");
        return 0;
    }
    // Empty until now: a teardown empties it before the interface, which is this connector's.
    std::atomic_store(&g_aidlFingerprintSession, session);
    KV_LOGI("g_aidlFingerprintSession linkToDeath");
    AIBinder_linkToDeath(session->asBinder().get(), g_deathRecipient.get(), session.get());
    // A teardown that took the session before it was linked had nothing to unlink.
    if (held::Copy(g_aidlFingerprintSession) != session) UnlinkSession(session);
    return 1;
}

}  // namespace native_aidl

int native_aidl::SendCmdToFingerprintHal(JNIEnv* env, jobject, int cmd, jbyteArray rawData) {
    const std::shared_ptr<ISession> session = held::Copy(g_aidlFingerprintSession);
    if (session == nullptr) {
        KV_LOGE("g_aidlFingerprintSession is null");
        return kServiceAbsent;
    }
    KV_LOGI("cmd = %d", cmd);
    int32_t ret = -1;
    if (rawData == nullptr) {
        session->sendCmdToHal(cmd, &ret);
        return ret;
    }
    const jsize length = env->GetArrayLength(rawData);
    KV_LOGI("SendCmdToFingerprintHal rawDataLength: %d", length);
    jbyte* elements = env->GetByteArrayElements(rawData, nullptr);
    if (elements == nullptr) {
        env->ExceptionClear();
        KV_LOGE("SendCmdToFingerprintHal fail, rawDataArray is null");
        return kServiceAbsent;
    }
    // intended: the data is measured and copied, but the service takes the command alone
    const std::vector<uint8_t> data(elements, elements + length);
    KV_LOGI("SetCmdToFingerprintHal before");
    session->sendCmdToHal(cmd, &ret);
    KV_LOGI("SetCmdToFingerprintHal ret = %d", ret);
    env->ReleaseByteArrayElements(rawData, elements, JNI_ABORT);
    return ret;
}

int native_aidl::GetVerifySignatureResult(JNIEnv* env, jobject, jbyteArray signature) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    std::vector<char> bytes;
    if (!CopyBytes(env, signature, "signature", &bytes)) return kServiceAbsent;
    std::string text;
    if (ConvertBinToString(bytes, &text) != 0) {
        KV_LOGE("convertBinToString is failed");
        return kLocalFailure;
    }
    int32_t ret = kServiceAbsent;
    factory->writeNv(SignatureNvId, text, &ret);
    KV_LOGI("getVerifySignatureResult, ret: %d", ret);
    return ret;
}
