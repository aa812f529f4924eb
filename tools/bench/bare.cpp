#include "bench.h"

#include <android/binder_manager.h>
#include <binder/IServiceManager.h>
#include <string.h>

#include <vector>

#include "aidl/services.h"
#include "common/service_constants.h"
#include "hidl/services.h"

namespace bench {

namespace {

using namespace vendor::zantor::hardware;
using android::sp;
using kalvorn::kItemLength;
using kalvorn::kMainName;
using kalvorn::kSubName;
using kalvorn::kTestItem;
using kalvorn::SignatureNvId;

constexpr const char* kHex = "4b5601029f00ff104b5601029f00ff10";  // of kBytes
int32_t ret;

namespace over_aidl {

using namespace native_aidl;

class Recipient : public android::IBinder::DeathRecipient {
    void binderDied(const android::wp<android::IBinder>&) override {}
};

/** Null when it is not there. */
template <typename Interface>
sp<Interface> LookUp(const char* instance) {
    const auto name = Interface::descriptor + android::String16("/") + android::String16(instance);
    const auto manager = android::defaultServiceManager();
    if (!manager->isDeclared(name)) return nullptr;
    return Interface::asInterface(manager->waitForService(name));
}

/** All that a client holds. */
struct Held {
    const sp<Recipient> recipient = new Recipient;
    const ndk::ScopedAIBinder_DeathRecipient ndkRecipient{
            AIBinder_DeathRecipient_new([](void*) {})};
    std::vector<sp<android::IInterface>> proxies;
    std::shared_ptr<ISession> session;

    template <typename Interface>
    void Take(const char* instance) {
        const sp<Interface> proxy = LookUp<Interface>(instance);
        if (proxy == nullptr) return;
        Interface::asBinder(proxy)->linkToDeath(recipient);
        proxies.push_back(proxy);
    }

    void TakeSession() {
        const std::string name = std::string(IFingerprint::descriptor) + "/default";
        if (!AServiceManager_isDeclared(name.c_str())) return;
        const auto fingerprint = IFingerprint::fromBinder(
                ndk::SpAIBinder(AServiceManager_waitForService(name.c_str())));
        if (fingerprint == nullptr) return;
        fingerprint->createSession(-1, -1000, nullptr, &session);
        if (session == nullptr) return;
        AIBinder_linkToDeath(session->asBinder().get(), ndkRecipient.get(), nullptr);
    }
};

size_t LookUpAll() {
    static auto* held = new Held;
    held->proxies.clear();
    held->session.reset();
#define SERVICE(connector, query, interface, global, instance, ...) held->Take<interface>(instance);
#define FINGERPRINT(...) held->TakeSession();
#include "aidl/services.inc"
    return held->proxies.size() + (held->session != nullptr);
}

BareCalls ConnectProxies() {
    using qxfactoryinterface::IFacIntStr;
    const auto factory = LookUp<IQxFactoryInterface>("qxfactoryinterface_hal");
    const auto sensors = LookUp<ISensors>("default");
    const std::string text = kText, hex = kHex;
    const std::vector<uint8_t> name(text.begin(), text.end());
    qxfactoryinterface::FmdCmdData operation{};
    operation.station = operation.bsn = text;
    const auto emmcTest = [=] {
        IFacIntStr reply{};
        factory->emmcTest(text, text, text, &reply);
    };
    const auto readNv = [=] {
        IFacIntStr reply{};
        factory->readNv(kNumber, &reply);
    };
    const auto setTestItemName = [=] {
        factory->writeOemSubInfo(kTestItem, kMainName, kItemLength, name, &ret);
        factory->writeOemSubInfo(kTestItem, kSubName, kItemLength, name, &ret);
    };
    return {{"nativeEmmcTest", emmcTest},
            {"nativeReadNvValue", readNv},
            {"nativeSetTestItemName", setTestItemName},
            {"nativeWriteNvValue", [=] { factory->writeNv(kNumber, text, &ret); }},
            {"nativeGetVerifySignatureResult", [=] { factory->writeNv(SignatureNvId, hex, &ret); }},
            {"nativeSendBigDataOperation", [=] { factory->sendBigDataOperation(operation, &ret); }},
            {"nativeGetSensorSelfTestResult",
             [=] { sensors->getSensorSelfTestResult(kNumber, &ret); }}};
}

}  // namespace over_aidl

namespace over_hidl {

using namespace native_hidl;
using android::hardware::hidl_death_recipient;
using android::hardware::hidl_string;

class Recipient : public hidl_death_recipient {
    void serviceDied(uint64_t, const android::wp<IBase>&) override {}
};

template <typename Interface>
sp<Interface> LookUp(const char* instance) {
    return Interface::getService(instance, /* getStub */ false);
}

struct Held {
    const sp<Recipient> recipient = new Recipient;
    std::vector<sp<IBase>> services;

    template <typename Interface>
    void Take(const char* instance) {
        const sp<Interface> service = LookUp<Interface>(instance);
        if (service == nullptr) return;
        (void)service->linkToDeath(recipient, 0).isOk();
        services.push_back(service);
    }
};

size_t LookUpAll() {
    static auto* held = new Held;
    held->services.clear();
#define SERVICE(connector, interface, global, instance, ...) held->Take<interface>(instance);
#include "hidl/services.inc"
    return held->services.size();
}

/** Takes what is answered, as the operations do. */
struct Taken {
    int32_t code = 0;
    hidl_string text;

    void operator()(int32_t newCode, const hidl_string& newText) {
        code = newCode;
        text = newText;
    }
};

BareCalls ConnectProxies() {
    const sp<IQxFactoryInterfaceV1_1> factory = IQxFactoryInterfaceV1_1::castFrom(
            LookUp<IQxFactoryInterface>("qxfactoryinterface_hal"));
    const auto sensors = LookUp<ISensors>("default");
    const hidl_string text = kText, hex = kHex;
    qxfactoryinterface::V1_0::FmdCmdData operation{};
    operation.station = operation.bsn = text;
    const auto emmcTest = [=] {
        Taken taken;
        (void)factory->emmcTest(text, text, text, std::ref(taken)).isOk();
    };
    const auto readNv = [=] {
        Taken taken;
        (void)factory->readNv(kNumber, std::ref(taken)).isOk();
    };
    const auto setTestItemName = [=] {
        ret = factory->writeOemSubInfo(kTestItem, kMainName, kItemLength, text);
        ret = factory->writeOemSubInfo(kTestItem, kSubName, kItemLength, text);
    };
    return {{"nativeEmmcTest", emmcTest},
            {"nativeReadNvValue", readNv},
            {"nativeSetTestItemName", setTestItemName},
            {"nativeWriteNvValue", [=] { ret = factory->writeNv(kNumber, text); }},
            {"nativeGetVerifySignatureResult", [=] { ret = factory->writeNv(SignatureNvId, hex); }},
            {"nativeSendBigDataOperation", [=] { ret = factory->sendBigDataOperation(operation); }},
            {"nativeGetSensorSelfTestResult",
             [=] { ret = sensors->getSensorSelfTestResult(kNumber); }}};
}

}  // namespace over_hidl

}  // namespace

BareCalls ConnectProxies(Backend backend) {
    return backend == Backend::kAidl ? over_aidl::ConnectProxies() : over_hidl::ConnectProxies();
}

size_t LookUpAll(Backend backend) {
    return backend == Backend::kAidl ? over_aidl::LookUpAll() : over_hidl::LookUpAll();
}

}  // namespace bench
