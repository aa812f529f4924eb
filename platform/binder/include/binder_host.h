/** What tests and the simulated device do to binder services. All on any thread. */
#pragma once

#include <binder/IBinder.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace kalvorn::host {

/**
 * Declares a service such as "pkg.IFoo/default", which is what isDeclared() answers, or takes that
 * back: a registration stays, and whoever waits for the service goes on.
 */
void DeclareService(const std::string& name, bool declared = true);

/**
 * Forgets all declarations and registrations, and ends KeepDeadNames. Whoever waits for a service
 * gets null: that is the host's way to end a wait, which on a device only the service ends.
 */
void ResetServiceManager();

/**
 * While `keep` is set, a service that dies stays registered, as it may for a moment on a device:
 * look-ups answer with its proxy. Ending this drops the names of all dead services.
 */
void KeepDeadNames(bool keep);

/** How often anybody has asked the service manager for a service so far. */
size_t LookUpCount();

/**
 * Lets services die as if their one process had ended: transactions answer DEAD_OBJECT (those
 * under way included) for all of them before the first notice of death comes. Then they go one by
 * one: the proxy, if it is linked, is told on a binder thread, and the name goes. So a notice may
 * run while later services are still found and linked. Does not wait for the notices. `locals` are
 * the service objects themselves, not proxies, as in all functions below. One that is dead already
 * is passed over.
 */
void KillProcess(const std::vector<android::sp<android::IBinder>>& locals);

/** Called after each service of a dying process has gone, and before the next; null for nothing. */
void OnServiceDied(std::function<void()> hook);

/** Called after a link to death was made, by the thread that made it; null for nothing. */
void OnLink(std::function<void()> hook);

/**
 * Called when the last strong reference to a proxy has gone and its links are still to be cleared,
 * a moment in which another thread may look the service up; null for nothing.
 */
void OnLastReference(std::function<void()> hook);

/**
 * Puts services into one process: the requests under way to them share its transaction buffer.
 * Otherwise each has a process of its own. What does not fit fails with FAILED_TRANSACTION.
 */
void ShareProcess(const std::vector<android::sp<android::IBinder>>& locals);

/** While `refuse` is set, linkToDeath on the service's proxy answers INVALID_OPERATION. */
void RefuseDeathLinks(const android::sp<android::IBinder>& local, bool refuse);

/** How many death links with a living recipient the service has now; 0 once it is dead. */
size_t DeathLinkCount(const android::sp<android::IBinder>& local);

/** Waits until all death notices have returned. False if some have not within `timeout`. */
bool WaitForDeathDelivery(std::chrono::milliseconds timeout);

/** The same, but a notice whose thread waits for a service counts as returned. */
bool WaitForDeathUptake(std::chrono::milliseconds timeout);

}  // namespace kalvorn::host
