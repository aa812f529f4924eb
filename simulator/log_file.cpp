// Preloaded by ./simulate: what a process logs goes to the file KALVORN_LOG, as logcat's
// "threadtime" format shows it.
#include <android/log.h>
#include <fcntl.h>
#include <log/logprint.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>

namespace {

const char* g_path = "";
std::atomic<bool> g_ended{false};

int LogFile() {
    const int file = open(g_path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (file < 0) fprintf(stderr, "simulated device: cannot write to %s\n", g_path);
    return file;
}

AndroidLogFormat* ThreadTime() {
    AndroidLogFormat* format = android_log_format_new();
    android_log_setPrintFormat(format, FORMAT_THREADTIME);
    return format;
}

// One write, so that the lines of two threads or processes do not mix.
void WriteLines(const __android_logger_data* data, const char* message) {
    if (g_ended) return;
    static const int file = LogFile();
    if (file < 0) return;
    static AndroidLogFormat* const format = ThreadTime();
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const char* tag = data->tag == nullptr ? "" : data->tag;
    const auto priority = static_cast<android_LogPriority>(data->priority);
    const AndroidLogEntry entry{now.tv_sec, now.tv_nsec, priority,    /*uid=*/-1,      getpid(),
                                gettid(),   tag,         strlen(tag), strlen(message), message};
    size_t length = 0;
    char buffer[1024];
    char* lines = android_log_formatLogLine(format, buffer, sizeof(buffer), &entry, &length);
    if (lines == nullptr || write(file, lines, length) < 0) perror("simulated device");
    if (lines != buffer) free(lines);
}

__attribute__((constructor)) void Redirect() {
    const char* path = getenv("KALVORN_LOG");
    if (path == nullptr) return;
    g_path = path;
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    __android_log_set_logger(WriteLines);
}

}  // namespace

/**
 * For the simulated device, at the process's end. Not by another logger: setting one waits until no
 * thread logs, which may be never.
 */
extern "C" __attribute__((visibility("default"))) void EndLogFile() {
    g_ended = true;
}
