// What the soak cannot see or do from Java: the last lines of the log, the references that the
// device's services have, memory in use, and which services share a process.
#include <android/log.h>
#include <dirent.h>
#include <fcntl.h>
#include <hidl/hidl_host.h>
#include <jni.h>
#include <malloc.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <fstream>
#include <string>

#include "platform/android/java_text.h"
#include "simulator/device.h"

namespace {

using kalvorn::device::Backend;
using kalvorn::device::Device;
using kalvorn::host::Text;

/** A line of the log as LogRing.java reads it; 0 as its number stands for one half written. */
struct Line {
    std::atomic<uint64_t> number;
    int64_t seconds;
    int32_t nanoseconds;
    int32_t thread;
    int32_t priority;
    char tag[20];
    char text[464];
};
static_assert(sizeof(Line) == 512);

constexpr uint64_t kLines = 100;

Line* g_ring = nullptr;
std::atomic<uint64_t> g_written{0};
std::atomic<uint64_t> g_notifications{0};
std::atomic<bool> g_frozen{false};

void Copy(const char* text, char* to, size_t size) {
    const size_t length = std::min(strlen(text), size - 1);
    memcpy(to, text, length);
    to[length] = '\0';
}

// Two threads write one line at a time only when a hundred others pass between.
void Keep(const __android_logger_data* data, const char* message) {
    static thread_local const int32_t thread = gettid();
    constexpr char kNotification[] = "enter into ReinitHal";
    if (strncmp(message, kNotification, sizeof(kNotification) - 1) == 0) g_notifications++;
    if (g_frozen) return;
    const uint64_t number = ++g_written;
    Line& line = g_ring[number % kLines];
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    line.number = 0;
    line.seconds = now.tv_sec;
    line.nanoseconds = static_cast<int32_t>(now.tv_nsec);
    line.thread = thread;
    line.priority = data->priority;
    Copy(data->tag == nullptr ? "" : data->tag, line.tag, sizeof(line.tag));
    Copy(message, line.text, sizeof(line.text));
    line.number = number;
}

jlong ResidentBytes() {
    jlong all = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;  // in pages
    return resident * sysconf(_SC_PAGESIZE);
}

/** Small blocks and those mapped by themselves. */
jlong BytesInUse() {
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<jlong>(heap.uordblks + heap.hblkhd);
}

jlong EntriesOf(const char* folder) {
    DIR* entries = opendir(folder);
    if (entries == nullptr) return 0;
    jlong count = 0;
    while (const dirent* entry = readdir(entries)) count += entry->d_name[0] != '.';
    closedir(entries);
    return count;
}

jlong DeathLinks() {
    const Device& device = Device::Get();
    jlong links = 0;
    for (const std::string& service : Device::Services()) {
        for (const Backend backend : {Backend::kAidl, Backend::kHidl}) {
            links += static_cast<jlong>(device.DeathLinks(backend, service));
        }
    }
    return links;
}

}  // namespace

#define SOAK(result, name) \
    extern "C" JNIEXPORT result JNICALL Java_com_quorvin_kalvornii_soak_Native_##name

// A mapped file, so that the lines outlast a process that ends in the middle of a call.
SOAK(jboolean, keepLog)(JNIEnv* env, jclass, jstring path) {
    const int file = open(Text(env, path).c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0) return JNI_FALSE;
    void* ring = MAP_FAILED;
    if (ftruncate(file, kLines * sizeof(Line)) == 0) {
        ring = mmap(nullptr, kLines * sizeof(Line), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    }
    close(file);
    if (ring == MAP_FAILED) return JNI_FALSE;
    g_ring = static_cast<Line*>(ring);
    __android_log_set_logger(Keep);
    return JNI_TRUE;
}

SOAK(void, freezeLog)(JNIEnv*, jclass) {
    g_frozen = true;
}

SOAK(jboolean, groupProcesses)(JNIEnv* env, jclass, jstring grouping) {
    return Device::Get().GroupProcesses(Text(env, grouping)) ? JNI_TRUE : JNI_FALSE;
}

// In the order of a sample.
SOAK(jlongArray, look)(JNIEnv* env, jclass) {
    const jlong found[] = {
            ResidentBytes(),
            BytesInUse(),
            Device::LiveServices(),
            DeathLinks(),
            static_cast<jlong>(kalvorn::host::HidlNotificationCount("")),
            static_cast<jlong>(g_notifications),
            EntriesOf("/proc/self/task"),
            EntriesOf("/proc/self/fd") - 1,  // that of the look itself
    };
    const auto count = static_cast<jsize>(std::size(found));
    jlongArray figures = env->NewLongArray(count);
    if (figures != nullptr) env->SetLongArrayRegion(figures, 0, count, found);
    return figures;
}

SOAK(jlong, bytesInUse)(JNIEnv*, jclass) {
    return BytesInUse();
}
