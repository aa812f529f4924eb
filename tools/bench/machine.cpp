#include "bench.h"

#include <android/log.h>
#include <stdio.h>
#include <stdlib.h>

#include <iterator>

namespace bench {

JNIEnv* StartVm() {
    static char classPath[] = "-Djava.class.path=" KALVORN_CLASS_PATH;
    static char libraryPath[] = "-Djava.library.path=" KALVORN_LIBRARY_PATH;
    static char heap[] = "-Xmx256m";
    static char collector[] = "-XX:+UseSerialGC";  // no thread of it beside the measured one
    // What is compiled once stays as it is: a call that is compiled anew meanwhile, by what was
    // seen so far, costs something else from then on.
    static char compileOnce[] = "-XX:TieredStopAtLevel=1";
    static char wait[] = "-Xbatch";
    JavaVMOption options[] = {{classPath, nullptr}, {libraryPath, nullptr}, {heap, nullptr},
                              {collector, nullptr}, {compileOnce, nullptr}, {wait, nullptr}};
    JavaVMInitArgs args{JNI_VERSION_1_6, std::size(options), options, JNI_FALSE};
    JavaVM* vm = nullptr;
    JNIEnv* env = nullptr;
    Demand(JNI_CreateJavaVM(&vm, &env, &args) == JNI_OK, "no Java virtual machine");
    return env;
}

void LogToNowhere() {
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    __android_log_set_logger([](const __android_logger_data*, const char*) {});
}

void Demand(bool condition, const char* what) {
    if (condition) return;
    fprintf(stderr, "bench: %s\n", what);
    exit(2);
}

}  // namespace bench
