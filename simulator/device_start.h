#pragma once

#include <string>

#include "simulator/device.h"

/** The one simulated device of a process that is not a test: it starts by itself. */
namespace kalvorn::simulated {

/**
 * Starts the device that the environment names, once: KALVORN_DEVICE is its name or file, and
 * KALVORN_EVENTS a file, or a fifo, with events that happen to it. What is wrong in them is told on
 * stderr, and in a file ends the process with status 2.
 */
void StartAsNamed();

/**
 * Replaces the device by a named one or that of a file; only while nothing holds its services.
 * Throws std::runtime_error, and leaves the device, for a file that is wrong.
 */
void Start(const std::string& device);

/** Whether it is this device that runs, and the path of its file; empty when none was started. */
bool Runs(const std::string& device);
std::string Path();

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
