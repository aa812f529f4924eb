#include "machine.h"

#include <android/log.h>
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>

namespace bench {

namespace {

JavaVM* g_vm;

}  // namespace

void Demand(bool condition, const char* what) {
    if (condition) return;
    fprintf(stdout, "bench: %s\n", what);
    exit(2);
}

int Progress::FindTerminal() {
    static const int terminal = dup(STDERR_FILENO);
    return terminal;
}

void Progress::Step() {
    const int percent = 100 * ++mDone / std::max(mExpected, 1);
    if (percent == mShown || !isatty(FindTerminal())) return;
    mShown = percent;
    dprintf(FindTerminal(), "\r%s %d %% ", mWhat.c_str(), percent);
    if (mDone == mExpected) dprintf(FindTerminal(), "\r%40s\r", "");
}

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

JNIEnv* StartVm() {
    static char classPath[] = "-Djava.class.path=" KALVORN_CLASS_PATH;
    static char libraryPath[] = "-Djava.library.path=" KALVORN_LIBRARY_PATH;
    static char heap[] = "-Xmx256m";
    static char collector[] = "-XX:+UseSerialGC";  // no thread of it beside the measured one
    JavaVMOption options[] = {
            {classPath, nullptr}, {libraryPath, nullptr}, {heap, nullptr}, {collector, nullptr}};
    JavaVMInitArgs args{JNI_VERSION_1_6, 4, options, JNI_FALSE};
    JNIEnv* env = nullptr;
    Demand(JNI_CreateJavaVM(&g_vm, &env, &args) == JNI_OK, "no Java virtual machine");
    return env;
}

Library::Library(const char* name) {
    const std::string path = KALVORN_LIBRARY_PATH "/lib" + std::string(name) + ".so";
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    Demand(library != nullptr, "the built library has not been loaded");
    mOnLoad = reinterpret_cast<OnLoad*>(dlsym(library, "JNI_OnLoad"));
    mOnUnload = reinterpret_cast<OnUnload*>(dlsym(library, "JNI_OnUnload"));
}

void Library::Load() const {
    Demand(mOnLoad(g_vm, nullptr) == JNI_VERSION_1_4, "JNI_OnLoad failed");
}

void Library::Unload() const {
    mOnUnload(g_vm, nullptr);
}

void LogToNowhere() {
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    __android_log_set_logger([](const __android_logger_data*, const char*) {});
}

void LogByDefault() {
    __android_log_set_logger(__android_log_stderr_logger);
}

}  // namespace bench
