#pragma once

#include <jni.h>

/** The table for RegisterNatives, in the Java class's order; lives as long as the library. */
extern const JNINativeMethod kMethods[];
extern const jint kMethodCount;
