#include "simulator/device_file.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace kalvorn::device {

namespace {

using std::string;
using Words = std::vector<string>;

constexpr char kExtension[] = ".device";

/** Empty for a word that names none. */
std::optional<Backend> BackendOf(string word) {
    std::transform(word.begin(), word.end(), word.begin(),
                   [](unsigned char c) { return tolower(c); });
    if (word == "aidl") return Backend::kAidl;
    if (word == "hidl") return Backend::kHidl;
    return {};
}

/** "SERVICE...", "all" (of no revision), or "all but SERVICE...". */
Words ReadNames(Backend backend, Words words) {
    const bool isAll = words[0] == "all";
    if (isAll) {
        if (words.size() == 2 || (words.size() > 2 && words[1] != "but")) {
            Refuse("all is followed by nothing, or by but and services");
        }
        words.erase(words.begin(), words.begin() + (words.size() > 2 ? 2 : 1));
    }
    for (const string& name : words) {
        if (!Device::Get().Has(backend, name)) {
            Refuse("no service \"" + name + "\" over " + NameOf(backend));
        }
    }
    if (!isAll) return words;
    Words names;
    for (const string& name : Device::Services()) {
        if (Device::Get().Has(backend, name) && !Contains(words, name)) names.push_back(name);
    }
    return names;
}

/** The services that stand behind their backend. */
void ReadServices(Words words, std::vector<Member>* members) {
    const auto backend = words.empty() ? std::nullopt : BackendOf(words[0]);
    if (!backend) Refuse("late is followed by aidl or hidl");
    words.erase(words.begin());
    if (words.empty()) Refuse("no services are named");
    for (const string& name : ReadNames(*backend, words)) members->push_back({*backend, name});
}

Process ReadProcess(const Words& words) {
    Process process(words.begin() + 1, words.end());
    for (const string& service : process) {
        if (!Contains(Device::Services(), service)) Refuse("no service \"" + service + "\"");
    }
    return process;
}

/** What begins with the word of an event; false when that cannot happen. */
bool ReadEvent(const Words& words, Event* event) {
    const bool isKill = words[0].compare(0, 4, "kill") == 0;
    if (words[0] == "wait") {
        const auto seconds = words.size() == 2 ? ParseSeconds(words[1]) : std::nullopt;
        event->kind = Event::kWait;
        event->seconds = seconds.value_or(0);
        return seconds.has_value();
    }
    event->member.name = words.back();
    if (words[0] == "kill" || words[0] == "restart") {
        const auto backend = words.size() == 3 ? BackendOf(words[1]) : std::nullopt;
        event->kind = isKill ? Event::kKill : Event::kRestart;
        event->member.backend = backend.value_or(Backend::kAidl);
        return backend && Device::Get().Has(*backend, words[2]);
    }
    event->kind = isKill ? Event::kKillProcess : Event::kRestartProcess;
    return words.size() == 2 && Contains(Device::Services(), words[1]);
}

bool IsEventWord(const string& word) {
    return Contains({"wait", "kill", "restart", "kill-process", "restart-process"}, word);
}

}  // namespace

void DeviceFile::Read(const string& line) {
    if (line.find('\0') != string::npos) Refuse("a zero byte, at which a text would end");
    std::istringstream stream(line);
    Words words;
    for (string word; stream >> word;) words.push_back(word);
    if (words.empty() || words[0][0] == '#') return;
    Event event{Event::kAnswer, line};
    if (line.find(" -> ") != string::npos) {
        const size_t start = line.find(words[0]);
        event.rule = ParseRule(line.substr(start, line.find_last_not_of(" \t\r") + 1 - start));
        if (events.empty()) {
            rules.push_back(event.rule);
        } else {
            events.push_back(event);
        }
    } else if (IsEventWord(words[0])) {
        if (!ReadEvent(words, &event)) Refuse("no event \"" + line + "\"");
        events.push_back(event);
    } else if (words[0] == "process") {
        processes.push_back(ReadProcess(words));
    } else if (words[0] == "late") {
        ReadServices({words.begin() + 1, words.end()}, &late);
    } else if (BackendOf(words[0])) {
        ReadServices(words, &running);
    } else {
        Refuse("neither services, an answer nor an event: " + line);
    }
}

DeviceFile ReadDeviceFile(const string& path) {
    std::ifstream lines(path);
    if (!lines) Refuse("cannot read " + path);
    DeviceFile file;
    int number = 0;
    for (string line; std::getline(lines, line);) {
        number++;
        try {
            file.Read(line);
        } catch (const std::runtime_error& error) {
            Refuse(path + ":" + std::to_string(number) + ": " + error.what());
        }
    }
    if (lines.bad()) Refuse("cannot read " + path);
    return file;
}

Words NamedDevices() {
    Words names;
    for (const auto& entry : std::filesystem::directory_iterator(KALVORN_DEVICES)) {
        if (entry.path().extension() == kExtension) names.push_back(entry.path().stem());
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool IsNamedDevice(const string& name) {
    return Contains(NamedDevices(), name);
}

string DevicePath(const string& device) {
    if (IsNamedDevice(device)) return KALVORN_DEVICES "/" + device + kExtension;
    if (device.find('/') != string::npos ||
        std::filesystem::path(device).extension() == kExtension) {
        return std::filesystem::absolute(device).lexically_normal();
    }
    Refuse("no device \"" + device + "\"; there are: " + Joined(NamedDevices()) +
           ", and files that end with " + kExtension);
}

}  // namespace kalvorn::device
