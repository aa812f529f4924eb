/** The status and exception codes of the NDK binder that are used, and what a call returns. */
#pragma once

#include <errno.h>
#include <stdint.h>

extern "C" {

enum {
    STATUS_OK = 0,
    STATUS_INVALID_OPERATION = -ENOSYS,
    STATUS_BAD_TYPE = INT32_MIN + 1,
    STATUS_NAME_NOT_FOUND = -ENOENT,
    STATUS_DEAD_OBJECT = -EPIPE,
    STATUS_UNKNOWN_TRANSACTION = -EBADMSG,
    STATUS_UNEXPECTED_NULL = INT32_MIN + 8,
};
typedef int32_t binder_status_t;

enum {
    EX_NONE = 0,
    EX_ILLEGAL_ARGUMENT = -3,
    EX_TRANSACTION_FAILED = -129,
};
typedef int32_t binder_exception_t;

/** The outcome of a call. Every AStatus* handed out is owned by the receiver: AStatus_delete. */
struct AStatus;
typedef struct AStatus AStatus;

AStatus* AStatus_fromStatus(binder_status_t status);
bool AStatus_isOk(const AStatus* status);

/** Null is allowed. */
void AStatus_delete(AStatus* status);

}  // extern "C"
