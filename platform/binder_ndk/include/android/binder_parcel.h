/** Parcels of the NDK binder. */
#pragma once

#include <android/binder_status.h>

extern "C" {

struct AIBinder;
typedef struct AIBinder AIBinder;
struct AParcel;
typedef struct AParcel AParcel;

/** Null is allowed. */
void AParcel_delete(AParcel* parcel);

binder_status_t AParcel_writeInt32(AParcel* parcel, int32_t value);
binder_status_t AParcel_readInt32(const AParcel* parcel, int32_t* value);

/** Null is allowed. */
binder_status_t AParcel_writeStrongBinder(AParcel* parcel, AIBinder* binder);

/** `*binder` becomes an owned reference, or null where null was written. */
binder_status_t AParcel_readStrongBinder(const AParcel* parcel, AIBinder** binder);

binder_status_t AParcel_writeStatusHeader(AParcel* parcel, const AStatus* status);

/** `*status` becomes an owned status. */
binder_status_t AParcel_readStatusHeader(const AParcel* parcel, AStatus** status);

}  // extern "C"
