/** What tests and the simulated device do to binder services. All on any thread. */
#pragma once

#include <binder/IBinder.h>

#include <chrono>
#include <cstddef>
#include <string>

namespace kalvorn::host {

/** Declares a service such as "pkg.IFoo/default": isDeclared() is true from here on. */
void DeclareService(const std::string& name);

/** Takes a declaration back. Whoever waits for the service gets null; a registration stays. */
void UndeclareService(const std::string& name);

/** Forgets all declarations and registrations. Whoever waits for a service gets null. */
void ResetServiceManager();

/**
 * Lets a service die as if its process had ended: its registrations go, transactions answer
 * DEAD_OBJECT (one that is under way included), and every death link is notified on a binder
 * thread. Does not wait for the notices. `local` is the service object itself, not a proxy, as
 * in all functions below. Killing it again does nothing.
 */
void KillService(const android::sp<android::IBinder>& local);

/** The next call of a method answers `status` without reaching the service; later ones reach it. */
void FailNextTransaction(const android::sp<android::IBinder>& local, android::status_t status);

/** While `refuse` is set, linkToDeath on the service's proxy answers INVALID_OPERATION. */
void RefuseDeathLinks(const android::sp<android::IBinder>& local, bool refuse);

/** How many death links with a living recipient the service has now; 0 once it is dead. */
size_t DeathLinkCount(const android::sp<android::IBinder>& local);

/** Waits until all death notices have returned. False if some have not within `timeout`. */
bool WaitForDeathDelivery(std::chrono::milliseconds timeout);

}  // namespace kalvorn::host
