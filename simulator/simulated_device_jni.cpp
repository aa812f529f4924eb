// The native half of com.quorvin.kalvornii.simulated.SimulatedDevice, which checks what it is
// given.
#include <dlfcn.h>
#include <jni.h>

#include <string>
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
using kalvorn::host::Text;

struct ServiceMethod {
    const char* name;
    bool givesOneNumberOverHidl;
};

constexpr ServiceMethod kMethods[] = {
#include "service_methods.inc"
};

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

jobjectArray MethodNames(JNIEnv* env, bool all) {
    std::vector<std::string> names;
    for (const ServiceMethod& method : kMethods) {
        if (all || method.givesOneNumberOverHidl) names.emplace_back(method.name);
    }
    return Names(env, names);
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

SIMULATED_DEVICE(void, startProfile)(JNIEnv* env, jclass, jstring profile) {
    kalvorn::simulated::Start(Text(env, profile));
}

SIMULATED_DEVICE(jstring, profile)(JNIEnv* env, jclass) {
    return env->NewStringUTF(kalvorn::simulated::Profile().c_str());
}

SIMULATED_DEVICE(jboolean, isLibraryLoaded)(JNIEnv*, jclass) {
    return IsLibraryLoaded();
}

SIMULATED_DEVICE(jobjectArray, serviceNames)(JNIEnv* env, jclass) {
    return Names(env, Device::Services());
}

SIMULATED_DEVICE(jobjectArray, methodNames)(JNIEnv* env, jclass) {
    return MethodNames(env, true);
}

SIMULATED_DEVICE(jobjectArray, methodsOfOneNumber)(JNIEnv* env, jclass) {
    return MethodNames(env, false);
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

SIMULATED_DEVICE(void, answer)
(JNIEnv* env, jclass, jstring method, jint code, jbyteArray text, jbyteArray detail) {
    Device::Get().Script(Text(env, method),
                         Answer(code, Unpacked(env, text), Unpacked(env, detail)));
}

SIMULATED_DEVICE(void, failNext)(JNIEnv* env, jclass, jint backend, jstring method) {
    Device::Get().Script(static_cast<Backend>(backend), Text(env, method), Fault::kTransport);
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
