#include <android/binder_status.h>

#include "ndk_binder.h"

using android::binder::Status;

AStatus* AStatus_newOk(void) {
    return new AStatus;
}

AStatus* AStatus_fromExceptionCode(binder_exception_t exception) {
    return new AStatus{Status::fromExceptionCode(exception)};
}

AStatus* AStatus_fromExceptionCodeWithMessage(binder_exception_t exception, const char* message) {
    return new AStatus{Status::fromExceptionCode(exception, message)};
}

AStatus* AStatus_fromServiceSpecificError(int32_t serviceSpecific) {
    return new AStatus{Status::fromServiceSpecificError(serviceSpecific)};
}

AStatus* AStatus_fromStatus(binder_status_t status) {
    return new AStatus{Status::fromStatusT(status)};
}

bool AStatus_isOk(const AStatus* status) {
    return status->status.isOk();
}

binder_exception_t AStatus_getExceptionCode(const AStatus* status) {
    return status->status.exceptionCode();
}

int32_t AStatus_getServiceSpecificError(const AStatus* status) {
    return status->status.serviceSpecificErrorCode();
}

binder_status_t AStatus_getStatus(const AStatus* status) {
    return status->status.transactionError();
}

const char* AStatus_getMessage(const AStatus* status) {
    return status->status.exceptionMessage().string();
}

void AStatus_delete(AStatus* status) {
    delete status;
}
