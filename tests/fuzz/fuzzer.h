#pragma once

#include <android/log.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#include <string>

// What libFuzzer calls: once before all inputs, and for each input.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// Refused inputs are logged, by the million.
int LLVMFuzzerInitialize(int*, char***) {
    __android_log_set_logger([](const __android_logger_data*, const char*) {});
    return 0;
}

/** Ends the fuzzer, which then keeps the input, when something is wrong. */
inline int EndOnFault(const std::string& fault) {
    if (fault.empty()) return 0;
    fprintf(stderr, "%s\n", fault.c_str());
    abort();
}
