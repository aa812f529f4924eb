#include "HidlThread.h"

#include <thread>
#include <utility>

namespace kalvorn::host::hidl_runtime {

void HidlThread::post(Delivery delivery) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mQueue.push_back(std::move(delivery));
    ++mPosted;
    if (!std::exchange(mStarted, true)) std::thread(&HidlThread::run, this).detach();
    mChanged.notify_all();
}

size_t HidlThread::posted() {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mPosted;
}

void HidlThread::clear() {
    std::deque<Delivery> dropped;  // destroyed last: what it holds may call back
    const std::lock_guard<std::mutex> lock(mMutex);
    dropped.swap(mQueue);
    mChanged.notify_all();
}

bool HidlThread::waitIdle(std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> lock(mMutex);
    return mChanged.wait_for(lock, timeout, [this] { return mQueue.empty() && !mBusy; });
}

void HidlThread::run() {
    std::unique_lock<std::mutex> lock(mMutex);
    for (;;) {
        mChanged.wait(lock, [this] { return !mQueue.empty(); });
        Delivery delivery = std::move(mQueue.front());
        mQueue.pop_front();
        mBusy = true;
        lock.unlock();
        delivery();
        delivery = nullptr;  // what it held goes before it counts as done
        lock.lock();
        mBusy = false;
        mChanged.notify_all();
    }
}

}  // namespace kalvorn::host::hidl_runtime
