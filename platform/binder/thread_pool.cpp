#include "thread_pool.h"

#include <thread>
#include <utility>

#include "binder_host.h"

namespace kalvorn::host {

namespace {

thread_local const ThreadPool* t_pool = nullptr;  // that the thread is of

}  // namespace

void ThreadPool::post(Task task) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mTasks.push_back(std::move(task));
    ++mPosted;
    startIfNeeded();
    mWork.notify_one();
}

size_t ThreadPool::posted() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mPosted;
}

void ThreadPool::clear() {
    std::deque<Task> dropped;  // destroyed last: what it holds may call back
    const std::lock_guard<std::mutex> lock(mMutex);
    dropped.swap(mTasks);
    mIdleChanged.notify_all();
}

/** With the lock held. */
void ThreadPool::startIfNeeded() {
    if (mTasks.empty() || mIdle > 0 || mIsStarting || mThreads == mMost) return;
    mIsStarting = true;
    ++mThreads;
    std::thread([this] { serve(); }).detach();
}

bool ThreadPool::waitUntilIdle(std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> lock(mMutex);
    return mIdleChanged.wait_for(lock, timeout,
                                 [this] { return mTasks.empty() && mIdle == mThreads; });
}

bool ThreadPool::waitUntilTakenUp(std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> lock(mMutex);
    return mIdleChanged.wait_for(lock, timeout,
                                 [this] { return mTasks.empty() && mIdle + mWaiting == mThreads; });
}

void ThreadPool::countWaiting(int change) {
    if (t_pool != this) return;
    const std::lock_guard<std::mutex> lock(mMutex);
    mWaiting += static_cast<size_t>(change);
    mIdleChanged.notify_all();
}

void ThreadPool::serve() {
    t_pool = this;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mIsStarting = false;
    }
    for (;;) nextTask()();  // what the task held goes before the thread counts as idle
}

ThreadPool::Task ThreadPool::nextTask() {
    std::unique_lock<std::mutex> lock(mMutex);
    ++mIdle;
    mIdleChanged.notify_all();
    mWork.wait(lock, [this] { return !mTasks.empty(); });
    --mIdle;
    Task task = std::move(mTasks.front());
    mTasks.pop_front();
    startIfNeeded();
    return task;
}

ThreadPool& BinderThreads() {
    static auto* const threads = new ThreadPool(15);
    return *threads;
}

bool WaitForDeathUptake(std::chrono::milliseconds timeout) {
    return BinderThreads().waitUntilTakenUp(timeout);
}

bool WaitForDeathDelivery(std::chrono::milliseconds timeout) {
    return BinderThreads().waitUntilIdle(timeout);
}

}  // namespace kalvorn::host
