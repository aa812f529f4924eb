#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <vector>

namespace kalvorn::host {

/**
 * The binder threads. A task may block for long: one more thread is started when none is idle,
 * up to a limit beyond which tasks wait. Threads never end, so the pool lives until the process
 * does.
 */
class BinderThreads {
  public:
    static BinderThreads& Get();

    /** The tasks start together, each on a thread of its own as far as there are threads. */
    void post(std::vector<std::function<void()>> tasks);

    /** False if tasks are still waiting or running after `timeout`. */
    bool waitUntilIdle(std::chrono::milliseconds timeout);

  private:
    BinderThreads() = default;
    void serve();
    std::function<void()> nextTask();

    static constexpr size_t kMaxThreads = 15;

    std::mutex mMutex;
    std::condition_variable mWork;
    std::condition_variable mIdleChanged;
    std::deque<std::function<void()>> mTasks;
    size_t mThreads = 0;
    size_t mIdle = 0;
};

}  // namespace kalvorn::host
