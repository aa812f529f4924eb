#include <android/binder_parcel.h>

#include "ndk_binder.h"

using android::IBinder;
using android::sp;

void AParcel_delete(AParcel* parcel) {
    delete parcel;
}

binder_status_t AParcel_writeInt32(AParcel* parcel, int32_t value) {
    return parcel->platform->writeInt32(value);
}

binder_status_t AParcel_readInt32(const AParcel* parcel, int32_t* value) {
    return parcel->platform->readInt32(value);
}

binder_status_t AParcel_writeStrongBinder(AParcel* parcel, AIBinder* binder) {
    return parcel->platform->writeStrongBinder(binder != nullptr ? binder->platformBinder()
                                                                 : nullptr);
}

binder_status_t AParcel_readStrongBinder(const AParcel* parcel, AIBinder** binder) {
    sp<IBinder> read;
    const binder_status_t status = parcel->platform->readNullableStrongBinder(&read);
    if (status == STATUS_OK) *binder = OwnedRemoteBinder(read);
    return status;
}

binder_status_t AParcel_writeStatusHeader(AParcel* parcel, const AStatus* status) {
    return status->status.writeToParcel(parcel->platform);
}

binder_status_t AParcel_readStatusHeader(const AParcel* parcel, AStatus** status) {
    auto read = std::make_unique<AStatus>();
    const binder_status_t result = read->status.readFromParcel(*parcel->platform);
    if (result == STATUS_OK) *status = read.release();
    return result;
}

AStatus* AStatus_fromStatus(binder_status_t status) {
    return new AStatus{android::binder::Status::fromStatusT(status)};
}

bool AStatus_isOk(const AStatus* status) {
    return status->status.isOk();
}

void AStatus_delete(AStatus* status) {
    delete status;
}
