#pragma once

#include <string>
#include <vector>

#include "simulator/device.h"

namespace kalvorn::device {

/** What happens to a device. */
struct Event {
    enum Kind { kWait, kKill, kRestart, kKillProcess, kRestartProcess, kAnswer };
    Kind kind;
    std::string line;
    double seconds = 0;
    Member member{Backend::kAidl, ""};
    Rule rule{};
};

/**
 * A device as a file tells of it, in lines of these kinds, and comments after #:
 *
 *     aidl|hidl SERVICE...         these run
 *     late aidl|hidl SERVICE...    these are declared, and an event starts them
 *     process SERVICE...           these share a process
 *     CALLS -> ANSWER              a rule, as of ParseRule(); between events, from then on
 *     wait SECONDS                 the events, one after the other
 *     kill|restart aidl|hidl SERVICE
 *     kill-process|restart-process SERVICE
 */
struct DeviceFile {
    std::vector<Member> running, late;
    std::vector<Process> processes;
    std::vector<Rule> rules;
    std::vector<Event> events;

    /** Takes a line. Throws std::runtime_error for what it does not understand. */
    void Read(const std::string& line);
};

/** Throws std::runtime_error that names file and line for what it does not understand. */
DeviceFile ReadDeviceFile(const std::string& path);

/** The devices that need no file of one's own. */
std::vector<std::string> NamedDevices();
bool IsNamedDevice(const std::string& name);

/**
 * The file of a named device, or the full path of another file, which has a / or ends with .device.
 * Throws std::runtime_error for what is neither.
 */
std::string DevicePath(const std::string& device);

}  // namespace kalvorn::device
