#pragma once

#include <android/log.h>

// The library's log: one tag, and a priority chosen line by line. AIDL and HIDL variants of an
// operation log different texts at different priorities on purpose, so no helper chooses for them.
#define KV_LOG(priority, ...) __android_log_print((priority), "KalvornNative", __VA_ARGS__)

#define KV_LOGD(...) KV_LOG(ANDROID_LOG_DEBUG, __VA_ARGS__)
#define KV_LOGI(...) KV_LOG(ANDROID_LOG_INFO, __VA_ARGS__)
#define KV_LOGW(...) KV_LOG(ANDROID_LOG_WARN, __VA_ARGS__)
#define KV_LOGE(...) KV_LOG(ANDROID_LOG_ERROR, __VA_ARGS__)
