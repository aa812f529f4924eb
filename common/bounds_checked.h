#pragma once

// The bounds-checked library (memcpy_s, memset_s, strcpy_s, sprintf_s) is named here alone.
#include <safe_mem_lib.h>
#include <safe_str_lib.h>
