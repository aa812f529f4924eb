#include "fuzz/fuzzer.h"
#include "fuzz/properties.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return EndOnFault(TextFault(data, size));
}
