#pragma once

// The one place that chooses the bounds-checked functions (memcpy_s, memset_s, strcpy_s,
// sprintf_s): those of the device's own library where it has one.
#ifdef KALVORN_DEVICE_BOUNDS_CHECKED
#include <safe_mem_lib.h>
#include <safe_str_lib.h>
#else
#include "common/bounds_checked_functions.h"
#endif
