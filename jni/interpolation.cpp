#include <dlfcn.h>

#include "common/failure.h"
#include "common/log.h"
#include "jni/local_methods.h"

using namespace kalvorn;

namespace {

// The fixed value 2, which RTLD_NOW does not give everywhere: it is 2 with glibc and on 64-bit
// Android, but 0 on 32-bit Android, where 2 is RTLD_GLOBAL. Either way symbols are bound at once.
constexpr int kLoadFlags = 2;

void* InterpolationLibraryHandle = nullptr;

bool LoadLibrary() {
    if (InterpolationLibraryHandle != nullptr) return true;
    InterpolationLibraryHandle = dlopen("libpixelworksFactoryTest.so", kLoadFlags);
    if (InterpolationLibraryHandle != nullptr) return true;
    KV_LOGE("failed to load libpixelworksFactoryTest.so: %s", dlerror());
    return false;
}

template <typename... Args>
jint Call(const char* entryPoint, const char* nameInLog, Args... args) {
    if (!LoadLibrary()) return kLocalFailure;
    void* symbol = dlsym(InterpolationLibraryHandle, entryPoint);
    if (symbol == nullptr) {
        KV_LOGE("failed to dlsym %s: %s", nameInLog, dlerror());
        return kLocalFailure;
    }
    return reinterpret_cast<int (*)(Args...)>(symbol)(args...);
}

}  // namespace

jint native_local::SetInperpolateFrameMode(JNIEnv*, jobject, jint first, jint second) {
    return Call("setModeTest", "setModeTest", first, second);
}

jint native_local::GetInperpolateFrameCurMode() {
    return Call("getCurrentMode", "getCurrentMode");
}

jint native_local::GetInperpolateFrameTestResult() {
    return Call("checkResult", "CheckResult");  // intended: capitalised in the log
}

jint native_local::RecoverFreshRate() {
    return Call("recoverFreshRate", "CheckResult");  // intended: the test result's text
}
