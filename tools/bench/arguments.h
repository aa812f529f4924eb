#pragma once

#include "simulator/device.h"

/** The measured methods, and what each call is given, the same in Calls.java. */
namespace bench {

using kalvorn::device::Backend;

// Longer than a string keeps within.
constexpr const char* kText = "rear-camera-calibration";
constexpr int kNumber = 1;
constexpr unsigned char kBytes[] = {0x4b, 0x56, 0x01, 0x02, 0x9f, 0x00, 0xff, 0x10,
                                    0x4b, 0x56, 0x01, 0x02, 0x9f, 0x00, 0xff, 0x10};

/** A device with all services of one backend, whose stores hold a text for kNumber. */
inline void StartDevice(Backend backend) {
    auto& device = kalvorn::device::Device::Get();
    device.Reset();
    device.RecordCalls(false);
    device.StartProfile(NameOf(backend));
    for (auto* store : {&device.nv, &device.results, &device.flags}) {
        store->Write(kNumber, kText, {});
    }
}

constexpr Backend kBackends[] = {Backend::kAidl, Backend::kHidl};

/** A method that asks a service. */
struct Method {
    const char* name;
    bool isOnBoth;

    bool IsOn(Backend backend) const { return isOnBoth || backend == Backend::kAidl; }
};

constexpr Method kMethods[] = {
#define TWO_BACKENDS(javaName, ...) {#javaName, true},
#define AIDL_ONLY(javaName, ...) {#javaName, false},
#include "jni/methods.inc"
};

}  // namespace bench
