#pragma once

// The one place that chooses the watcher: the device's own libHidlUtil where it has one.
#ifdef KALVORN_DEVICE_HIDL_UTIL
#include <HidlUtil.h>
#else
#include "hidl/hidl_util.h"
#endif
