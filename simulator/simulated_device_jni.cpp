// The native half of com.quorvin.kalvornii.simulated.SimulatedDevice, which checks what it is
// given.
#include <dlfcn.h>
#include <jni.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "common/modified_utf8.h"
#include "platform/android/java_text.h"
#include "simulator/device.h"
#include "simulator/device_start.h"

namespace {

using kalvorn::device::Answer;
using kalvorn::device::Backend;
using kalvorn::device::Device;
using kalvorn::device::Fault;
using kalvorn::device::Rule;
using kalvorn::host::Text;

std::string Unpacked(JNIEnv* env, jbyteArray bytes) {
    std::string text(static_cast<size_t>(env->GetArrayLength(bytes)), '\0');
    env->GetByteArrayRegion(bytes, 0, static_cast<jsize>(text.size()),
                            reinterpret_cast<jbyte*>(text.data()));
    return text;
}

/** A recorded call, in which zero bytes may stand. */
jstring JavaText(JNIEnv* env, std::string text) {
    for (size_t zero = 0; (zero = text.find('\0', zero)) != std::string::npos;) {
        text.replace(zero, 1, "\xc0\x80");
    }
    return env->NewStringUTF(kalvorn::ToModifiedUtf8(text.c_str()).c_str());
}

jobjectArray Names(JNIEnv* env, const std::vector<std::string>& names) {
    jobjectArray array = env->NewObjectArray(static_cast<jsize>(names.size()),
                                             env->FindClass("java/lang/String"), nullptr);
    for (size_t i = 0; i < names.size(); i++) {
        jstring name = JavaText(env, names[i]);
        env->SetObjectArrayElement(array, static_cast<jsize>(i), name);
        env->DeleteLocalRef(name);
    }
    return array;
}

/** What is wrong is the caller's fault. */
void Refuse(JNIEnv* env, const std::runtime_error& error) {
    env->ThrowNew(env->FindClass("java/lang/IllegalArgumentException"),
                  kalvorn::ToModifiedUtf8(error.what()).c_str());
}

bool IsLibraryLoaded() {
    void* library = dlopen("lib_kalvorn.so", RTLD_NOW | RTLD_NOLOAD);
    if (library != nullptr) dlclose(library);
    return library != nullptr;
}

}  // namespace

#define SIMULATED_DEVICE(result, name) \
    extern "C" JNIEXPORT result JNICALL Java_com_quorvin_kalvornii_simulated_SimulatedDevice_##name

SIMULATED_DEVICE(void, startAsNamed)(JNIEnv*, jclass) {
    kalvorn::simulated::StartAsNamed();
}

SIMULATED_DEVICE(void, startAs)(JNIEnv* env, jclass, jbyteArray device) {
    try {
        kalvorn::simulated::Start(Unpacked(env, device));
    } catch (const std::runtime_error& error) {
        Refuse(env, error);
    }
}

SIMULATED_DEVICE(jboolean, runsAs)(JNIEnv* env, jclass, jbyteArray device) {
    try {
        return kalvorn::simulated::Runs(Unpacked(env, device));
    } catch (const std::runtime_error& error) {
        Refuse(env, error);
        return JNI_FALSE;
    }
}

SIMULATED_DEVICE(jstring, path)(JNIEnv* env, jclass) {
    return JavaText(env, kalvorn::simulated::Path());
}

SIMULATED_DEVICE(jboolean, isLibraryLoaded)(JNIEnv*, jclass) {
    return IsLibraryLoaded();
}

SIMULATED_DEVICE(jobjectArray, serviceNames)(JNIEnv* env, jclass) {
    return Names(env, Device::Services());
}

SIMULATED_DEVICE(jobjectArray, methodNames)(JNIEnv* env, jclass) {
    return Names(env, kalvorn::device::MethodNames());
}

SIMULATED_DEVICE(jboolean, has)(JNIEnv* env, jclass, jint backend, jstring service) {
    return Device::Get().Has(static_cast<Backend>(backend), Text(env, service));
}

// The library watches each service that it holds, so the death link tells who holds it.
SIMULATED_DEVICE(jboolean, holds)(JNIEnv* env, jclass, jint backend, jstring service) {
    return Device::Get().DeathLinks(static_cast<Backend>(backend), Text(env, service)) > 0;
}

SIMULATED_DEVICE(jboolean, isProcessRunning)(JNIEnv* env, jclass, jstring service) {
    return kalvorn::simulated::IsProcessRunning(Text(env, service));
}

SIMULATED_DEVICE(jboolean, isRunning)(JNIEnv* env, jclass, jint backend, jstring service) {
    return Device::Get().IsRunning(static_cast<Backend>(backend), Text(env, service));
}

SIMULATED_DEVICE(void, kill)(JNIEnv* env, jclass, jint backend, jstring service) {
    Device::Get().At(static_cast<Backend>(backend), Text(env, service)).Kill();
}

SIMULATED_DEVICE(void, restart)(JNIEnv* env, jclass, jint backend, jstring service) {
    kalvorn::simulated::Restart(static_cast<Backend>(backend), Text(env, service));
}

SIMULATED_DEVICE(void, declare)(JNIEnv* env, jclass, jint backend, jstring service) {
    kalvorn::simulated::Declare(static_cast<Backend>(backend), Text(env, service));
}

SIMULATED_DEVICE(void, killProcessOf)(JNIEnv* env, jclass, jstring service) {
    Device::Get().KillProcess(Text(env, service));
}

SIMULATED_DEVICE(void, restartProcessOf)(JNIEnv* env, jclass, jstring service) {
    Device::Get().RestartProcess(Text(env, service));
}

SIMULATED_DEVICE(void, addRule)
(JNIEnv* env, jclass, jbyteArray calls, jint times, jlong delay, jint kind, jint code,
 jbyteArray text, jbyteArray detail) {
    enum { kAnswers, kFails, kHangs };  // and as usual
    try {
        Rule rule;
        rule.calls = kalvorn::device::ParseCallPattern(Unpacked(env, calls));
        rule.times = times;
        rule.delay = std::chrono::milliseconds(delay);
        rule.hangs = kind == kHangs;
        if (kind == kAnswers) {
            rule.answer = Answer(code, Unpacked(env, text), Unpacked(env, detail));
        }
        if (kind == kFails) rule.answer = Fault::kTransport;
        kalvorn::device::CheckRule(rule);
        Device::Get().Script(std::move(rule));
    } catch (const std::runtime_error& error) {
        Refuse(env, error);
    }
}

SIMULATED_DEVICE(void, release)(JNIEnv*, jobject) {
    Device::Get().Release();
}

SIMULATED_DEVICE(void, recordCalls)(JNIEnv*, jobject, jboolean record) {
    Device::Get().RecordCalls(record == JNI_TRUE);
}

SIMULATED_DEVICE(jobjectArray, takeCalls)(JNIEnv* env, jclass) {
    return Names(env, Device::Get().TakeCalls());
}

SIMULATED_DEVICE(jboolean, awaitHeard)(JNIEnv*, jclass, jint milliseconds) {
    return Device::AwaitHeard(milliseconds);
}

SIMULATED_DEVICE(jboolean, settle)(JNIEnv*, jclass, jint milliseconds) {
    return Device::Settle(milliseconds);
}

SIMULATED_DEVICE(void, restore)(JNIEnv*, jobject) {
    kalvorn::simulated::Restore(IsLibraryLoaded());
}

SIMULATED_DEVICE(void, stop)(JNIEnv*, jclass) {
    kalvorn::simulated::Stop();
}
