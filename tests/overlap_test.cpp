// Notices, connectors and calls at the same moment, a step at a time: what a hook in the log does
// between two lines is what another thread may do there.
#include <binder_host.h>
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

    /** Counts the lines of that text; to be used before they can come. */
    static std::shared_ptr<std::atomic<int>> CountOf(const std::string& line) {
        auto count = std::make_shared<std::atomic<int>>(0);
        OnLine([=](const std::string& logged) { *count += logged == line ? 1 : 0; });
        return count;
    }

    static void Await(const std::atomic<int>& count, int least) {
        while (count < least) std::this_thread::yield();
    }
};

// The connector has published and not yet linked when a teardown takes the service from it.
// Somebody holds the proxy besides, so its links do not end with it.
TEST_F(OverlapTest, ATeardownBeforeTheLinkLeavesNoLink) {
    android::sp<native_aidl::ILight> light;
    std::shared_ptr<native_aidl::ISession> session;
    const struct {
        Backend backend;
        const char* service;
        const char* line;
        std::function<void()> takeCopy;
        void (*teardown)();
        void (*connect)();
    } cases[] = {
            {kAidl, "light", "I g_aidlLight linkToDeath",
             [&] { light = held::Copy(native_aidl::g_aidlLight); }, native_aidl::ExitKvManager,
             [] { native_aidl::InitLight(); }},
            {kAidl, "fingerprint", "I g_aidlFingerprintSession linkToDeath",
             [&] { session = held::Copy(native_aidl::g_aidlFingerprintSession); },
             native_aidl::ExitKvManager, [] { native_aidl::InitFingerprintService(); }},
            {kHidl, "light", "D g_light linkToDeath", [] {}, native_hidl::ExitKvManager,
             native_hidl::InitLight},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        device.Start(c.backend, c.service);
        After(c.line, [&] {
            c.takeCopy();
            c.teardown();
        });
        c.connect();
        EXPECT_EQ(0u, device.DeathLinks(c.backend, c.service));
        c.connect();
        EXPECT_EQ(1u, device.DeathLinks(c.backend, c.service)) << "the teardown had emptied it";
        c.teardown();
        EXPECT_EQ(0u, device.DeathLinks(c.backend, c.service));
    }
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
        EXPECT_EQ(1, std::count(log.begin(), log.end(), c.line));
        EXPECT_EQ(1u, device.DeathLinks(c.backend, c.service));
    }
}

TEST_F(OverlapTest, WhatIsTakenStaysWhileACopyIsUnderWay) {
    LoadWith(kAidl, "light");
    const android::wp<native_aidl::ILight> light = native_aidl::g_aidlLight;
    held::internal::g_copiesUnderWay++;
    native_aidl::ExitKvManager();
    native_aidl::ExitKvManager();
    EXPECT_FALSE(held::IsHeld(native_aidl::g_aidlLight));
    EXPECT_NE(nullptr, light.promote());
    held::internal::g_copiesUnderWay--;
    native_hidl::ExitKvManager();
    EXPECT_EQ(nullptr, light.promote()) << "any later teardown lets go";
}

// The name outlives the service for a moment, and gives the very proxy whose obituary is out: a
// notice refers to it, and a call may. Its link would never be heard of.
TEST_F(OverlapTest, ADeadProxyIsNotTakenForTheService) {
    LoadWith(kAidl, "light");
    const auto dieAndComeBack = [&] {
        const auto links = CountOf("I g_aidlLight linkToDeath");
        KeepDeadNames(true);
        device.At(kAidl, "light").Kill();
        Await(*links, 3);
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
