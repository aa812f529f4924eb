#pragma once

#include <binder/IBinder.h>

namespace kalvorn::host {

/** Takes a dead service out of the service manager, unless that keeps the names of the dead. */
void RemoveRegistrations(const android::sp<android::IBinder>& service);

}  // namespace kalvorn::host
