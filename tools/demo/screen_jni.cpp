// The native half of com.quorvin.kalvornii.demo.Screen: the library's log lines on the way to it.
#include <android/log.h>
#include <jni.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/android/java_text.h"
#include "platform/android/priority_letter.h"

using kalvorn::host::PriorityLetter;
using kalvorn::host::Text;

namespace {

constexpr int kUsualColumns = 80;
constexpr int kLeastColumns = 60;  // the leads and tables of the session need as much
constexpr int kMostColumns = 500;
constexpr const char* kNoTime = "         ";

const auto g_start = std::chrono::steady_clock::now();
bool g_colour = false;
std::thread::id g_application;

// While the application is inside a call, what that thread logs waits for the line of the call.
thread_local bool t_holding = false;
thread_local std::vector<std::string> t_held;

/** Those that COLUMNS names, else the terminal's. */
size_t Columns() {
    static const int columns = [] {
        const char* named = getenv("COLUMNS");
        const long number = named == nullptr ? 0 : strtol(named, nullptr, 10);
        if (number > 0) return static_cast<int>(std::min<long>(number, kMostColumns));
        winsize size{};
        if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
            return int{size.ws_col};
        return kUsualColumns;
    }();
    return static_cast<size_t>(std::clamp(columns, kLeastColumns, kMostColumns));
}

double Seconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - g_start).count();
}

std::string TimeNow() {
    char text[32];
    snprintf(text, sizeof(text), "%7.3f  ", Seconds());
    return text;
}

void Write(const std::string& lines) {
    static std::mutex* lock = new std::mutex;  // threads of the device log until the very end
    const std::lock_guard guard(*lock);
    fwrite(lines.data(), 1, lines.size(), stdout);
    fflush(stdout);
}

/** How much of a text the next line takes: up to a blank where there is one. */
size_t LineLength(const std::string& text, size_t width) {
    if (text.size() <= width) return text.size();
    const size_t blank = text.rfind(' ', width);
    return blank == std::string::npos || blank == 0 ? width : blank;
}

/** Lead and text as lines of at most Columns(); lines after the first are indented by the lead. */
std::string Wrap(const std::string& lead, std::string text, const std::string& style) {
    std::string lines;
    const char* end = g_colour && !style.empty() ? "\033[0m\n" : "\n";
    std::string indent = lead;
    do {
        const size_t length = LineLength(text, Columns() - lead.size());
        lines += (g_colour ? style : "") + indent + text.substr(0, length) + end;
        indent.assign(lead.size(), ' ');
        const size_t next = text.find_first_not_of(' ', length);
        text.erase(0, next == std::string::npos ? text.size() : next);
    } while (!text.empty());
    return lines;
}

const char* Style(int priority) {
    if (priority == ANDROID_LOG_WARN) return "\033[33m";
    return priority >= ANDROID_LOG_FATAL ? "\033[31m" : "\033[2m";
}

void ShowHeld() {
    for (const std::string& lines : t_held) Write(lines);
    t_held.clear();
}

void ShowLogLine(const __android_logger_data* data, const char* message) {
    std::string text = message;
    while (!text.empty() && text.back() == '\n') text.pop_back();
    if (data->tag != nullptr && strcmp(data->tag, "KalvornNative") != 0) {
        text = std::string(data->tag) + ": " + text;
    }
    const bool elsewhere = std::this_thread::get_id() != g_application;
    const std::string lead = (t_holding ? kNoTime : TimeNow()) + (elsewhere ? "  ~ " : "    ") +
                             PriorityLetter(data->priority) + "  ";
    const std::string lines = Wrap(lead, text, Style(data->priority));
    if (t_holding) {
        t_held.push_back(lines);
    } else {
        Write(lines);
    }
    if (data->priority >= ANDROID_LOG_FATAL) ShowHeld();  // the process ends next
}

}  // namespace

#define SCREEN(result, name) \
    extern "C" JNIEXPORT result JNICALL Java_com_quorvin_kalvornii_demo_Screen_##name

SCREEN(void, open)(JNIEnv*, jclass, jboolean colour) {
    g_colour = colour;
    g_application = std::this_thread::get_id();
    __android_log_set_minimum_priority(ANDROID_LOG_DEBUG);
    __android_log_set_logger(ShowLogLine);
}

SCREEN(jint, columns)(JNIEnv*, jclass) {
    return static_cast<jint>(Columns());
}

SCREEN(jdouble, seconds)(JNIEnv*, jclass) {
    return Seconds();
}

SCREEN(void, holdLog)(JNIEnv*, jclass) {
    t_holding = true;
}

SCREEN(void, showLog)(JNIEnv*, jclass) {
    t_holding = false;
    ShowHeld();
}

SCREEN(void, print)(JNIEnv* env, jclass, jstring lead, jstring text, jstring style) {
    Write(Wrap(Text(env, lead), Text(env, text), Text(env, style)));
}
