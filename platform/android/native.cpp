// The native half of the host's android.os.ServiceManager and HwBinder. What was found is held for
// as long as the process lives, and so is who is told of its death.
#include <binder/IServiceManager.h>
#include <hidl/HostInterface.h>
#include <jni.h>
#include <stdlib.h>

#include <algorithm>
#include <atomic>
#include <deque>
#include <mutex>
#include <vector>

#include "platform/android/java_text.h"

namespace {

using android::IBinder;
using android::RefBase;
using android::sp;
using android::hardware::hidl_death_recipient;
using android::hidl::base::V1_0::IBase;
using kalvorn::host::Text;

struct Held {
    sp<IBinder> aidl;
    sp<IBase> hidl;
};

std::mutex g_lock;
std::deque<Held> g_held;  // by their numbers in Java, which begin at 1
std::vector<sp<RefBase>> g_recipients;
std::atomic<bool> g_ending{false};  // no thread gets into the virtual machine any more

/** The service's number; 0 for none. */
jlong NumberOf(const Held& service) {
    if (service.aidl == nullptr && service.hidl == nullptr) return 0;
    const std::lock_guard lock(g_lock);
    const auto isKnown = [&](const Held& known) {
        return known.aidl == service.aidl && known.hidl == service.hidl;
    };
    const auto found = std::find_if(g_held.begin(), g_held.end(), isKnown);
    const auto number = std::distance(g_held.begin(), found) + 1;
    if (found == g_held.end()) g_held.push_back(service);
    return number;
}

const Held& HeldAs(jlong number) {
    const std::lock_guard lock(g_lock);
    return g_held[static_cast<size_t>(number) - 1];
}

class Recipient : public IBinder::DeathRecipient, public hidl_death_recipient {
  public:
    Recipient(JNIEnv* env, jobject onDeath) : mOnDeath(env->NewGlobalRef(onDeath)) {
        env->GetJavaVM(&mVm);
    }

    void binderDied(const android::wp<IBinder>&) override { tell(); }
    void serviceDied(uint64_t, const android::wp<IBase>&) override { tell(); }

  private:
    void tell() {
        if (g_ending) return;
        JNIEnv* env = nullptr;
        mVm->AttachCurrentThreadAsDaemon(&env, nullptr);
        jclass runnable = env->FindClass("java/lang/Runnable");
        env->CallVoidMethod(mOnDeath, env->GetMethodID(runnable, "run", "()V"));
        env->DeleteLocalRef(runnable);
    }

    JavaVM* mVm = nullptr;
    const jobject mOnDeath;
};

}  // namespace

#define NATIVE(result, name) extern "C" JNIEXPORT result JNICALL Java_android_os_Native_##name

NATIVE(jint, log)(JNIEnv* env, jclass, jint priority, jstring tag, jstring message) {
    return __android_log_write(priority, Text(env, tag).c_str(), Text(env, message).c_str());
}

NATIVE(jlong, find)(JNIEnv* env, jclass, jstring name) {
    const android::String16 wanted(Text(env, name).c_str());
    const sp<IBinder> found = android::defaultServiceManager()->checkService(wanted);
    return NumberOf({found, nullptr});
}

NATIVE(jlong, findHidl)(JNIEnv* env, jclass, jstring descriptor, jstring instance) {
    const sp<IBase> found = kalvorn::host::hidl_runtime::FindService(
            Text(env, descriptor).c_str(), Text(env, instance), /*wait=*/false);
    return NumberOf({nullptr, found});
}

NATIVE(jboolean, isAlive)(JNIEnv*, jclass, jlong service) {
    return HeldAs(service).aidl->isBinderAlive();
}

NATIVE(jboolean, link)(JNIEnv* env, jclass, jlong service, jobject onDeath) {
    const Held& held = HeldAs(service);
    static const int registered = atexit([] { g_ending = true; });
    static_cast<void>(registered);
    const sp<Recipient> recipient = new Recipient(env, onDeath);
    {
        const std::lock_guard lock(g_lock);
        g_recipients.push_back(recipient);
    }
    if (held.aidl != nullptr) return held.aidl->linkToDeath(recipient) == android::OK;
    const android::hardware::Return<bool> linked = held.hidl->linkToDeath(recipient, 0);
    return linked.isOk() && linked;
}
