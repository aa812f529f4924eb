// The native half of the host's android.util.Log.
#include <android/log.h>
#include <jni.h>

extern "C" JNIEXPORT jint JNICALL Java_android_util_Log_write(JNIEnv* env, jclass, jint priority,
                                                              jstring tag, jstring message) {
    const char* tagChars = env->GetStringUTFChars(tag, nullptr);
    const char* messageChars = env->GetStringUTFChars(message, nullptr);
    const int written = __android_log_write(priority, tagChars, messageChars);
    env->ReleaseStringUTFChars(message, messageChars);
    env->ReleaseStringUTFChars(tag, tagChars);
    return written;
}
