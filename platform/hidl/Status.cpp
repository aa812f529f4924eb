#include <android/log.h>
#include <hidl/Status.h>

namespace android::hardware {

namespace {

const char kLogTag[] = "HidlStatus";

}  // namespace

Status Status::fromExceptionCode(int32_t exception, const char* message) {
    Status status;
    status.mException = exception;
    status.mError = exception == EX_TRANSACTION_FAILED ? FAILED_TRANSACTION : OK;
    status.mMessage = message;
    return status;
}

Status Status::fromStatusT(status_t error) {
    if (error == OK) return ok();
    Status status = fromExceptionCode(EX_TRANSACTION_FAILED);
    status.mError = error;
    return status;
}

std::string Status::description() const {
    if (isOk()) return "no error";
    std::string text = "exception " + std::to_string(mException);
    if (mException == EX_TRANSACTION_FAILED) text += " (error " + std::to_string(mError) + ")";
    return mMessage.empty() ? text : text + ": " + mMessage;
}

namespace details {

return_status::return_status(return_status&& other) noexcept
    : mStatus(std::move(other.mStatus)), mSeen(std::exchange(other.mSeen, true)) {}

return_status& return_status::operator=(return_status&& other) noexcept {
    if (this == &other) return *this;
    demandSeen();
    mStatus = std::move(other.mStatus);
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
        __android_log_assert(nullptr, kLogTag, "value of a failed call read: %s",
                             description().c_str());
    }
}

void return_status::demandSeen() const {
    if (!mSeen && !mStatus.isOk()) {
        __android_log_assert(nullptr, kLogTag, "failed call went unseen: %s",
                             description().c_str());
    }
}

}  // namespace details

}  // namespace android::hardware
