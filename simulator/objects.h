#pragma once

#include <binder/IBinder.h>
#include <hidl/hidl_host.h>

#include <vector>

namespace kalvorn::device {

/** What one or more running services consist of; all of it dies as one process. */
struct Objects {
    std::vector<android::sp<android::IBinder>> binders;  // local ones
    std::vector<host::HidlService> hidlServices;

    void Add(const Objects& more);
    /** All is dead before the first notice comes. */
    void Kill() const;
};

}  // namespace kalvorn::device
