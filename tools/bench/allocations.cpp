// The heap's functions, which count and do what the C library's do.

#include "allocations.h"

#include <errno.h>
#include <stdlib.h>

namespace {

thread_local long t_allocations;

}  // namespace

long Allocations() {
    return t_allocations;
}

// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

__attribute__((visibility("default"))) void* malloc(size_t size) {
    t_allocations++;
    return __libc_malloc(size);
}

__attribute__((visibility("default"))) void* calloc(size_t count, size_t size) {
    t_allocations++;
    return __libc_calloc(count, size);
}

__attribute__((visibility("default"))) void* realloc(void* memory, size_t size) {
    t_allocations++;
    return __libc_realloc(memory, size);
}

__attribute__((visibility("default"))) void* memalign(size_t alignment, size_t size) {
    t_allocations++;
    return __libc_memalign(alignment, size);
}

__attribute__((visibility("default"))) void* aligned_alloc(size_t alignment, size_t size) {
    return memalign(alignment, size);
}

__attribute__((visibility("default"))) int posix_memalign(void** memory, size_t alignment,
                                                          size_t size) {
    *memory = memalign(alignment, size);
    return *memory == nullptr ? ENOMEM : 0;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
