#include "simulator/device_start.h"

#include <android/log.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
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

/** False when the device has no such service over that backend, or there is no such backend. */
bool KillOrRestart(bool kill, const string& backendName, const string& service) {
    const Backend backend = backendName == "AIDL" ? Backend::kAidl : Backend::kHidl;
    Device& device = Device::Get();
    if ((backend == Backend::kHidl && backendName != "HIDL") || !device.Has(backend, service)) {
        return false;
    }
    if (kill) {
        device.At(backend, service).Kill();
    } else {
        Restart(backend, service);
    }
    return true;
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

bool KillOrRestartProcess(bool kill, const string& service) {
    if (!Device::Get().Has(Backend::kAidl, service)) return false;
    if (kill) {
        Device::Get().KillProcess(service);
    } else {
        Device::Get().RestartProcess(service);
    }
    return true;
}

/** One line of the events; false when it says nothing that can happen. */
bool Happen(const string& line) {
    std::istringstream words(line);
    string what, first, second, more;
    words >> what >> first >> second >> more;
    if (what.empty() || what[0] == '#') return true;
    if (!more.empty()) return false;
    if (what == "wait" && second.empty()) {
        char* end = nullptr;
        const double seconds = strtod(first.c_str(), &end);
        if (first.empty() || *end != '\0' || !(seconds >= 0)) return false;
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
        return true;
    }
    __android_log_write(ANDROID_LOG_INFO, "SimulatedDevice", line.c_str());
    if (what == "kill" || what == "restart") return KillOrRestart(what == "kill", first, second);
    if (what != "kill-process" && what != "restart-process") return false;
    return second.empty() && KillOrRestartProcess(what == "kill-process", first);
}

void PlayEvents(const string& path) {
    struct stat status {};
    const bool isFifo = stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
    // A fifo that is open for writing too has no end: one writer after the other may come.
    std::fstream events(path, isFifo ? std::ios::in | std::ios::out : std::ios::in);
    if (!events) Tell("cannot read " + path);
    for (string line; std::getline(events, line);) {
        if (!Happen(line)) Tell("no event \"" + line + "\"");
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
        if (const char* events = getenv("KALVORN_EVENTS")) {
            std::thread(PlayEvents, string(events)).detach();
        }
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
