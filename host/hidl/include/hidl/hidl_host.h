#pragma once

#include <android/hidl/base/1.0/IBase.h>

#include <chrono>
#include <cstddef>
#include <string>

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
 */
void DeclareHidlService(const std::string& descriptor, const std::string& instance);

/** Takes a declaration back; whoever waits for the service gets null. */
void UndeclareHidlService(const std::string& descriptor, const std::string& instance);

/**
 * Lets a service die: it is unregistered, its IBase calls answer DEAD_OBJECT, and every death link
 * is delivered on a HIDL thread. The object stays dead for good, as a process does; a restarted
 * service is a new object. Clients that hold it keep it in memory. Null or dead: nothing happens.
 */
void KillHidlService(HidlService service);

/** True once the service was killed; a simulated service then answers with a failed Return. */
bool IsHidlServiceDead(const ::android::hidl::base::V1_0::IBase* service);

/** Makes linkToDeath() on the service answer false (or true again); existing links stay. */
void RefuseHidlDeathLinks(const HidlService& service, bool refuse);

/** How many death links the service has, those of vanished recipients included. */
size_t HidlDeathLinkCount(const HidlService& service);

/** How many registerForNotifications() calls are in force for the descriptor. */
size_t HidlNotificationCount(const std::string& descriptor);

/**
 * Waits until no notification and no death is under way or outstanding, those included that the
 * callbacks themselves bring about. False when the time is up; pointless within a callback.
 */
bool WaitForHidlDelivery(std::chrono::milliseconds timeout);

/**
 * Back to an empty registry: declarations, services, listeners, death links and undelivered
 * messages go, waiters get null. Callbacks that run already run on, so WaitForHidlDelivery()
 * belongs behind it; both belong before the end of a process whose statics the callbacks use.
 */
void ResetHidlRegistry();

}  // namespace kalvorn::host
