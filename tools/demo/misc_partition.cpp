// Preloaded into the demo: the misc partition, whose path is the device's own, is a file named by
// KALVORN_MISC here. Every other path is opened as ever.
#undef _FILE_OFFSET_BITS  // both names of the function are wanted, each as it is
#include <dlfcn.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>

namespace {

using Open = int (*)(const char*, int, ...);

const char* Redirected(const char* path) {
    const char* file = getenv("KALVORN_MISC");
    return file != nullptr && strcmp(path, "/dev/block/bootdevice/by-name/misc") == 0 ? file : path;
}

}  // namespace

extern "C" int open64(const char* path, int flags, ...) {
    // The mode is there only when a file may be created.
    const bool hasMode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = hasMode ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    const auto next = reinterpret_cast<Open>(dlsym(RTLD_NEXT, "open64"));
    return next(Redirected(path), flags, mode);
}

// They differ in the size of a file that is too large, where at all.
extern "C" int open(const char* path, int flags, ...) __attribute__((alias("open64")));
