#include <binder/Status.h>

namespace android::binder {

Status::Status(int32_t exceptionCode, int32_t errorCode, const String8& message)
    : mException(exceptionCode), mErrorCode(errorCode), mMessage(message) {}

Status Status::ok() {
    return Status();
}

Status Status::fromExceptionCode(int32_t exceptionCode) {
    return Status(exceptionCode, 0, String8());
}

Status Status::fromExceptionCode(int32_t exceptionCode, const char* message) {
    return Status(exceptionCode, 0, String8(message));
}

Status Status::fromServiceSpecificError(int32_t errorCode) {
    return Status(EX_SERVICE_SPECIFIC, errorCode, String8());
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
    status_t status = parcel->writeInt32(mException);
    if (status != OK || mException == EX_NONE) return status;
    status = parcel->writeString16(String16(mMessage));
    if (status != OK || mException != EX_SERVICE_SPECIFIC) return status;
    return parcel->writeInt32(mErrorCode);
}

status_t Status::readFromParcel(const Parcel& parcel) {
    String16 message;
    int32_t exception = EX_NONE;
    int32_t error = 0;
    status_t status = parcel.readInt32(&exception);
    if (status == OK && exception != EX_NONE) status = parcel.readString16(&message);
    if (status == OK && exception == EX_SERVICE_SPECIFIC) status = parcel.readInt32(&error);
    *this = status == OK ? Status(exception, error, String8(message)) : fromStatusT(status);
    return status;
}

String8 Status::toString8() const {
    if (isOk()) return String8("No error");
    return String8::format("Exception %d, error %d: '%s'", mException, mErrorCode,
                           mMessage.string());
}

}  // namespace android::binder
