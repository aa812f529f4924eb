// Notices, connectors and calls at the same moment, a step at a time: what a hook in the log does
// between two lines is what another thread may do there.
#include <binder/IServiceManager.h>
#include <binder_host.h>
#include <gmock/gmock.h>
#include <hidl/hidl_host.h>
#include <unistd.h>

#include <algorithm>
#include <future>
#include <thread>

#include "aidl/services.h"
#include "asleep.h"
#include "harness.h"
#include "hidl/services.h"

using namespace kalvorn;

namespace {

using android::hardware::Return;
using android::hardware::Status;
using host::KeepDeadNames;

class OverlapTest : public LibraryTest {
  protected:
    /** Does this once, after that line. */
    static void After(const std::string& line, const std::function<void()>& action) {
        const auto done = std::make_shared<bool>(false);
        OnLine([=](const std::string& logged) {
            if (logged == line && !std::exchange(*done, true)) action();
        });
    }
};

/** Something done once, at the next call of a hook. */
std::function<void()> Once(const std::function<void()>& action) {
    const auto done = std::make_shared<std::atomic<bool>>(false);
    return [=] {
        if (!done->exchange(true)) action();
    };
}

// The notice comes between the link and the publication, when there is nothing to take yet, and the
// successor is registered before the connector goes on.
TEST_F(OverlapTest, ADeathBeforeThePublicationIsHeardOf) {
    const struct {
        Backend backend;
        void (*onLink)(std::function<void()> hook);
        void (*connect)();
    } cases[] = {{kAidl, host::OnLink, [] { native_aidl::InitLight(); }},
                 {kHidl, host::OnHidlLink, native_hidl::InitLight}};
    for (const auto& c : cases) {
        SCOPED_TRACE(NameOf(c.backend));
        device.Start(c.backend, "light");
        c.onLink(Once([&] {
            device.At(c.backend, "light").Kill();
            ASSERT_TRUE(Device::AwaitHeard(5000));
            device.Start(c.backend, "light");
        }));
        c.connect();
        c.onLink(nullptr);
        ASSERT_TRUE(Device::Settle());
        EXPECT_EQ(1u, device.DeathLinks(c.backend, "light"));
    }
}

// The service that is found dies before it is linked, and its successor comes at once. On the HIDL
// thread the notice of that death waits behind the registration of the successor.
TEST_F(OverlapTest, AServiceThatDiesBeforeItIsLinkedIsNotHeld) {
    const auto dieAndComeBack = [&](Backend backend, const char* service) {
        device.At(backend, service).Kill();
        device.Start(backend, service);
    };
    LoadWith(kHidl, "light");
    device.At(kHidl, "light").Kill();
    ASSERT_TRUE(Device::Settle());
    After("D g_light linkToDeath", [&] { dieAndComeBack(kHidl, "light"); });
    device.Start(kHidl, "light");
    ASSERT_TRUE(Device::Settle());
    EXPECT_EQ(1u, device.DeathLinks(kHidl, "light"));

    // A link that somebody else has made brings the obituary out, after which there are no links.
    LoadWith(kHidl, "");
    device.Start(kHidl, "touch");
    After("D g_touchscreen linkToDeath", [&] {
        const auto dying = native_hidl::ITouchscreen::getService("default");
        const android::sp<android::HidlUtil> other =
                new android::HidlUtil([](uint64_t, const auto&) {}, nullptr);
        EXPECT_TRUE(dying->linkToDeath(other, 0));
        device.At(kHidl, "touch").Kill();
        ASSERT_TRUE(Device::Settle());
        device.Start(kHidl, "touch");
    });
    native_hidl::InitTouchScreen();
    ASSERT_TRUE(Device::Settle());
    EXPECT_EQ(1u, device.DeathLinks(kHidl, "touch"));

    LoadWith(kAidl, "");
    device.Start(kAidl, "fingerprint");
    After("I g_aidlFingerprintSession linkToDeath", [&] { dieAndComeBack(kAidl, "fingerprint"); });
    EXPECT_EQ(1, native_aidl::InitFingerprintService());
    ASSERT_TRUE(Device::Settle());
    EXPECT_EQ(1u, device.DeathLinks(kAidl, "fingerprint"));
}

// A dying process opens no session, which must not be taken for the refusal of a living one.
TEST_F(OverlapTest, AServiceThatDiesWhenAskedForASessionIsAskedAnew) {
    device.Start(kAidl, "fingerprint");
    device.OnCall(Once([&] {
        device.At(kAidl, "fingerprint").Kill();
        device.Start(kAidl, "fingerprint");
    }));
    TakeLog();
    EXPECT_EQ(1, native_aidl::InitFingerprintService());
    EXPECT_EQ((std::vector<std::string>{"I InitAidlFingerprintService",
                                        "I g_aidlFingerprintSession linkToDeath"}),
              TakeLog());
    EXPECT_EQ(1u, device.DeathLinks(kAidl, "fingerprint"));
}

// A living service is released because another one has died. Were its last reference let go while
// somebody looks it up, libbinder would clear the link that he makes.
TEST_F(OverlapTest, ALivingServiceIsNotLetGoWhileItIsLookedUp) {
    LoadWithProfile("aidl");
    const android::wp<native_aidl::ILight> released = native_aidl::g_aidlLight;
    host::OnLastReference(Once([] { Unnoticed([] { native_aidl::InitLight(); }); }));
    device.At(kAidl, "power").Kill();
    device.Start(kAidl, "power");
    ASSERT_TRUE(Device::Settle());
    host::OnLastReference(nullptr);
    for (const std::string& service : Device::Services()) {
        EXPECT_EQ(1u, device.DeathLinks(kAidl, service)) << service;
    }
    EXPECT_EQ(nullptr, released.promote()) << "it has gone when its proxy is held again";
}

// A proxy on which one call has broken off serves no more, though its service lives. It goes with
// the next death of any service.
TEST_F(OverlapTest, AProxyOfNoUseDoesNotOutlastADeath) {
    LoadWithProfile("aidl");
    const auto setLed = [] { return java::Call("nativeSetLedAlwaysOnStatus", {1, 2}); };
    device.Script("set_led_alwayson_status", Fault::kDeadObject);
    setLed();
    device.TakeCalls();
    setLed();
    EXPECT_EQ(std::vector<std::string>{}, device.TakeCalls()) << "the proxy takes it for dead";
    device.At(kAidl, "power").Kill();
    device.Start(kAidl, "power");
    ASSERT_TRUE(Device::Settle());
    device.TakeCalls();
    setLed();
    EXPECT_EQ(std::vector<std::string>{"aidl light.set_led_alwayson_status(1, 2)"},
              device.TakeCalls());
}

/** Lives, and answers pings as the dead do. */
struct PingedInVain : native_hidl::IExtBiometricsFingerprint {
    Return<void> ping() override { return Status::fromStatusT(android::DEAD_OBJECT); }
    Return<int32_t> sendCmdToHal(int32_t) override { return 0; }
};

TEST_F(OverlapTest, ALivingServiceThatAnswersAsTheDeadDoIsNotAskedForEver) {
    device.Start(kAidl, "fingerprint");
    device.Script({{"createSession", {}, "", {}}, Fault::kDeadObject});
    auto fingerprint = std::async(std::launch::async, native_aidl::InitFingerprintService);

    host::DeclareHidlService(PingedInVain::descriptor, "default");
    EXPECT_EQ(android::OK, (new PingedInVain)->registerAsService("default"));
    auto hidlFingerprint = std::async(std::launch::async, native_hidl::InitFingerprintService);

    device.Start(kAidl, "light");
    device.Script("set_led_alwayson_status", Fault::kDeadObject);
    const auto keptByOthers =
            native_aidl::ILight::asInterface(android::defaultServiceManager()->checkService(
                    native_aidl::ILight::descriptor + android::String16("/default")));
    int32_t result;
    keptByOthers->set_led_alwayson_status(1, 2, &result);
    EXPECT_EQ(1, native_aidl::InitLight());
    EXPECT_EQ(1u, device.DeathLinks(kAidl, "light"));

    EXPECT_EQ(0, fingerprint.get());
    EXPECT_TRUE(held::IsHeld(native_aidl::g_aidlFingerprint)) << "it lives, and refuses";
    hidlFingerprint.get();
    EXPECT_TRUE(held::IsHeld(native_hidl::g_qxFingerprint));
    host::ResetHidlRegistry();
    native_hidl::ExitKvManager();
    native_aidl::g_aidlFingerprint.reset();
}

// Two restarts wait for the same service; the one that comes second finds it connected.
TEST_F(OverlapTest, OfTwoConnectorsOneConnects) {
    const struct {
        Backend backend;
        const char* service;
        const char* line;
        int (*connect)();
    } cases[] = {
            {kAidl, "light", "I g_aidlLight linkToDeath", native_aidl::InitLight},
            {kAidl, "fingerprint", "I g_aidlFingerprintSession linkToDeath",
             native_aidl::InitFingerprintService},
            {kHidl, "light", "D g_light linkToDeath",
             [] {
                 native_hidl::InitLight();
                 return 1;
             }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        device.At(c.backend, c.service).Declare();
        std::vector<std::thread> connectors;
        for (int i = 0; i < 2; i++) {
            std::promise<pid_t> id;
            std::future<pid_t> waiting = id.get_future();
            connectors.emplace_back([&c, id = std::move(id)]() mutable {
                id.set_value(gettid());
                EXPECT_EQ(1, c.connect());
            });
            WaitUntilAsleep(std::move(waiting));
        }
        TakeLog();
        device.At(c.backend, c.service).Start();
        for (std::thread& connector : connectors) connector.join();
        ASSERT_TRUE(Device::Settle());
        const std::vector<std::string> log = TakeLog();
        // Both look whether it is held before they say that they link, so both may.
        EXPECT_THAT(std::count(log.begin(), log.end(), c.line), testing::AnyOf(1, 2));
        EXPECT_EQ(1u, device.DeathLinks(c.backend, c.service));
    }
}

TEST_F(OverlapTest, WhatIsTakenStaysWhileACopyIsUnderWay) {
    LoadWith(kAidl, "light");
    const android::wp<native_aidl::ILight> light = native_aidl::g_aidlLight;
    auto reading = std::make_unique<held::Reading>();
    native_aidl::ExitKvManager();
    native_aidl::ExitKvManager();
    EXPECT_FALSE(held::IsHeld(native_aidl::g_aidlLight));
    EXPECT_NE(nullptr, light.promote());
    reading = nullptr;
    native_aidl::ExitKvManager();
    EXPECT_EQ(nullptr, light.promote()) << "any later teardown lets go";
}

// The name outlives the service for a moment, and gives the very proxy whose obituary is out: a
// notice refers to it, and a call may. Its link would never be heard of.
TEST_F(OverlapTest, ADeadProxyIsNotTakenForTheService) {
    LoadWith(kAidl, "light");
    const auto dieAndComeBack = [&] {
        KeepDeadNames(true);
        const size_t before = host::LookUpCount();
        device.At(kAidl, "light").Kill();
        while (host::LookUpCount() < before + 3) std::this_thread::yield();
        KeepDeadNames(false);
        device.Start(kAidl, "light");
    };
    const auto expectConnected = [&] {
        ASSERT_TRUE(Device::Settle());
        EXPECT_EQ(1u, device.DeathLinks(kAidl, "light"));
        EXPECT_EQ("0", java::Call("nativeSetLedAlwaysOnStatus", {1, 2}));
    };
    dieAndComeBack();
    expectConnected();
    device.OnCall(dieAndComeBack);
    EXPECT_EQ("0", java::Call("nativeSetLedAlwaysOnStatus", {1, 2}));
    device.OnCall(nullptr);
    expectConnected();
}

}  // namespace
