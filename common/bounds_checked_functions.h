#pragma once

#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

// The four bounds-checked functions that the library uses, for a device that has none, in the form
// of C11's Annex K. Where a constraint is violated they call no handler, leave the destination as
// the standard says, and tell by their result. Two things the standard refuses too: places that
// overlap, which are copied right here, and %n or a null %s.

/** Whether there is a destination; sizes beyond this are negative ones gone wrong. */
inline bool IsDestination(const void* destination, size_t size) {
    return destination != nullptr && size <= SIZE_MAX / 2;
}

/** Copies n bytes to a place of this size, or fills it with zeroes. Returns 0, or not 0. */
inline int memcpy_s(void* destination, size_t size, const void* source, size_t n) {
    if (!IsDestination(destination, size)) return -1;
    const bool fits = source != nullptr && n <= size;
    if (fits)
        memmove(destination, source, n);
    else
        memset(destination, 0, size);
    return fits ? 0 : -1;
}

/** Sets n bytes of a place of this size, or all of it, also when nobody reads them. As memcpy_s. */
inline int memset_s(void* destination, size_t size, int value, size_t n) {
    if (!IsDestination(destination, size)) return -1;
    memset(destination, value, n <= size ? n : size);
    __asm__ volatile("" : : "r"(destination) : "memory");  // is not optimised away
    return n <= size ? 0 : -1;
}

/** Copies a text to a place of this size, or makes it the empty text. As memcpy_s. */
inline int strcpy_s(char* destination, size_t size, const char* source) {
    if (!IsDestination(destination, size) || size == 0) return -1;
    const size_t length = source == nullptr ? size : strnlen(source, size);
    const bool fits = length < size;
    if (fits)
        memmove(destination, source, length + 1);
    else
        *destination = '\0';
    return fits ? 0 : -1;
}

/**
 * Formats to a place of this size and returns the length, or makes it the empty text. Then the
 * result is 0, or negative for what cannot be formatted.
 */
__attribute__((format(printf, 3, 4))) inline int sprintf_s(char* destination, size_t size,
                                                           const char* format, ...) {
    if (!IsDestination(destination, size) || size == 0) return 0;
    va_list arguments;
    va_start(arguments, format);
    const int length = format == nullptr ? 0 : vsnprintf(destination, size, format, arguments);
    va_end(arguments);
    const bool fits = format != nullptr && length >= 0 && static_cast<size_t>(length) < size;
    if (!fits) *destination = '\0';
    return fits || length < 0 ? length : 0;
}
