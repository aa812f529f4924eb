#pragma once

#include <jni.h>

#include <string>

namespace kalvorn::host {

/** The modified UTF-8 of a Java string, not null. */
inline std::string Text(JNIEnv* env, jstring text) {
    const char* chars = env->GetStringUTFChars(text, nullptr);
    std::string copy = chars;
    env->ReleaseStringUTFChars(text, chars);
    return copy;
}

}  // namespace kalvorn::host
