#include <android/binder_manager.h>
#include <binder/IServiceManager.h>

#include "ndk_binder.h"

using android::defaultServiceManager;
using android::String16;

binder_exception_t AServiceManager_addService(AIBinder* binder, const char* instance) {
    if (binder == nullptr || instance == nullptr) return EX_ILLEGAL_ARGUMENT;
    const binder_status_t status =
            defaultServiceManager()->addService(String16(instance), binder->platformBinder());
    return status == STATUS_OK ? EX_NONE : EX_TRANSACTION_FAILED;
}

bool AServiceManager_isDeclared(const char* instance) {
    return instance != nullptr && defaultServiceManager()->isDeclared(String16(instance));
}

AIBinder* AServiceManager_waitForService(const char* instance) {
    if (instance == nullptr) return nullptr;
    return OwnedRemoteBinder(defaultServiceManager()->waitForService(String16(instance)));
}
