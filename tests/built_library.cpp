// KvNativeInterface loads the built library here, as it does in an application.

#include <dlfcn.h>

#include "harness.h"

namespace {

template <typename Function>
Function* EntryPoint(const char* name) {
    static void* library = dlopen(KALVORN_LIBRARY_PATH "/lib_kalvorn.so", RTLD_NOW | RTLD_NOLOAD);
    if (library == nullptr) abort();  // another one, or none, has been loaded
    return reinterpret_cast<Function*>(dlsym(library, name));
}

}  // namespace

jint Load() {
    const java::LocalFrame frame;  // as the virtual machine has one for the call
    const java::LibraryCall call("JNI_OnLoad");
    return EntryPoint<decltype(JNI_OnLoad)>("JNI_OnLoad")(java::Vm(), nullptr);
}

void Unload() {
    const java::LibraryCall call("JNI_OnUnload");
    EntryPoint<decltype(JNI_OnUnload)>("JNI_OnUnload")(java::Vm(), nullptr);
}
