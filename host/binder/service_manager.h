#pragma once

#include <binder/IBinder.h>

namespace kalvorn::host {

/** Takes `service` out of the service manager, under whatever names it is registered. */
void RemoveRegistrations(const android::sp<android::IBinder>& service);

}  // namespace kalvorn::host
