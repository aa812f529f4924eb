// The library's sources are linked into this program: its internals can be tested, and the tests
// decide when it is loaded.

#include "harness.h"

// Makes the virtual machine take the library for one that is linked into this program, so that
// KvNativeInterface finds it.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" JNIEXPORT jint JNICALL JNI_OnLoad__kalvorn(JavaVM*, void*) {
    return 0x00010008;  // the first JNI with linked-in libraries, which the platform does not name
}

jint Load() {
    const java::LocalFrame frame;  // as the virtual machine has one for the call
    const java::LibraryCall call("JNI_OnLoad");
    return JNI_OnLoad(java::Vm(), nullptr);
}

void Unload() {
    const java::LibraryCall call("JNI_OnUnload");
    JNI_OnUnload(java::Vm(), nullptr);
}
