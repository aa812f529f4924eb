#pragma once

#include <string>

#include "simulator/device.h"

/** The one simulated device of a process that is not a test: it starts by itself. */
namespace kalvorn::simulated {

/**
 * Starts the device that the environment names, once: KALVORN_DEVICE is its profile, and
 * KALVORN_EVENTS a file, or a fifo, with what happens to it, a line each:
 *
 *     wait SECONDS
 *     kill|restart AIDL|HIDL SERVICE
 *     kill-process|restart-process SERVICE
 *
 * What is wrong in them is told on stderr, and in a file ends the process with status 2.
 */
void StartAsNamed();

/** Replaces the device; only while nothing holds its services. False: no such profile. */
bool Start(const std::string& profile);

/** Of the device that runs; empty when none was started. */
std::string Profile();

/** Starts a service that does not run. */
void Restart(device::Backend backend, const std::string& service);

/** Whether anything runs in the process of a service. */
bool IsProcessRunning(const std::string& service);

/** Declares a service, which Restart() starts. */
void Declare(device::Backend backend, const std::string& service);

/**
 * As the device was when it started, and all of it connected when the library is loaded, whatever
 * it waits for.
 */
void Restore(bool isLibraryLoaded);

/** Ends the log and lets go whoever waits for a service, so that the process can end in peace. */
void Stop();
}  // namespace kalvorn::simulated
