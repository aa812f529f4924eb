// Measures what the library adds to a call: each method on each backend through Java, and, for a
// method of each shape, the floor and the bare proxy. The built library, a real virtual machine,
// the simulated device; one thread.

#include "bench.h"

#include <android/log.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

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

/**
 * "kalvorn_bench WHAT BACKEND [FILTER]": "load"; "look-ups"; or "calls" of all methods, of the
 * "shapes" that have a floor alone, or of each method "once", with FILTER in their names.
 */
int main(int argc, char** argv) {
    using bench::Backend;
    bench::Demand(argc > 2, "what, and over which backend?");
    const std::string what = argv[1];
    const Backend backend = strcmp(argv[2], "aidl") == 0 ? Backend::kAidl : Backend::kHidl;
    if (what == "load") {
        bench::MeasureLoad(backend);
    } else if (what == "look-ups") {
        bench::MeasureLookUps(backend);
    } else {
        bench::MeasureCalls(backend, {what == "once", what == "shapes", argc > 3 ? argv[3] : ""});
    }
    fflush(stdout);
    _exit(0);  // the virtual machine's own end is of no interest
}
