#include <binder_host.h>

#include <utility>

#include "simulator/device.h"
#include "simulator/objects.h"

namespace kalvorn::device {

void Objects::Add(const Objects& more) {
    binders.insert(binders.end(), more.binders.begin(), more.binders.end());
    hidlServices.insert(hidlServices.end(), more.hidlServices.begin(), more.hidlServices.end());
}

void Objects::Kill() const {
    host::KillHidlProcess(hidlServices, [this] { host::KillProcess(binders); });
}

void Service::Kill() {
    if (const auto objects = Forget()) objects->Kill();
}

std::shared_ptr<const Objects> Service::Forget() {
    return Run(nullptr);
}

std::shared_ptr<const Objects> Service::Running() const {
    const std::lock_guard lock(mLock);
    return mObjects;
}

std::shared_ptr<const Objects> Service::Run(std::shared_ptr<const Objects> objects) {
    const std::lock_guard lock(mLock);
    return std::exchange(mObjects, std::move(objects));
}

void Service::RefuseDeathLinks() {
    const auto objects = Running();
    if (objects == nullptr) return;
    for (const auto& binder : objects->binders) host::RefuseDeathLinks(binder, true);
    for (const auto& service : objects->hidlServices) host::RefuseHidlDeathLinks(service, true);
}

size_t Service::DeathLinks() const {
    const auto objects = Running();
    size_t links = 0;
    if (objects == nullptr) return links;
    for (const auto& binder : objects->binders) links += host::DeathLinkCount(binder);
    for (const auto& service : objects->hidlServices) links += host::HidlDeathLinkCount(service);
    return links;
}

}  // namespace kalvorn::device
