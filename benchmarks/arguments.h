#pragma once

#include "device/device.h"

/** What every measured call is given, the same in Calls.java: longer than a string keeps within. */
namespace bench {

using kalvorn::device::Backend;

constexpr const char* kText = "rear-camera-calibration";
constexpr int kNumber = 1;
constexpr unsigned char kBytes[] = {0x4b, 0x56, 0x01, 0x02, 0x9f, 0x00, 0xff, 0x10,
                                    0x4b, 0x56, 0x01, 0x02, 0x9f, 0x00, 0xff, 0x10};

/** A device with all services of one backend, whose stores hold a text for kNumber. */
inline void StartDevice(Backend backend) {
    auto& device = kalvorn::device::Device::Get();
    device.Reset();
    device.RecordCalls(false);
    device.StartProfile(backend == Backend::kAidl ? "aidl" : "hidl");
    for (auto* store : {&device.nv, &device.results, &device.flags}) {
        store->Write(kNumber, kText, {});
    }
}

constexpr const char* NameOf(Backend backend) {
    return backend == Backend::kAidl ? "aidl" : "hidl";
}

}  // namespace bench
