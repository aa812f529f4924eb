#include "simulator/device_start.h"

#include <android/log.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "simulator/device.h"

/** Where ./simulate preloads the log file's writer. */
extern "C" __attribute__((weak)) void EndLogFile();

namespace kalvorn::simulated {

namespace {

using device::Backend;
using device::Device;
using std::string;

struct Member {
    Backend backend;
    string service;
};

std::mutex g_lock;
string g_profile;
std::vector<Member> g_atStart;
std::vector<Member> g_added;  // declared since

void Tell(const string& what) {
    fprintf(stderr, "simulated device: %s\n", what.c_str());
}

using Event = std::function<void()>;

Event KillOrRestart(bool kill, const string& backendName, const string& service) {
    const Backend backend = backendName == "AIDL" ? Backend::kAidl : Backend::kHidl;
    if (backend == Backend::kHidl && backendName != "HIDL") return nullptr;
    if (!Device::Get().Has(backend, service)) return nullptr;
    if (kill) return [=] { Device::Get().At(backend, service).Kill(); };
    return [=] { Restart(backend, service); };
}

bool Is(const Member& one, const Member& other) {
    return one.backend == other.backend && one.service == other.service;
}

void Remember(const Member& member) {
    const std::lock_guard lock(g_lock);
    const auto isMember = [&](const Member& known) { return Is(known, member); };
    if (std::none_of(g_atStart.begin(), g_atStart.end(), isMember)) g_added.push_back(member);
}

device::Service& At(const Member& member) {
    return Device::Get().At(member.backend, member.service);
}

void StartUnlessRunning(const std::vector<Member>& members) {
    for (const Member& member : members) {
        if (!At(member).IsRunning()) Device::Get().Start(member.backend, member.service);
    }
}

/** Only a registration lets the library connect HIDL services that it has released. */
void AnnounceReleased(const std::vector<Member>& members) {
    for (const Member& member : members) {
        if (member.backend != Backend::kHidl || At(member).DeathLinks() != 0) continue;
        if (Device::Get().IsRunning(Backend::kAidl, member.service)) continue;  // held over AIDL
        Device::Get().Start(member.backend, member.service);
        Device::Settle();
        return;
    }
}

Event KillOrRestartProcess(bool kill, const string& service) {
    if (!Device::Get().Has(Backend::kAidl, service)) return nullptr;
    if (kill) return [=] { Device::Get().KillProcess(service); };
    return [=] { Device::Get().RestartProcess(service); };
}

Event Wait(const string& number) {
    char* end = nullptr;
    const double seconds = strtod(number.c_str(), &end);
    if (number.empty() || *end != '\0' || !(seconds >= 0)) return nullptr;
    return [=] { std::this_thread::sleep_for(std::chrono::duration<double>(seconds)); };
}

/** What a line of the events says; null when that cannot happen. */
Event EventOf(const string& line) {
    std::istringstream words(line);
    string what, first, second, more;
    words >> what >> first >> second >> more;
    if (what.empty() || what[0] == '#') return [] {};
    if (!more.empty()) return nullptr;
    if (what == "wait" && second.empty()) return Wait(first);
    Event event;
    if (what == "kill" || what == "restart") {
        event = KillOrRestart(what == "kill", first, second);
    } else if ((what == "kill-process" || what == "restart-process") && second.empty()) {
        event = KillOrRestartProcess(what == "kill-process", first);
    }
    if (!event) return nullptr;
    return [=] {
        __android_log_write(ANDROID_LOG_INFO, "SimulatedDevice", line.c_str());
        event();
    };
}

/** The events of a file; one that cannot happen ends the process before anything is called. */
std::vector<Event> ReadEvents(const string& path) {
    std::ifstream file(path);
    std::vector<Event> events;
    for (string line; std::getline(file, line);) {
        events.push_back(EventOf(line));
        if (events.back()) continue;
        std::ostringstream where;
        where << path << ':' << events.size() << ": ";
        Tell(where.str() + "no event \"" + line + '"');
        _exit(2);
    }
    return events;
}

/** Those of a fifo, as they come. One that is open for writing too has no end. */
void PlayFifo(const string& path) {
    std::fstream events(path, std::ios::in | std::ios::out);
    for (string line; std::getline(events, line);) {
        const Event event = EventOf(line);
        if (event) {
            event();
        } else {
            Tell("no event \"" + line + "\"");
        }
    }
}

void StartEvents(const string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode)) {
        std::thread(PlayFifo, path).detach();
    } else {
        std::thread([events = ReadEvents(path)] {
            for (const Event& event : events) event();
        }).detach();
    }
}

}  // namespace

bool Start(const string& profile) {
    Device& device = Device::Get();
    device.Reset();
    device.GroupProcesses("device");
    if (!device.StartProfile(profile)) return false;
    const std::lock_guard lock(g_lock);
    g_profile = profile;
    g_atStart.clear();
    g_added.clear();
    for (const string& service : Device::Services()) {
        for (const Backend backend : {Backend::kAidl, Backend::kHidl}) {
            if (device.IsRunning(backend, service)) g_atStart.push_back({backend, service});
        }
    }
    return true;
}

string Profile() {
    const std::lock_guard lock(g_lock);
    return g_profile;
}

void Restart(Backend backend, const string& service) {
    Remember({backend, service});
    StartUnlessRunning({{backend, service}});
}

bool IsProcessRunning(const string& service) {
    const std::vector<string> inProcess = Device::Get().ServicesWith(service);
    return std::any_of(inProcess.begin(), inProcess.end(), [](const string& name) {
        return Device::Get().IsRunning(Backend::kAidl, name) ||
               Device::Get().IsRunning(Backend::kHidl, name);
    });
}

void Declare(Backend backend, const string& service) {
    Remember({backend, service});
    Device::Get().At(backend, service).Declare();
}

void Restore(bool isLibraryLoaded) {
    Device::Get().Clear();
    std::vector<Member> atStart, added;
    {
        const std::lock_guard lock(g_lock);
        atStart = g_atStart;
        added.swap(g_added);
    }
    // What was added runs once more, because the library may be waiting for it; then it dies.
    StartUnlessRunning(atStart);
    StartUnlessRunning(added);
    Device::Settle();
    for (const Member& member : added) {
        At(member).Undeclare();
        At(member).Kill();
        Device::Settle();
    }
    if (isLibraryLoaded) AnnounceReleased(atStart);
    Device::Get().Clear();
}

void StartAsNamed() {
    static std::once_flag once;
    std::call_once(once, [] {
        if (const char* profile = getenv("KALVORN_DEVICE")) {
            if (!Start(profile)) Tell(string("no device \"") + profile + "\"");
        }
        if (const char* events = getenv("KALVORN_EVENTS")) StartEvents(events);
    });
}

void Stop() {
    if (EndLogFile != nullptr) EndLogFile();
    Device::Get().Reset();
}

}  // namespace kalvorn::simulated

/** For the host's libbinder, when the first service is looked up. */
extern "C" __attribute__((visibility("default"))) void StartDeviceAsNamed() {
    kalvorn::simulated::StartAsNamed();
    // The library has been loaded, so this comes before its own objects go at the process's end.
    static const int registered = atexit(kalvorn::simulated::Stop);
    static_cast<void>(registered);
}
