#pragma once

#include <android/hidl/base/1.0/IBase.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/**
 * Control of the host's HIDL services: what the manifest, init and the kernel decide on a device.
 * A descriptor is a fully qualified interface name, "package@1.0::IName"; every function may be
 * called on any thread, from within a callback too, and holds no lock while it runs foreign code.
 */
namespace kalvorn::host {

using HidlService = ::android::sp<::android::hidl::base::V1_0::IBase>;

/**
 * Declares an instance of exactly this descriptor: getService() waits for it from now on, while an
 * undeclared one is null at once, registered or not. A parent version has a declaration of its own.
 * Or takes that back; whoever waits for the service already goes on waiting.
 */
void DeclareHidlService(const std::string& descriptor, const std::string& instance,
                        bool declared = true);

/**
 * Lets services die as one process: all are dead before the first notice is queued. They are
 * unregistered, their IBase calls answer DEAD_OBJECT, and each has one obituary, which tells its
 * death links on the HIDL thread. Until that begins links can be taken back and are still made,
 * after it neither. The objects stay dead for good, as a process does; a restarted service is a new
 * object. Clients that hold one keep it in memory. Null or dead: nothing happens. `killTheRest`
 * runs before the first notice: for what else, beside HIDL services, dies with the process.
 */
void KillHidlProcess(const std::vector<HidlService>& services,
                     const std::function<void()>& killTheRest = nullptr);

/**
 * While set, dead services stay registered, as a service manager that has not heard of the death
 * yet may leave them for a moment: look-ups find them, and notice that they are dead. Switching it
 * off drops their names.
 */
void KeepDeadHidlNames(bool keep);

/** True once the service was killed; a simulated service then answers with a failed Return. */
bool IsHidlServiceDead(const ::android::hidl::base::V1_0::IBase* service);

/** Makes linkToDeath() on the service answer false (or true again); existing links stay. */
void RefuseHidlDeathLinks(const HidlService& service, bool refuse);

/** How often anybody has looked a service up so far. */
size_t HidlLookUpCount();

/** Called after a link to death was made, by the thread that made it; null for nothing. */
void OnHidlLink(std::function<void()> hook);

/** How many death links the service has, those of vanished recipients included. */
size_t HidlDeathLinkCount(const HidlService& service);

/**
 * How many registerForNotifications() calls are in force for the descriptor; an empty one stands
 * for all.
 */
size_t HidlNotificationCount(const std::string& descriptor);

/** How many notifications and obituaries were ever queued. */
size_t HidlDeliveryCount();

/**
 * Waits until no notification and no death is under way or outstanding, those included that the
 * callbacks themselves bring about. False when the time is up; pointless within a callback.
 */
bool WaitForHidlDelivery(std::chrono::milliseconds timeout);

/**
 * Back to an empty registry: declarations, services, listeners, death links and undelivered
 * messages go, dead names are dropped at once again. Waiters get null: this is the host's own end,
 * on a device nothing but the service ends their wait. Callbacks that run already run on, so
 * WaitForHidlDelivery() belongs behind it; both belong before the end of a process whose statics
 * the callbacks use.
 */
void ResetHidlRegistry();

}  // namespace kalvorn::host
