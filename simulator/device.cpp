#include "simulator/device.h"

#include <binder_host.h>
#include <hidl/hidl_host.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <utility>

#include "simulator/device_file.h"
#include "simulator/objects.h"

namespace kalvorn::device {

std::atomic<int> Counted::sLive{0};

Answer Store::Read(int32_t id, size_t most) const {
    const std::lock_guard lock(mLock);
    const auto found = mTexts.find(id);
    if (found == mTexts.end() || found->second.size() > most) return Answer(-1);
    return Answer(0, found->second);
}

void Store::Write(int32_t id, const std::string& text, const Answer& answer) {
    if (answer.fault != Fault::kNone || answer.code != 0) return;
    const std::lock_guard lock(mLock);
    mTexts[id] = text;
}

void Store::Clear() {
    const std::lock_guard lock(mLock);
    mTexts.clear();
}

Device::Device() : mAidl(AidlServices()), mHidl(HidlServices()) {
    for (const auto& [name, service] : mAidl) mNames.push_back(name);
}

Device& Device::Get() {
    static Device* device = new Device;  // outlives the services' threads at process exit
    return *device;
}

const std::vector<std::string>& Device::Services() {
    return Get().mNames;
}

namespace {

/** A service's name without its revision. */
std::string BaseName(const std::string& service) {
    return service.substr(0, service.find('@'));
}

}  // namespace

bool Device::StartProfile(const std::string& profile) {
    if (!IsNamedDevice(profile)) return false;
    for (const auto& [backend, service] : ReadDeviceFile(DevicePath(profile)).running) {
        Start(backend, service);
    }
    return true;
}

const NamedServices& Device::ServicesOf(Backend backend) const {
    return backend == Backend::kAidl ? mAidl : mHidl;
}

Service* Device::Find(Backend backend, const std::string& service) const {
    for (const auto& [name, named] : ServicesOf(backend)) {
        if (name == service) return named.get();
    }
    return nullptr;
}

Service& Device::At(Backend backend, const std::string& service) const {
    Service* const found = Find(backend, service);
    if (found == nullptr) throw std::out_of_range(service);
    return *found;
}

bool Device::Has(Backend backend, const std::string& service) const {
    return Find(backend, service) != nullptr;
}

bool Device::IsRunning(Backend backend, const std::string& service) const {
    const Service* const found = Find(backend, service);
    return found != nullptr && found->IsRunning();
}

size_t Device::DeathLinks(Backend backend, const std::string& service) const {
    return IsRunning(backend, service) ? At(backend, service).DeathLinks() : 0;
}

void Device::Start(Backend backend, const std::string& service) {
    At(backend, service).Declare();
    At(backend, service).Start();
    ShareProcess(ServicesWith(service));
}

bool Device::GroupProcesses(const std::string& grouping) {
    if (grouping == "one") {
        GroupProcesses({Services()});
    } else if (grouping == "device") {
        GroupProcesses(ReadDeviceFile(DevicePath("aidl")).processes);
    } else if (grouping == "each") {
        GroupProcesses(std::vector<Process>());
    } else {
        return false;
    }
    return true;
}

void Device::GroupProcesses(const std::vector<Process>& shared) {
    {
        const std::lock_guard lock(mLock);
        mShared = shared;
        mKilled.clear();
    }
    for (const std::string& service : Services()) ShareProcess(ServicesWith(service));
}

std::vector<std::string> Device::ServicesWith(const std::string& service) const {
    const std::string name = BaseName(service);
    if (!Contains(Services(), name)) throw std::out_of_range(service);
    const std::lock_guard lock(mLock);
    for (const Process& process : mShared) {
        if (Contains(process, name)) return process;
    }
    return {name};
}

std::vector<Member> Device::MembersOf(const Process& process) const {
    std::vector<Member> members;
    for (const Backend backend : {Backend::kAidl, Backend::kHidl}) {
        for (const auto& [name, service] : ServicesOf(backend)) {
            if (Contains(process, BaseName(name))) members.push_back({backend, name});
        }
    }
    return members;
}

/** The calls under way of a process have to do with one buffer for them all. */
void Device::ShareProcess(const Process& process) const {
    Objects objects;
    for (const Member& member : MembersOf(process)) {
        if (const auto running = At(member.backend, member.name).Running()) objects.Add(*running);
    }
    host::ShareProcess(objects.binders);
}

void Device::KillProcess(const std::string& service) {
    const Process process = ServicesWith(service);
    Objects dying;
    std::vector<Member> killed;
    for (const Member& member : MembersOf(process)) {
        const auto running = At(member.backend, member.name).Forget();
        if (running == nullptr) continue;
        dying.Add(*running);
        killed.push_back(member);
    }
    if (killed.empty()) return;
    {
        const std::lock_guard lock(mLock);
        mKilled[process.front()] = std::move(killed);
    }
    dying.Kill();
}

void Device::RestartProcess(const std::string& service) {
    std::vector<Member> killed;
    const std::string first = ServicesWith(service).front();
    {
        const std::lock_guard lock(mLock);
        killed.swap(mKilled[first]);
    }
    for (const Member& member : killed) {
        if (!IsRunning(member.backend, member.name)) Start(member.backend, member.name);
    }
}

namespace {

// Idle at once: the binder threads are seen idle while no HIDL delivery is under way, nor one came
// since the HIDL thread was seen idle.
bool WaitForBoth(int milliseconds, bool (*waitForBinder)(std::chrono::milliseconds)) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    const auto left = [end] {
        const auto time = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        return std::max(time, std::chrono::milliseconds(0));
    };
    for (;;) {
        const size_t deliveries = host::HidlDeliveryCount();
        if (!host::WaitForHidlDelivery(left()) || !waitForBinder(left())) return false;
        if (host::HidlDeliveryCount() == deliveries) return true;
        if (Clock::now() > end) return false;
    }
}

}  // namespace

