// Preloaded by ./simulate: what a process logs goes to the file KALVORN_LOG, as logcat's
// "threadtime" format shows it.
#include <android/log.h>
#include <fcntl.h>
#include <stdlib.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <sstream>
#include <string>

#include "platform/android/priority_letter.h"

namespace {

std::string Lead(const __android_logger_data& data) {
    timespec now{};
    tm local{};
    clock_gettime(CLOCK_REALTIME, &now);
    localtime_r(&now.tv_sec, &local);
    char time[32];
    strftime(time, sizeof(time), "%m-%d %H:%M:%S", &local);
    char lead[128];
    snprintf(lead, sizeof(lead), "%s.%03ld %5d %5d %c %-8s: ", time, now.tv_nsec / 1000000,
             getpid(), gettid(), kalvorn::host::PriorityLetter(data.priority),
             data.tag == nullptr ? "" : data.tag);
    return lead;
}

const char* g_path = "";
std::atomic<bool> g_ended{false};

int LogFile() {
    const int file = open(g_path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (file < 0) fprintf(stderr, "simulated device: cannot write to %s\n", g_path);
    return file;
}

// Each line of a message gets the lead, and one at its end is dropped, as logcat does it. One
// write, so that the lines of two threads or processes do not mix.
void WriteLines(const __android_logger_data* data, const char* message) {
    if (g_ended) return;
    static const int file = LogFile();
    if (file < 0) return;
    const std::string lead = Lead(*data);
    std::istringstream lines(message);
    std::string text;
    for (std::string line; std::getline(lines, line);) text += lead + line + '\n';
    if (text.empty()) text = lead + '\n';
    if (write(file, text.data(), text.size()) < 0) perror("simulated device");
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
