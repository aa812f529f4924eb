#pragma once

#include <jni.h>

constexpr int kMethodCount = 65;

/** The table for RegisterNatives, in the order of the Java class; it lives as long as the library.
 */
extern const JNINativeMethod kMethods[kMethodCount];
