#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>

namespace kalvorn::host::hidl_runtime {

/**
 * The HIDL thread: a client process has one by default, so deaths and notifications come one at a
 * time and in order, and one that blocks holds up the rest. Started by the first delivery, it
 * lives as long as the process; the object must never be destroyed.
 */
class HidlThread {
  public:
    using Delivery = std::function<void()>;

    void post(Delivery delivery);

    /** How many deliveries were posted so far. */
    size_t posted();

    /** Drops what has not started yet. */
    void clear();

    /** False when deliveries are still queued or running after `timeout`. */
    bool waitIdle(std::chrono::milliseconds timeout);

  private:
    void run();

    std::mutex mMutex;
    std::condition_variable mChanged;
    std::deque<Delivery> mQueue;
    size_t mPosted = 0;
    bool mStarted = false;
    bool mBusy = false;
};

}  // namespace kalvorn::host::hidl_runtime
