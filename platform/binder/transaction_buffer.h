#pragma once

#include <binder/Parcel.h>

#include <atomic>
#include <memory>

namespace kalvorn::host {

/** The space into which a process receives parcels. Those that it holds at one time share it. */
class TransactionBuffer {
  public:
    static constexpr size_t kSize = 1024 * 1024 - 2 * 4096;

    /** False, taking nothing, if there is not so much left. */
    bool take(size_t size) {
        size_t taken = mTaken.load();
        do {
            if (size > kSize - taken) return false;
        } while (!mTaken.compare_exchange_weak(taken, taken + size));
        return true;
    }

    void give(size_t size) { mTaken -= size; }

  private:
    std::atomic<size_t> mTaken = 0;
};

/**
 * Makes `target` a copy of `source` that takes up room in `buffer` until `target` is freed. If
 * there is none, FAILED_TRANSACTION, and `target` is empty.
 */
android::status_t Receive(const std::shared_ptr<TransactionBuffer>& buffer,
                          const android::Parcel& source, android::Parcel* target);

}  // namespace kalvorn::host
