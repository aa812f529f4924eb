#include "device/device.h"

#include <binder_host.h>
#include <hidl/hidl_host.h>

namespace kalvorn::device {

std::atomic<int> Counted::sLive{0};

Answer Store::Read(int32_t id) const {
    const std::lock_guard lock(mLock);
    const auto found = mTexts.find(id);
    return found == mTexts.end() ? Answer(-1) : Answer(0, found->second);
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

Device::Device() : mAidl(AidlServices()), mHidl(HidlServices()) {}

Device& Device::Get() {
    static Device* device = new Device;  // outlives the services' threads at process exit
    return *device;
}

const std::vector<std::string>& Device::Services() {
    static const auto* services = new std::vector<std::string>{
            "factory", "display",         "touch",       "sensors", "power", "light",    "camera",
            "radio",   "display_factory", "fingerprint", "chip",    "sim",   "satellite"};
    return *services;
}

namespace {

bool IsHidlInMixed(const std::string& service) {
    return service == "sensors" || service == "light" || service == "touch";
}

}  // namespace

bool Device::StartProfile(const std::string& profile) {
    if (profile == "bare") return true;
    for (const std::string& service : Services()) {
        if (profile == "aidl") {
            Start(Backend::kAidl, service);
        } else if (profile == "hidl") {
            if (service != "sim" && service != "satellite") Start(Backend::kHidl, service);
        } else if (profile == "mixed") {
            if (service == "satellite") continue;
            Start(IsHidlInMixed(service) ? Backend::kHidl : Backend::kAidl, service);
        } else {
            return false;
        }
    }
    return true;
}

const ServiceMap& Device::ServicesOf(Backend backend) const {
    return backend == Backend::kAidl ? mAidl : mHidl;
}

Service& Device::At(Backend backend, const std::string& service) const {
    return *ServicesOf(backend).at(service);
}

bool Device::IsRunning(Backend backend, const std::string& service) const {
    return ServicesOf(backend).count(service) != 0 && At(backend, service).IsRunning();
}

size_t Device::DeathLinks(Backend backend, const std::string& service) const {
    return IsRunning(backend, service) ? At(backend, service).DeathLinks() : 0;
}

void Device::Start(Backend backend, const std::string& service) {
    At(backend, service).Declare();
    At(backend, service).Start();
}

bool Device::Settle(int milliseconds) {
    const std::chrono::milliseconds timeout(milliseconds);
    return host::WaitForDeathDelivery(timeout) && host::WaitForHidlDelivery(timeout);
}

void Device::Script(const std::string& method, Answer answer) {
    const std::lock_guard lock(mLock);
    mScript[method].push_back(std::move(answer));
}

std::vector<std::string> Device::TakeCalls() {
    const std::lock_guard lock(mLock);
    return std::exchange(mCalls, {});
}

void Device::OnCall(std::function<void()> observer) {
    const std::lock_guard lock(mLock);
    mObserver = std::move(observer);
}

Answer Device::Ask(const std::string& method, const std::string& call, Answer usual) {
    const std::lock_guard lock(mLock);
    mCalls.push_back(call);
    if (mObserver) mObserver();
    std::deque<Answer>& scripted = mScript[method];
    if (scripted.empty()) return usual;
    Answer answer = std::move(scripted.front());
    scripted.pop_front();
    return answer;
}

void Device::Reset() {
    host::ResetServiceManager();
    host::ResetHidlRegistry();
    Settle();
    for (const ServiceMap* services : {&mAidl, &mHidl}) {
        for (const auto& [name, service] : *services) service->Forget();
    }
    const std::lock_guard lock(mLock);
    mScript.clear();
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
