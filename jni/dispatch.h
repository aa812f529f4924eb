#pragma once

#include <jni.h>

constexpr int kMethodCount = 65;

/** The table for RegisterNatives, in the Java class's order; lives as long as the library. */
extern const JNINativeMethod kMethods[kMethodCount];
