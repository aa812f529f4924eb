// What the soak cannot see or do from Java: the last lines of the log, the references that the
// device's services have, the native heap, and which services share a process.
#include <android/log.h>
#include <fcntl.h>
#include <hidl/hidl_host.h>
#include <jni.h>
#include <malloc.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <string>

#include "platform/android/java_text.h"
#include "platform/android/priority_letter.h"
#include "simulator/device.h"

namespace {

using kalvorn::device::Backend;
using kalvorn::device::Device;
using kalvorn::host::Text;

/** A line of the log: its number, milliseconds, thread, priority, tag and text, then zeros. */
using Line = char[512];

constexpr uint64_t kLines = 100;
Line* g_ring = nullptr;
std::atomic<uint64_t> g_written{0};
std::atomic<uint64_t> g_notifications{0};
std::atomic<bool> g_frozen{false};

// Two threads write one line at a time only when a hundred others pass between.
void Keep(const __android_logger_data* data, const char* message) {
    static thread_local const int thread = gettid();
    constexpr char kNotification[] = "enter into ReinitHal";
    if (strncmp(message, kNotification, sizeof(kNotification) - 1) == 0) g_notifications++;
    if (g_frozen) return;
    const uint64_t number = ++g_written;
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    Line& line = g_ring[number % kLines];
    memset(line, 0, sizeof(line));
    snprintf(line, sizeof(line), "%" PRIu64 " %lld%03ld %5d %c %-8s: %s", number,
             static_cast<long long>(now.tv_sec), now.tv_nsec / 1'000'000, thread,
             kalvorn::host::PriorityLetter(data->priority), data->tag == nullptr ? "" : data->tag,
             message);
}

}  // namespace

#define SOAK(result, name) \
    extern "C" JNIEXPORT result JNICALL Java_com_quorvin_kalvornii_soak_Native_##name

// A mapped file, so that the lines outlast a process that ends in the middle of a call.
SOAK(void, keepLog)(JNIEnv* env, jclass, jstring path) {
    const int file = open(Text(env, path).c_str(), O_RDWR | O_CLOEXEC);
    void* ring = mmap(nullptr, kLines * sizeof(Line), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    if (ring == MAP_FAILED) {
        env->ThrowNew(env->FindClass("java/io/IOException"), "the log's file cannot be mapped");
        return;
    }
    g_ring = static_cast<Line*>(ring);
    __android_log_set_logger(Keep);
}

SOAK(void, freezeLog)(JNIEnv*, jclass) {
    g_frozen = true;
}

SOAK(jboolean, groupProcesses)(JNIEnv* env, jclass, jstring grouping) {
    return Device::Get().GroupProcesses(Text(env, grouping)) ? JNI_TRUE : JNI_FALSE;
}

SOAK(jlong, bytesInUse)(JNIEnv*, jclass) {
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<jlong>(heap.uordblks + heap.hblkhd);
}

SOAK(jlong, liveServices)(JNIEnv*, jclass) {
    return Device::LiveServices();
}

SOAK(jlong, deathLinks)(JNIEnv*, jclass) {
    jlong links = 0;
    for (const std::string& service : Device::Services()) {
        for (const Backend backend : {Backend::kAidl, Backend::kHidl}) {
            links += static_cast<jlong>(Device::Get().DeathLinks(backend, service));
        }
    }
    return links;
}

SOAK(jlong, listeners)(JNIEnv*, jclass) {
    return static_cast<jlong>(kalvorn::host::HidlNotificationCount(""));
}

SOAK(jlong, notifications)(JNIEnv*, jclass) {
    return static_cast<jlong>(g_notifications);
}
