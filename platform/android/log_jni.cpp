// The native half of the host's android.util.Log.
#include <android/log.h>
#include <jni.h>

#include "platform/android/java_text.h"

using kalvorn::host::Text;

extern "C" JNIEXPORT jint JNICALL Java_android_util_Log_write(JNIEnv* env, jclass, jint priority,
                                                              jstring tag, jstring message) {
    return __android_log_write(priority, Text(env, tag).c_str(), Text(env, message).c_str());
}
