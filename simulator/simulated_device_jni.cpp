// The native half of com.quorvin.kalvornii.simulated.SimulatedDevice, which checks what it is
// given.
#include <dlfcn.h>
#include <jni.h>

#include <chrono>
#include <functional>
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
using kalvorn::device::CheckName;
using kalvorn::device::Device;
using kalvorn::device::Fault;
using kalvorn::device::Member;
using kalvorn::device::Rule;
using kalvorn::host::Text;

constexpr int kPatienceMs = 5000;

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

void Throw(JNIEnv* env, const char* exception, const std::string& message) {
    env->ThrowNew(env->FindClass(exception), kalvorn::ToModifiedUtf8(message.c_str()).c_str());
}

/** What is wrong is the caller's fault. */
void Checked(JNIEnv* env, const std::function<void()>& action) {
    try {
        action();
    } catch (const std::runtime_error& error) {
        Throw(env, "java/lang/IllegalArgumentException", error.what());
    }
}

std::vector<std::string> ServicesThat(const std::function<bool(const std::string&)>& fit) {
    std::vector<std::string> services;
    for (const std::string& name : Device::Services()) {
        if (fit(name)) services.push_back(name);
    }
    return services;
}

std::string ServiceNamed(JNIEnv* env, jstring service) {
    std::string name = Text(env, service);
    CheckName("service", name, Device::Services());
    return name;
}

/** One that the backend has, or that runs over it. */
Member MemberNamed(JNIEnv* env, jint number, jstring service, bool running) {
    const auto backend = static_cast<Backend>(number);
    Member member{backend, Text(env, service)};
    CheckName(std::string(running ? "running " : "") + "service over " +
                      (backend == Backend::kAidl ? "AIDL" : "HIDL"),
              member.name, ServicesThat([&](const std::string& name) {
                  return running ? Device::Get().IsRunning(backend, name)
                                 : Device::Get().Has(backend, name);
              }));
    return member;
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
    Checked(env, [&] {
        const std::string name = Unpacked(env, device);
        if (!IsLibraryLoaded()) {
            kalvorn::simulated::Start(name);
        } else if (kalvorn::simulated::Runs(name)) {
            kalvorn::simulated::Restore(true);
        } else {
            Throw(env, "java/lang/IllegalStateException",
                  "The library is loaded, on the device " + kalvorn::simulated::Path() +
                          ": start another before KvNativeInterface is first used, or with"
                          " ./simulate --device");
        }
    });
}

SIMULATED_DEVICE(jobjectArray, serviceNames)(JNIEnv* env, jclass) {
    return Names(env, Device::Services());
}

// The library watches each service that it holds, so the death link tells who holds it.
SIMULATED_DEVICE(jint, backendOf)(JNIEnv* env, jclass, jstring service, jboolean held) {
    jint found = -1;
    Checked(env, [&] {
        const std::string name = ServiceNamed(env, service);
        for (const Backend backend : {Backend::kHidl, Backend::kAidl}) {
            const Device& device = Device::Get();
            const bool is = held == JNI_TRUE ? device.DeathLinks(backend, name) > 0
                                             : device.IsRunning(backend, name);
            if (is) found = static_cast<jint>(backend);
        }
    });
    return found;
}

SIMULATED_DEVICE(void, kill)(JNIEnv* env, jclass, jint backend, jstring service) {
    Checked(env, [&] {
        const Member member = MemberNamed(env, backend, service, /*running=*/true);
        Device::Get().At(member.backend, member.name).Kill();
        Device::AwaitHeard(kPatienceMs);
    });
}

SIMULATED_DEVICE(void, restart)(JNIEnv* env, jclass, jint backend, jstring service) {
    Checked(env, [&] {
        const Member member = MemberNamed(env, backend, service, /*running=*/false);
        kalvorn::simulated::Restart(member.backend, member.name);
    });
}

SIMULATED_DEVICE(void, declare)(JNIEnv* env, jclass, jint backend, jstring service) {
    Checked(env, [&] {
        const Member member = MemberNamed(env, backend, service, /*running=*/false);
        kalvorn::simulated::Declare(member.backend, member.name);
    });
}

SIMULATED_DEVICE(void, killProcessOf)(JNIEnv* env, jclass, jstring service) {
    Checked(env, [&] {
        const std::string name = ServiceNamed(env, service);
        CheckName("running process of service", name,
                  ServicesThat(kalvorn::simulated::IsProcessRunning));
        Device::Get().KillProcess(name);
        Device::AwaitHeard(kPatienceMs);
    });
}

SIMULATED_DEVICE(void, restartProcessOf)(JNIEnv* env, jclass, jstring service) {
    Checked(env, [&] { Device::Get().RestartProcess(ServiceNamed(env, service)); });
}

SIMULATED_DEVICE(void, addRule)
(JNIEnv* env, jclass, jbyteArray calls, jint times, jlong delay, jint kind, jint code,
 jbyteArray text, jbyteArray detail) {
    enum { kAnswers, kFails, kHangs };  // and as usual
    Checked(env, [&] {
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
    });
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

SIMULATED_DEVICE(jboolean, settle)(JNIEnv*, jclass, jint milliseconds) {
    return Device::Settle(milliseconds);
}

SIMULATED_DEVICE(void, restore)(JNIEnv*, jobject) {
    kalvorn::simulated::Restore(IsLibraryLoaded());
}

SIMULATED_DEVICE(void, stop)(JNIEnv*, jclass) {
    kalvorn::simulated::Stop();
}
