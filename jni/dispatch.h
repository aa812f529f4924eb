#pragma once

#include <jni.h>

/** One row of the table for RegisterNatives; the order is the Java class's own. */
constexpr int kMethodCount = 65;
extern const JNINativeMethod kMethods[kMethodCount];
