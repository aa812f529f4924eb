// Calls the library's native methods, and the floor's, without a virtual machine: the JNI functions
// are a table of our own, which does next to nothing. What is to be counted stands between two
// calls of Mark(); the names of what is counted are printed in that order. instructions.sh counts.

#include <android/log.h>
#include <dlfcn.h>
#include <jni.h>
#include <link.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "arguments.h"

extern "C" __attribute__((noinline, visibility("default"))) void Mark() {
    asm volatile("");
}

namespace bench {

namespace {

constexpr int kUncounted = 3;  // what is done once only is behind a method then
constexpr int kCounted = 10;

using Registered = std::map<std::string, JNINativeMethod>;
Registered g_registered;
jint g_pair[2];

// Every text is one, and an object is as good as another.
void* AnyObject() {
    return const_cast<char*>(kText);
}

JNINativeInterface MakeFunctions() {
    JNINativeInterface f{};
    f.FindClass = [](JNIEnv*, const char*) { return static_cast<jclass>(AnyObject()); };
    f.RegisterNatives = [](JNIEnv*, jclass, const JNINativeMethod* methods, jint count) {
        for (jint i = 0; i < count; i++) g_registered[methods[i].name] = methods[i];
        return JNI_OK;
    };
    f.ExceptionClear = [](JNIEnv*) {};
    f.GetStringUTFChars = [](JNIEnv*, jstring, jboolean*) { return kText; };
    f.ReleaseStringUTFChars = [](JNIEnv*, jstring, const char*) {};
    f.GetStringUTFLength = [](JNIEnv*, jstring) { return static_cast<jsize>(strlen(kText)); };
    f.NewStringUTF = [](JNIEnv*, const char*) { return static_cast<jstring>(AnyObject()); };
    f.NewIntArray = [](JNIEnv*, jsize) { return static_cast<jintArray>(AnyObject()); };
    f.GetIntArrayElements = [](JNIEnv*, jintArray, jboolean*) { return g_pair; };
    f.ReleaseIntArrayElements = [](JNIEnv*, jintArray, jint*, jint) {};
    f.GetArrayLength = [](JNIEnv*, jarray) { return static_cast<jsize>(sizeof(kBytes)); };
    f.GetByteArrayElements = [](JNIEnv*, jbyteArray, jboolean*) {
        static jbyte bytes[sizeof(kBytes)];
        memcpy(bytes, kBytes, sizeof(kBytes));
        return bytes;
    };
    f.ReleaseByteArrayElements = [](JNIEnv*, jbyteArray, jbyte*, jint) {};
    f.GetFieldID = [](JNIEnv*, jclass, const char*, const char*) {
        return static_cast<jfieldID>(AnyObject());
    };
    f.GetIntField = [](JNIEnv*, jobject, jfieldID) { return jint{kNumber}; };
    f.GetObjectField = [](JNIEnv*, jobject, jfieldID) { return static_cast<jobject>(AnyObject()); };
    f.GetStaticFieldID = f.GetFieldID;
    f.SetStaticObjectField = [](JNIEnv*, jclass, jfieldID, jobject) {};
    return f;
}

const JNINativeInterface g_functions = MakeFunctions();
JNIEnv g_env{&g_functions};

JavaVM* Vm() {
    static JNIInvokeInterface functions{};
    functions.GetEnv = [](JavaVM*, void** env, jint) {
        *env = &g_env;
        return JNI_OK;
    };
    static JavaVM vm{&functions};
    return &vm;
}

/** The arguments as the descriptor wants them; each takes one word. */
std::vector<intptr_t> ArgumentsFor(const char* descriptor) {
    std::vector<intptr_t> words;
    for (const char* p = descriptor + 1; *p != ')'; p++) {
        words.push_back(*p == 'I' ? kNumber : reinterpret_cast<intptr_t>(AnyObject()));
        if (*p == '[') p++;
        if (*p == 'L') p = strchr(p, ';');
    }
    words.resize(4);  // as many as any method has
    return words;
}

void Call(const JNINativeMethod& method, const std::vector<intptr_t>& words, int times) {
    using Function = intptr_t(JNIEnv*, jobject, intptr_t, intptr_t, intptr_t, intptr_t);
    auto* function = reinterpret_cast<Function*>(method.fnPtr);
    for (int i = 0; i < times; i++) {
        function(&g_env, nullptr, words[0], words[1], words[2], words[3]);
    }
}

/** Where a library's code, or a function, is; for who counts by addresses. */
void PrintRange(const char* name, uintptr_t start, size_t size) {
    printf("range %s 0x%zx+0x%zx\n", name, static_cast<size_t>(start), size);
}

int PrintRangeOfLibrary(dl_phdr_info* info, size_t, void*) {
    const char* file = strrchr(info->dlpi_name, '/');
    if (file == nullptr) return 0;
    for (const char* name : {"lib_kalvorn.so", "libkalvorn_floor.so"}) {
        if (strcmp(file + 1, name) != 0) continue;
        for (int i = 0; i < info->dlpi_phnum; i++) {
            const auto& header = info->dlpi_phdr[i];
            if (header.p_type == PT_LOAD && (header.p_flags & PF_X) != 0) {
                PrintRange(name, info->dlpi_addr + header.p_vaddr, header.p_memsz);
            }
        }
    }
    return 0;
}

template <typename Function>
Function* EntryPoint(void* library, const char* name) {
    void* found = library == nullptr ? nullptr : dlsym(library, name);
    if (found == nullptr) {
        fprintf(stderr, "%s\n", dlerror());
        exit(2);
    }
    return reinterpret_cast<Function*>(found);
}

using Libraries = std::map<std::string, void*>;  // handles by file

/** What the library registers when it is loaded. */
Registered Load(void* library) {
    if (EntryPoint<jint(JavaVM*, void*)>(library, "JNI_OnLoad")(Vm(), nullptr) < 0) exit(2);
    return std::exchange(g_registered, {});
}

void Count(const JNINativeMethod& method, const std::string& file, Backend backend) {
    const std::vector<intptr_t> words = ArgumentsFor(method.signature);
    Call(method, words, kUncounted);
    Mark();
    Call(method, words, kCounted);
    Mark();
    printf("calls %d %s %s %s\n", kCounted, file.c_str(), NameOf(backend), method.name);
}

/** On one device: what it keeps of its clients makes its own work more. */
void CallAll(Backend backend, const Libraries& libraries) {
    StartDevice(backend);
    std::map<std::string, Registered> registered;
    for (const auto& [file, library] : libraries) registered[file] = Load(library);
    if (!kalvorn::device::Device::Settle()) exit(2);  // other threads are counted too
    for (const Method& method : kMethods) {
        for (const auto& [file, methods] : registered) {
            const auto found = methods.find(method.name);
            if (found != methods.end() && method.IsOn(backend)) Count(found->second, file, backend);
        }
    }
    for (const auto& [file, library] : libraries) {
        EntryPoint<void(JavaVM*, void*)>(library, "JNI_OnUnload")(Vm(), nullptr);
    }
}

}  // namespace

}  // namespace bench

/** With "where" it tells the addresses only. */
int main(int argc, char** argv) {
    using bench::Backend;
    setvbuf(stdout, nullptr, _IOLBF, 0);
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    __android_log_set_logger([](const __android_logger_data*, const char*) {});
    const std::string program = argv[0];
    const std::string folder = program.substr(0, program.rfind('/') + 1);
    bench::Libraries libraries;
    for (const char* file : {"lib_kalvorn.so", "libkalvorn_floor.so"}) {
        libraries[file] = dlopen((folder + file).c_str(), RTLD_NOW);
    }
    dl_iterate_phdr(bench::PrintRangeOfLibrary, nullptr);
    bench::PrintRange("mark", reinterpret_cast<uintptr_t>(Mark) & ~uintptr_t{1}, 1);
    if (argc > 1 && strcmp(argv[1], "where") == 0) return 0;
    for (const Backend backend : bench::kBackends) bench::CallAll(backend, libraries);
    fflush(stdout);
    _Exit(0);
}
