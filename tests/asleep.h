#pragma once

#include <sys/types.h>

#include <fstream>
#include <future>
#include <string>
#include <thread>

/** Waits until a thread that has told its id sleeps, as it does while it waits for a service. */
inline void WaitUntilAsleep(std::future<pid_t> id) {
    const std::string path = "/proc/self/task/" + std::to_string(id.get()) + "/stat";
    for (std::string number, name, state; state != "S"; std::this_thread::yield()) {
        std::ifstream(path) >> number >> name >> state;
    }
}
