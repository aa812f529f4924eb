#include <stdint.h>

// Made of the file VERSION by both builds; a compiler that is run by hand has none.
#if __has_include("kalvorn_version.h")
#include "kalvorn_version.h"
#else
#define KALVORN_VERSION "unknown"
#endif

namespace {

/** An ELF note, which readelf -n shows, and kalvornctl --version. */
struct Note {
    uint32_t nameSize = sizeof(name);
    uint32_t versionSize = sizeof(KALVORN_VERSION);
    uint32_t type = 1;
    char name[8] = "Kalvorn";
    alignas(4) char version[(sizeof(KALVORN_VERSION) + 3) / 4 * 4] = KALVORN_VERSION;
};

__attribute__((section(".note.kalvorn"), used)) constexpr Note kNote;

}  // namespace
