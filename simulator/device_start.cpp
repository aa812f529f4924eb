#include "simulator/device_start.h"

#include <android/log.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "simulator/device_file.h"

/** Where ./simulate preloads the log file's writer. */
extern "C" __attribute__((weak)) void EndLogFile();

namespace kalvorn::simulated {

namespace {

using device::Backend;
using device::Device;
using device::DeviceFile;
using device::Event;
using device::Member;
using device::Rule;
using std::string;

std::atomic<int> g_starts{0};
std::mutex g_lock;

/** Of the device that runs. */
struct State {
    string path;
    DeviceFile file;
    std::vector<Member> atStart;
    std::vector<Member> added;  // declared since
};

State& Running() {
    static State* state = new State;  // events happen until the process ends
    return *state;
}

void Tell(const string& what) {
    fprintf(stderr, "simulated device: %s\n", what.c_str());
}

bool Contains(const std::vector<Member>& members, const Member& member) {
    return std::any_of(members.begin(), members.end(), [&](const Member& other) {
        return other.backend == member.backend && other.name == member.name;
    });
}

/** A service that the device has late is its own from when it starts; others were added. */
void Remember(const Member& member) {
    const std::lock_guard lock(g_lock);
    if (Contains(Running().atStart, member)) return;
    (Contains(Running().file.late, member) ? Running().atStart : Running().added).push_back(member);
}

device::Service& At(const Member& member) {
    return Device::Get().At(member.backend, member.name);
}

void StartUnlessRunning(const std::vector<Member>& members) {
    for (const Member& member : members) {
        if (!At(member).IsRunning()) Device::Get().Start(member.backend, member.name);
    }
}

/** Only a registration lets the library connect HIDL services that it has released. */
void AnnounceReleased(const std::vector<Member>& members) {
    for (const Member& member : members) {
        if (member.backend != Backend::kHidl || At(member).DeathLinks() != 0) continue;
        if (Device::Get().IsRunning(Backend::kAidl, member.name)) continue;  // held over AIDL
        Device::Get().Start(member.backend, member.name);
        Device::Settle();
        return;
    }
}

void Happen(const Event& event) {
    Device& device = Device::Get();
    const auto& [backend, service] = event.member;
    if (event.kind == Event::kWait) {
        std::this_thread::sleep_for(std::chrono::duration<double>(event.seconds));
        return;
    }
    __android_log_write(ANDROID_LOG_INFO, "SimulatedDevice", event.line.c_str());
    if (event.kind == Event::kKill) device.At(backend, service).Kill();
    if (event.kind == Event::kRestart) Restart(backend, service);
    if (event.kind == Event::kKillProcess) device.KillProcess(service);
    if (event.kind == Event::kRestartProcess) device.RestartProcess(service);
    if (event.kind == Event::kAnswer) device.Script(event.rule);
}

/** On a thread of its own, for as long as that device runs. */
void Play(std::vector<Event> events, int starts) {
    std::thread([events = std::move(events), starts] {
        for (const Event& event : events) {
            if (g_starts == starts) Happen(event);
        }
    }).detach();
}

/** The events of a fifo, as they come. One that is open for writing too has no end. */
void PlayFifo(const string& path) {
    std::fstream lines(path, std::ios::in | std::ios::out);
    for (string line; std::getline(lines, line);) {
        DeviceFile read;
        try {
            read.Read(line);
        } catch (const std::runtime_error& error) {
            Tell(error.what());
        }
        for (const Event& event : read.events) Happen(event);
        for (Rule& rule : read.rules) Device::Get().Script(std::move(rule));
    }
}

void StartEvents(const string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode)) {
        std::thread(PlayFifo, path).detach();
    } else {
        Play(device::ReadDeviceFile(path).events, g_starts);
    }
}

void StartRules() {
    for (const Rule& rule : Running().file.rules) Device::Get().Script(rule);
}

}  // namespace

void Start(const string& device) {
    const string path = device::DevicePath(device);
    const DeviceFile file = device::ReadDeviceFile(path);
    g_starts++;
    Device::Get().Reset();
    Device::Get().GroupProcesses(file.processes);
    {
        const std::lock_guard lock(g_lock);
        Running().path = path;
        Running().file = file;
        Running().atStart = file.running;
        Running().added.clear();
    }
    StartRules();
    for (const Member& member : file.late) At(member).Declare();
    StartUnlessRunning(file.running);
    Play(file.events, g_starts);
}

bool Runs(const string& device) {
    const std::lock_guard lock(g_lock);
    return device::DevicePath(device) == Running().path;
}

string Path() {
    const std::lock_guard lock(g_lock);
    return Running().path;
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
        atStart = Running().atStart;
        added.swap(Running().added);
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
    StartRules();
}

void StartAsNamed() {
    static std::once_flag once;
    std::call_once(once, [] {
        try {
            if (const char* device = getenv("KALVORN_DEVICE")) Start(device);
            if (const char* events = getenv("KALVORN_EVENTS")) StartEvents(events);
        } catch (const std::runtime_error& error) {
            Tell(error.what());
            _exit(2);
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
