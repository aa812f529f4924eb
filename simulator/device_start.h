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
 * What is wrong in them is told on stderr.
 */
void StartAsNamed();

/** Replaces the device; only while nothing holds its services. False: no such profile. */
bool Start(const std::string& profile);

/** Of the device that runs; empty when none was started. */
std::string Profile();

/** Starts a service that does not run. */
void Restart(device::Backend backend, const std::string& service);

/** Ends the log and lets go whoever waits for a service, so that the process can end in peace. */
void Stop();

/** Starts what ran in the beginning and runs no more. */
void RestartKilled();

}  // namespace kalvorn::simulated
