#pragma once

#include <functional>
#include <mutex>
#include <utility>

namespace kalvorn::host {

/** What a test wants done between two steps; nothing as a rule. */
class Hook {
  public:
    void set(std::function<void()> action) {
        const std::lock_guard<std::mutex> lock(mMutex);
        mAction = std::move(action);
    }

    /** Without the lock, for it may come here again. */
    void run() const {
        std::function<void()> action;
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            action = mAction;
        }
        if (action) action();
    }

  private:
    mutable std::mutex mMutex;
    std::function<void()> mAction;
};

}  // namespace kalvorn::host
