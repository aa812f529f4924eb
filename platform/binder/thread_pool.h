#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

namespace kalvorn::host {

/**
 * The threads of one binder. A task may block for long: one more thread is started when none is
 * idle, and the next when that one has come, up to a limit beyond which tasks wait. Threads never
 * end, so a pool must never be destroyed.
 */
class ThreadPool {
  public:
    using Task = std::function<void()>;

    explicit ThreadPool(size_t most) : mMost(most) {}

    void post(Task task);

    /** How many tasks were posted so far. */
    size_t posted() const;

    /** Drops what has not started yet. */
    void clear();

    /** False if tasks are still waiting or running after `timeout`. */
    bool waitUntilIdle(std::chrono::milliseconds timeout);

    /** The same, but a thread that waits for a service counts as idle. */
    bool waitUntilTakenUp(std::chrono::milliseconds timeout);

    /** While it lives, the calling thread, if it is one of the pool, waits for a service. */
    class WaitingForService {
      public:
        explicit WaitingForService(ThreadPool* pool) : mPool(pool) { mPool->countWaiting(1); }
        ~WaitingForService() { mPool->countWaiting(-1); }
        WaitingForService(const WaitingForService&) = delete;
        WaitingForService& operator=(const WaitingForService&) = delete;

      private:
        ThreadPool* const mPool;
    };

  private:
    void startIfNeeded();
    void serve();
    Task nextTask();
    void countWaiting(int change);

    const size_t mMost;
    mutable std::mutex mMutex;
    std::condition_variable mWork;
    std::condition_variable mIdleChanged;
    std::deque<Task> mTasks;
    size_t mPosted = 0;
    size_t mThreads = 0;
    bool mIsStarting = false;
    size_t mIdle = 0;
    size_t mWaiting = 0;
};

/** The binder threads: as many as a process has that asks for no other number. */
ThreadPool& BinderThreads();

}  // namespace kalvorn::host
