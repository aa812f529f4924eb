#include <binder/Status.h>

namespace android::binder {

Status::Status(int32_t exceptionCode, int32_t errorCode, const String8& message)
    : mException(exceptionCode), mErrorCode(errorCode), mMessage(message) {}

Status Status::fromExceptionCode(int32_t exceptionCode) {
    return Status(exceptionCode, 0, String8());
}

Status Status::fromStatusT(status_t status) {
    Status result;
    result.setFromStatusT(status);
    return result;
}

void Status::setFromStatusT(status_t status) {
    *this = Status(status == OK ? EX_NONE : EX_TRANSACTION_FAILED, status, String8());
}

status_t Status::writeToParcel(Parcel* parcel) const {
    if (mException == EX_TRANSACTION_FAILED) return mErrorCode;
    const status_t status = parcel->writeInt32(mException);
    return status == OK && mException != EX_NONE ? parcel->writeString16(String16(mMessage))
                                                 : status;
}

status_t Status::readFromParcel(const Parcel& parcel) {
    String16 message;
    int32_t exception = EX_NONE;
    status_t status = parcel.readInt32(&exception);
    if (status == OK && exception != EX_NONE) status = parcel.readString16(&message);
    *this = status == OK ? Status(exception, 0, String8(message)) : fromStatusT(status);
    return status;
}

}  // namespace android::binder
