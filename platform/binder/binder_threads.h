#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

namespace kalvorn::host {

/**
 * The binder threads. A task may block for long: one more thread is started when none is idle, and
 * the next when that one has come, up to a limit beyond which tasks wait. Threads never end, so the
 * pool lives until the process does.
 */
class BinderThreads {
  public:
    static BinderThreads& Get();

    void post(std::function<void()> task);

    /** False if tasks are still waiting or running after `timeout`. */
    bool waitUntilIdle(std::chrono::milliseconds timeout);

    /** The same, but a thread that waits for a service counts as idle. */
    bool waitUntilTakenUp(std::chrono::milliseconds timeout);

    /** While it lives, the calling thread waits for a service. */
    class WaitingForService {
      public:
        WaitingForService() { BinderThreads::Get().countWaiting(1); }
        ~WaitingForService() { BinderThreads::Get().countWaiting(-1); }
        WaitingForService(const WaitingForService&) = delete;
        WaitingForService& operator=(const WaitingForService&) = delete;
    };

  private:
    BinderThreads() = default;
    void startIfNeeded();
    void serve();
    std::function<void()> nextTask();
    void countWaiting(int change);

    static constexpr size_t kMaxThreads = 15;

    std::mutex mMutex;
    std::condition_variable mWork;
    std::condition_variable mIdleChanged;
    std::deque<std::function<void()>> mTasks;
    size_t mThreads = 0;
    bool mIsStarting = false;
    size_t mIdle = 0;
    size_t mWaiting = 0;
};

}  // namespace kalvorn::host
