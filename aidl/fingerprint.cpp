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

using namespace kalvorn;

namespace native_aidl {

namespace {

constexpr int32_t kAnySensor = -1;
constexpr int32_t kNoUser = -1000;

/** Null when the service opens none, or has died. */
std::shared_ptr<ISession> OpenSession(const std::shared_ptr<IFingerprint>& fingerprint) {
    std::shared_ptr<ISession> session;
    if (fingerprint != nullptr) {
        fingerprint->createSession(kAnySensor, kNoUser, g_aidlFingerprintSessionCallback, &session);
    }
    return session;
}

/**
 * Links and holds the session of the interface that this connector holds. False when it has died
 * meanwhile: its notice may have come when there was nothing to take, so both are taken back.
 */
bool Connect(const std::shared_ptr<ISession>& session, int tries) {
    KV_LOGI("g_aidlFingerprintSession linkToDeath");
    AIBinder* const binder = session->asBinder().get();
    const bool isLinked = LinkSession(session);
    // Empty until now: a teardown empties it before the interface, which is this connector's.
    std::atomic_store(&g_aidlFingerprintSession, session);
    if (tries >= held::kTries || AIBinder_ping(binder) == STATUS_OK) return true;
    if (held::TakeBack(&g_aidlFingerprintSession, session)) {
        if (isLinked) UnlinkSession(session);
        held::Take(&g_aidlFingerprint);  // without a session no teardown takes it
    }
    return false;
}

}  // namespace

int InitFingerprintService() {
    KV_LOGI("InitAidlFingerprintService");
    for (int tries = 1; !held::IsHeld(g_aidlFingerprint); tries++) {
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
        const std::shared_ptr<ISession> session = OpenSession(fingerprint);
        if (session != nullptr) {
            if (Connect(session, tries)) return 1;
        } else if (tries >= held::kTries || AIBinder_ping(binder.get()) == STATUS_OK) {
            // intended: the interface of a living service stays, though it opens no session
            KV_LOGE("g_aidlFingerprintSession is null");
            return 0;
        } else if (fingerprint != nullptr) {
            held::Take(&g_aidlFingerprint);
        }
        usleep(held::kPause);
    }
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
