#include "binder_threads.h"

#include <thread>
#include <utility>

#include "binder_host.h"

namespace kalvorn::host {

namespace {

thread_local bool t_isBinderThread = false;

}  // namespace

BinderThreads& BinderThreads::Get() {
    static auto* const threads = new BinderThreads;
    return *threads;
}

void BinderThreads::post(std::function<void()> task) {
    std::lock_guard<std::mutex> lock(mMutex);
    mTasks.push_back(std::move(task));
    startIfNeeded();
    mWork.notify_one();
}

/** With the lock held. */
void BinderThreads::startIfNeeded() {
    if (mTasks.empty() || mIdle > 0 || mIsStarting || mThreads == kMaxThreads) return;
    mIsStarting = true;
    ++mThreads;
    std::thread([this] { serve(); }).detach();
}

bool BinderThreads::waitUntilIdle(std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> lock(mMutex);
    return mIdleChanged.wait_for(lock, timeout,
                                 [this] { return mTasks.empty() && mIdle == mThreads; });
}

bool BinderThreads::waitUntilTakenUp(std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> lock(mMutex);
    return mIdleChanged.wait_for(lock, timeout,
                                 [this] { return mTasks.empty() && mIdle + mWaiting == mThreads; });
}

void BinderThreads::countWaiting(int change) {
    if (!t_isBinderThread) return;
    const std::lock_guard<std::mutex> lock(mMutex);
    mWaiting += static_cast<size_t>(change);
    mIdleChanged.notify_all();
}

void BinderThreads::serve() {
    t_isBinderThread = true;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mIsStarting = false;
    }
    for (;;) nextTask()();
}

std::function<void()> BinderThreads::nextTask() {
    std::unique_lock<std::mutex> lock(mMutex);
    ++mIdle;
    mIdleChanged.notify_all();
    mWork.wait(lock, [this] { return !mTasks.empty(); });
    --mIdle;
    std::function<void()> task = std::move(mTasks.front());
    mTasks.pop_front();
    startIfNeeded();
    return task;
}

bool WaitForDeathUptake(std::chrono::milliseconds timeout) {
    return BinderThreads::Get().waitUntilTakenUp(timeout);
}

bool WaitForDeathDelivery(std::chrono::milliseconds timeout) {
    return BinderThreads::Get().waitUntilIdle(timeout);
}

}  // namespace kalvorn::host