bool Device::Settle(int milliseconds) {
    return WaitForBoth(milliseconds, host::WaitForDeathDelivery);
}

bool Device::AwaitHeard(int milliseconds) {
    return WaitForBoth(milliseconds, host::WaitForDeathUptake);
}

void Device::Script(const std::string& method, Answer answer) {
    Rule rule;
    rule.calls.method = method;
    rule.answer = std::move(answer);
    rule.times = 1;
    Script(std::move(rule));
}

void Device::Script(Rule rule) {
    mScript.Add(std::move(rule));
}

void Device::Release() {
    const std::lock_guard lock(mLock);
    mReleases++;
    mReleased.notify_all();
}

std::vector<std::string> Device::TakeCalls() {
    const std::lock_guard lock(mLock);
    return std::exchange(mCalls, {});
}

void Device::RecordCalls(bool record) {
    const std::lock_guard lock(mLock);
    mRecordsCalls = record;
}

void Device::OnCall(std::function<void()> observer) {
    const std::lock_guard lock(mLock);
    mObserver = std::move(observer);
}

namespace {

/** A healthy device's answers: code 0 and no text but for these. */
const std::map<std::string, Answer>& UsualAnswers() {
    static const auto* answers = new std::map<std::string, Answer>{
#include "usual_answers.inc"
    };
    return *answers;
}

std::string CallText(Backend backend, const std::string& service, const std::string& method,
                     const std::vector<std::string>& arguments) {
    return std::string(NameOf(backend)) + " " + service + "." + method + "(" + Joined(arguments) +
           ")";
}

}  // namespace

/** What is kept from call to call, by the number that comes first; a second one when it is read is
 * the most bytes that the caller takes. */
const Device::Kept Device::kKept[] = {{"readNv", "writeNv", &Device::nv},
                                      {"getTestResult", "setTestResult", &Device::results},
                                      {"getControlFlag", "setControlFlag", &Device::flags}};

Answer Device::Usual(const std::string& method, const std::vector<std::string>& arguments) const {
    for (const Kept& kept : kKept) {
        if (method != kept.read) continue;
        const size_t most = arguments.size() > 1 ? std::stoul(arguments[1]) : std::string::npos;
        return (this->*kept.store).Read(std::stoi(arguments[0]), most);
    }
    const auto found = UsualAnswers().find(method);
    return found == UsualAnswers().end() ? Answer() : found->second;
}

/** What runs as a service, in whichever revision. */
Device::Revisions Device::RunningAs(Backend backend, const std::string& service) const {
    Revisions running;
    for (const char* revision : {"", "@1.0"}) {
        if (Has(backend, service + revision)) {
            running.push_back(At(backend, service + revision).Running());
        }
    }
    return running;
}

/** Waits as the rule says, but not for a device that has been cleared, nor for a dead service. */
void Device::Hold(const Rule& rule, int releases, const std::function<bool()>& isOver) {
    constexpr auto kLook = std::chrono::milliseconds(10);
    const auto end = std::chrono::steady_clock::now() + rule.delay;
    std::unique_lock lock(mLock);
    while (!isOver() && (!rule.hangs || mReleases == releases)) {
        const auto now = std::chrono::steady_clock::now();
        if (!rule.hangs && now >= end) return;
        mReleased.wait_until(lock, rule.hangs ? now + kLook : std::min(now + kLook, end));
    }
}

Answer Device::Ask(Backend backend, const std::string& service, const std::string& method,
                   const std::vector<std::string>& arguments) {
    // As a rule nothing is scripted, and then at no cost.
    const Revisions asked = mScript.IsEmpty() ? Revisions() : RunningAs(backend, service);
    std::function<void()> observer;
    int releases, clears;
    {
        const std::lock_guard lock(mLock);
        if (mRecordsCalls) mCalls.push_back(CallText(backend, service, method, arguments));
        observer = mObserver;
        releases = mReleases;
        clears = mClears;
    }
    if (observer) observer();  // it may kill, or look at the calls
    const std::optional<Rule> rule = mScript.Take(backend, service, method, arguments);
    if (rule) {
        Hold(*rule, releases,
             [&] { return mClears != clears || RunningAs(backend, service) != asked; });
    }
    Answer answer = rule && rule->answer ? *rule->answer : Usual(method, arguments);
    for (const Kept& kept : kKept) {
        if (method != kept.write) continue;
        const std::string& quoted = arguments[1];
        const std::string text = quoted.substr(1, quoted.size() - 2);
        (this->*kept.store).Write(std::stoi(arguments[0]), text, answer);
    }
    return answer;
}

void Device::Reset() {
    Clear();  // no call is held
    host::ResetServiceManager();
    host::ResetHidlRegistry();
    Settle();
    for (const NamedServices* services : {&mAidl, &mHidl}) {
        for (const auto& [name, service] : *services) service->Forget();
    }
    GroupProcesses("each");
    Clear();
}

void Device::Clear() {
    mScript.Clear();
    const std::lock_guard lock(mLock);
    mClears++;
    mReleased.notify_all();
    mRecordsCalls = true;
    mCalls.clear();
    mObserver = nullptr;
    nv.Clear();
    results.Clear();
    flags.Clear();
}

int Device::LiveServices() {
    return Counted::sLive;
}

}  // namespace kalvorn::device
