#include <android/log.h>
#include <hidl/Status.h>

namespace android::hardware {

namespace {

const char kLogTag[] = "HidlStatus";

}  // namespace

namespace details {

return_status::return_status(return_status&& other) noexcept
    : mStatus(other.mStatus), mSeen(std::exchange(other.mSeen, true)) {}

return_status& return_status::operator=(return_status&& other) noexcept {
    if (this == &other) return *this;
    demandSeen();
    mStatus = other.mStatus;
    mSeen = std::exchange(other.mSeen, true);
    return *this;
}

bool return_status::isOk() const {
    mSeen = true;
    return mStatus.isOk();
}

bool return_status::isDeadObject() const {
    mSeen = true;
    return mStatus.transactionError() == DEAD_OBJECT;
}

void return_status::demandOk() const {
    if (!isOk()) {
        __android_log_assert(nullptr, kLogTag, "value of a failed call read: error %d",
                             mStatus.transactionError());
    }
}

void return_status::demandSeen() const {
    if (!mSeen && !mStatus.isOk()) {
        __android_log_assert(nullptr, kLogTag, "failed call went unseen: error %d",
                             mStatus.transactionError());
    }
}

}  // namespace details

}  // namespace android::hardware
