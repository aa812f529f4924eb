/** Binder objects of the NDK: classes, local and remote objects, transactions, death links. */
#pragma once

#include <android/binder_parcel.h>
#include <android/binder_status.h>
#include <stdint.h>

extern "C" {

typedef uint32_t transaction_code_t;
typedef uint32_t binder_flags_t;

enum {
    FIRST_CALL_TRANSACTION = 0x00000001,
    LAST_CALL_TRANSACTION = 0x00ffffff,
};

struct AIBinder_Class;
typedef struct AIBinder_Class AIBinder_Class;
struct AIBinder_Weak;
typedef struct AIBinder_Weak AIBinder_Weak;
struct AIBinder_DeathRecipient;
typedef struct AIBinder_DeathRecipient AIBinder_DeathRecipient;

typedef void* (*AIBinder_Class_onCreate)(void* args);
typedef void (*AIBinder_Class_onDestroy)(void* userData);
typedef binder_status_t (*AIBinder_Class_onTransact)(AIBinder* binder, transaction_code_t code,
                                                     const AParcel* in, AParcel* out);
typedef void (*AIBinder_DeathRecipient_onBinderDied)(void* cookie);

/** A class lives as long as the process; it is never freed. */
AIBinder_Class* AIBinder_Class_define(const char* interfaceDescriptor,
                                      AIBinder_Class_onCreate onCreate,
                                      AIBinder_Class_onDestroy onDestroy,
                                      AIBinder_Class_onTransact onTransact)
        __attribute__((warn_unused_result));

/** A local object; onCreate(args) makes its user data. The caller owns one reference. */
AIBinder* AIBinder_new(const AIBinder_Class* clazz, void* args) __attribute__((warn_unused_result));

void AIBinder_incStrong(AIBinder* binder);
void AIBinder_decStrong(AIBinder* binder);

AIBinder_Weak* AIBinder_Weak_new(AIBinder* binder) __attribute__((warn_unused_result));
void AIBinder_Weak_delete(AIBinder_Weak* weakBinder);

/** An owned reference, or null if the object has gone. */
AIBinder* AIBinder_Weak_promote(AIBinder_Weak* weakBinder) __attribute__((warn_unused_result));

/** Asks the object for a sign of life: STATUS_OK, or STATUS_DEAD_OBJECT. */
binder_status_t AIBinder_ping(AIBinder* binder);

/** Gives a remote object its class. False if the object's interface or class is another one. */
bool AIBinder_associateClass(AIBinder* binder, const AIBinder_Class* clazz);

/** Null for a remote object. */
void* AIBinder_getUserData(AIBinder* binder);

/** Makes the parcel `*in` for a call. The object needs a class. The caller owns the parcel. */
binder_status_t AIBinder_prepareTransaction(AIBinder* binder, AParcel** in);

/** Calls, consuming `*in` whatever comes of it. On success `*out` is a new, owned parcel. */
binder_status_t AIBinder_transact(AIBinder* binder, transaction_code_t code, AParcel** in,
                                  AParcel** out, binder_flags_t flags);

/** onBinderDied(cookie) will run on a binder thread. */
AIBinder_DeathRecipient* AIBinder_DeathRecipient_new(
        AIBinder_DeathRecipient_onBinderDied onBinderDied) __attribute__((warn_unused_result));

/** Removes all links of the recipient. Null is allowed. */
void AIBinder_DeathRecipient_delete(AIBinder_DeathRecipient* recipient);

/** STATUS_INVALID_OPERATION for a local object, STATUS_DEAD_OBJECT for a dead one. */
binder_status_t AIBinder_linkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                     void* cookie);

/** STATUS_NAME_NOT_FOUND if there is no link with this cookie, STATUS_DEAD_OBJECT if it died. */
binder_status_t AIBinder_unlinkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                       void* cookie);

}  // extern "C"
