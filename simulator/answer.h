#pragma once

#include <utils/Errors.h>

#include <cstdint>
#include <string>
#include <utility>

/** What a simulated service answers. */
namespace kalvorn::device {

enum class Backend { kAidl, kHidl };

constexpr const char* NameOf(Backend backend) {
    return backend == Backend::kAidl ? "aidl" : "hidl";
}

enum class Fault {
    kNone,
    /** The call fails on its way back; the caller's values stay as they were. */
    kTransport,
    /**
     * The call fails as when the service's process ends within it, which a HIDL stub brings about
     * when its service returns without having called the result callback. Only the call: the death
     * itself would log, at any time, among the lines of the call. It is for KillProcess().
     */
    kDeadObject,
};

/** What a call with this fault answers. */
inline android::status_t ErrorOf(Fault fault) {
    if (fault == Fault::kNone) return android::OK;
    return fault == Fault::kTransport ? android::FAILED_TRANSACTION : android::DEAD_OBJECT;
}

/** What a method answers; a method without one of the values ignores it. */
struct Answer {
    Answer(int32_t code = 0, std::string text = "", std::string detail = "",
           Fault fault = Fault::kNone)
        : code(code), text(std::move(text)), detail(std::move(detail)), fault(fault) {}
    Answer(Fault fault) : Answer(0, "", "", fault) {}

    int32_t code;
    std::string text;
    std::string detail;
    Fault fault;
};

}  // namespace kalvorn::device
