#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <android/hidl/manager/1.0/IServiceNotification.h>
#include <hidl/Status.h>

#include <string>

/**
 * The members that a generated HIDL interface declares and its library would define. At global
 * scope of one source file, a line for each interface, and one for each ancestor but IBase:
 *
 *     KALVORN_HIDL_INTERFACE(::vendor::a::V1_1::IFoo, "vendor.a@1.1::IFoo",
 *                            ::vendor::a::V1_0::IFoo)
 *     KALVORN_HIDL_CAST_FROM(::vendor::a::V1_1::IFoo, ::vendor::a::V1_0::IFoo)
 */
namespace kalvorn::host::hidl_runtime {

using ::android::sp;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hidl::base::V1_0::IBase;
using ::android::hidl::manager::V1_0::IServiceNotification;

/** Whether the interface chain of `service` names `descriptor`; false for null. */
Return<bool> Implements(const sp<IBase>& service, const char* descriptor);

/**
 * The living service under that name, or null when it is no `descriptor`. With `wait`, a declared
 * service is waited for; one that turns out to be dead counts as not there yet.
 */
sp<IBase> FindService(const char* descriptor, const std::string& instance, bool wait);

::android::status_t RegisterService(const sp<IBase>& service, const std::string& instance);

bool AddListener(const char* descriptor, const std::string& instance,
                 const sp<IServiceNotification>& listener);

/** `chain` with `descriptor` put before it. */
hidl_vec<hidl_string> ExtendChain(const char* descriptor, const hidl_vec<hidl_string>& chain);

template <typename Interface>
Return<sp<Interface>> Cast(const sp<IBase>& service, bool emitError) {
    const Return<bool> castable = Implements(service, Interface::descriptor);
    if (!castable.isOk()) {
        return emitError ? ::android::hardware::details::StatusOf<bool, sp<Interface>>(castable)
                         : Return<sp<Interface>>(sp<Interface>());
    }
    return castable ? sp<Interface>(dynamic_cast<Interface*>(service.get())) : sp<Interface>();
}

template <typename Interface>
sp<Interface> GetService(const std::string& instance, bool wait) {
    const sp<IBase> found = FindService(Interface::descriptor, instance, wait);
    return sp<Interface>(dynamic_cast<Interface*>(found.get()));
}

}  // namespace kalvorn::host::hidl_runtime

#define KALVORN_HIDL_CAST_FROM(TYPE, FROM)                                   \
    ::android::hardware::Return<::android::sp<TYPE>>(TYPE::castFrom)(        \
            const ::android::sp<FROM>& parent, bool emitError) {             \
        return ::kalvorn::host::hidl_runtime::Cast<TYPE>(parent, emitError); \
    }

// The declarators stand in parentheses because `Return<void> ::vendor::...` would be read as one
// qualified name. Calls that need no knowledge of the interface go to its parent.
#define KALVORN_HIDL_INTERFACE(TYPE, FQNAME, PARENT)                                               \
    const char* TYPE::descriptor = FQNAME;                                                         \
    ::android::hardware::Return<void>(TYPE::interfaceChain)(interfaceChain_cb callback) {          \
        return PARENT::interfaceChain([&callback](const auto& chain) {                             \
            callback(::kalvorn::host::hidl_runtime::ExtendChain(TYPE::descriptor, chain));         \
        });                                                                                        \
    }                                                                                              \
    ::android::hardware::Return<bool>(TYPE::linkToDeath)(                                          \
            const ::android::sp<::android::hardware::hidl_death_recipient>& recipient,             \
            uint64_t cookie) {                                                                     \
        return PARENT::linkToDeath(recipient, cookie);                                             \
    }                                                                                              \
    ::android::hardware::Return<bool>(TYPE::unlinkToDeath)(                                        \
            const ::android::sp<::android::hardware::hidl_death_recipient>& recipient) {           \
        return PARENT::unlinkToDeath(recipient);                                                   \
    }                                                                                              \
    ::android::hardware::Return<void>(TYPE::ping)() {                                              \
        return PARENT::ping();                                                                     \
    }                                                                                              \
    ::android::hardware::Return<::android::sp<TYPE>>(TYPE::castFrom)(                              \
            const ::android::sp<TYPE>& same, bool) {                                               \
        return same;                                                                               \
    }                                                                                              \
    KALVORN_HIDL_CAST_FROM(TYPE, ::android::hidl::base::V1_0::IBase)                               \
    ::android::sp<TYPE>(TYPE::tryGetService)(const std::string& name, bool) {                      \
        return ::kalvorn::host::hidl_runtime::GetService<TYPE>(name, /*wait=*/false);              \
    }                                                                                              \
    ::android::sp<TYPE>(TYPE::getService)(const std::string& name, bool getStub) {                 \
        if (getStub) return nullptr; /* there are no passthrough libraries */                      \
        return ::kalvorn::host::hidl_runtime::GetService<TYPE>(name, /*wait=*/true);               \
    }                                                                                              \
    ::android::status_t(TYPE::registerAsService)(const std::string& name) {                        \
        return ::kalvorn::host::hidl_runtime::RegisterService(this, name);                         \
    }                                                                                              \
    bool(TYPE::registerForNotifications)(                                                          \
            const std::string& name,                                                               \
            const ::android::sp<::android::hidl::manager::V1_0::IServiceNotification>& listener) { \
        return ::kalvorn::host::hidl_runtime::AddListener(TYPE::descriptor, name, listener);       \
    }
