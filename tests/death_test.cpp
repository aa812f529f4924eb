#include <hidl/hidl_host.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

#include "aidl/services.h"
#include "every_service.h"
#include "harness.h"
#include "hidl/services.h"

namespace {

using Lines = std::vector<std::string>;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

bool Eventually(const std::function<bool()>& condition) {
    const auto end = steady_clock::now() + milliseconds(10000);
    while (!condition()) {
        if (steady_clock::now() > end) return false;
        std::this_thread::sleep_for(milliseconds(2));
    }
    return true;
}

class DeathTest : public LibraryTest {
  protected:
    size_t LinksOf(Backend backend) {
        size_t links = 0;
        for (const std::string& name : Device::Services()) {
            const size_t count = device.DeathLinks(backend, name);
            EXPECT_LE(count, 1u) << name << " is linked twice";
            links += count;
        }
        return links;
    }
};

TEST_F(DeathTest, AnyAidlDeathRestartsEveryServiceInOrder) {
    for (const char* dying : {"light", "fingerprint", "satellite"}) {
        SCOPED_TRACE(dying);
        device.Reset();
        Unload();
        LoadWithProfile("aidl");
        const int alive = Device::LiveServices();
        device.At(kAidl, dying).Kill();
        // The restart waits for the dead service; it is started only after the library has let go.
        ASSERT_TRUE(Eventually([] { return !native_aidl::IsChipSrvSatAidlVersion(); }));
        device.Start(kAidl, dying);
        ASSERT_TRUE(Device::Settle());
        Lines expected{"W serviceDied, remote hal service died", "I ExitKvManager by aidl",
                       "I RestartAidlService"};
        for (const ServiceRow& row : kServices) {
            expected.insert(expected.end(), {row.aidlStart, row.aidlLink});
        }
        EXPECT_EQ(expected, TakeLog()) << "from RestartAidlService() in aidl/death.cpp";
        EXPECT_EQ(Device::Services().size(), LinksOf(kAidl));
        EXPECT_EQ(alive, Device::LiveServices()) << "a death has left something behind";
    }
}

// Before the dead service is back the restart has come as far as its connector, and no further;
// Java goes on meanwhile, over AIDL for what is back already and over HIDL for the rest.
TEST_F(DeathTest, JavaGoesOnWhileTheRestartWaits) {
    LoadWithProfile("aidl");
    device.Start(kHidl, "light");
    native_hidl::InitLight();
    device.At(kAidl, "sensors").Kill();
    ASSERT_TRUE(Eventually([] {
        return native_aidl::IsTouchScreenAidlVersion() && !native_aidl::IsSensorsAidlVersion();
    }));
    ASSERT_FALSE(Device::Settle(50));
    device.TakeCalls();
    EXPECT_EQ("0", java::Call("nativeWriteNvValue", {"abc", 1}));
    EXPECT_EQ("0", java::Call("nativeSetLedAlwaysOnStatus", {1, 2}));
    EXPECT_EQ("-9999", java::Call("nativeSetSensorSelfTest", {1, 2}));
    EXPECT_EQ("\"INVALID_SERVICE\"", java::Call("nativeChipTtTestCp", {"x"}));
    EXPECT_EQ(
            (Lines{"aidl factory.writeNv(1, \"abc\")", "hidl light.set_led_alwayson_status(1, 2)"}),
            device.TakeCalls());
    device.Start(kAidl, "sensors");
    ASSERT_TRUE(Device::Settle());
    device.TakeCalls();
    EXPECT_EQ("0", java::Call("nativeSetSensorSelfTest", {1, 2}));
    EXPECT_EQ("0", java::Call("nativeSetLedAlwaysOnStatus", {1, 2}));
    EXPECT_EQ((Lines{"aidl sensors.setSensorSelfTest(1, 2)",
                     "aidl light.set_led_alwayson_status(1, 2)"}),
              device.TakeCalls());
}

TEST_F(DeathTest, ARestartNeverFallsBack) {
    for (const ServiceRow& row : kServices) {
        if (row.hidlStart == nullptr) continue;
        SCOPED_TRACE(row.name);
        Unload();
        device.Reset();
        ASSERT_TRUE(device.StartProfile("hidl"));
        LoadWithProfile("aidl");
        device.At(kAidl, row.name).Undeclare();
        device.At(kAidl, row.name).Kill();
        ASSERT_TRUE(Device::Settle());
        const Lines log = TakeLog();
        EXPECT_EQ(1, std::count(log.begin(), log.end(), row.aidlNull));
        EXPECT_EQ(Device::Services().size() - 1, LinksOf(kAidl));
        EXPECT_EQ(0u, LinksOf(kHidl));
    }
}

TEST_F(DeathTest, EveryConnectionRegistersAnew) {
    const std::string light = "vendor.zantor.hardware.light@2.0::ILight";
    LoadWith(kHidl, "light");
    EXPECT_EQ(1u, kalvorn::host::HidlNotificationCount(light));
    native_hidl::ExitKvManager();
    native_hidl::InitLight();
    EXPECT_EQ(2u, kalvorn::host::HidlNotificationCount(light));
}

TEST_F(DeathTest, TheWatcherHearsOfEveryInstanceAndStays) {
    const std::string line =
            "W enter into ReinitHal, fqName:vendor.zantor.hardware.light@2.0::ILight, name:";
    const auto logged = [&](const char* rest) {
        const Lines log = TakeLog();
        return std::find(log.begin(), log.end(), line + rest) != log.end();
    };
    device.Start(kHidl, "light");
    Load();
    ASSERT_TRUE(Device::Settle());
    EXPECT_TRUE(logged("default, preexisting:1"));
    const auto* watcher = native_hidl::g_hidlUtil.get();
    ASSERT_EQ(android::OK, native_hidl::g_light->registerAsService("other"));
    ASSERT_TRUE(Device::Settle());
    EXPECT_TRUE(logged("other, preexisting:0"));
    Unload();
    EXPECT_EQ(watcher, native_hidl::g_hidlUtil.get());
}

TEST_F(DeathTest, ARegistrationConnectsWhatAidlHoldsToo) {
    device.Start(kHidl, "factory");
    LoadWithProfile("mixed");
    native_hidl::ReinitHal("some.other@1.0::IThing", "slot", false);
    EXPECT_EQ(1u, device.DeathLinks(kHidl, "factory"));
}

TEST_F(DeathTest, ARegistrationConnectsInOrder) {
    LoadWithProfile("hidl");
    native_hidl::ExitKvManager();
    TakeLog();
    native_hidl::ReinitHal("some.other@1.0::IThing", "slot", false);
    Lines starts = TakeLog();
    const auto isNoStart = [](const std::string& line) { return line.rfind("D Init", 0) != 0; };
    starts.erase(std::remove_if(starts.begin(), starts.end(), isNoStart), starts.end());
    Lines expected;
    for (const ServiceRow& row : kServices) {
        if (row.hidlStart != nullptr) expected.push_back(row.hidlStart);
    }
    EXPECT_EQ(expected, starts) << "from ReinitHal() in hidl/death.cpp";
}

TEST_F(DeathTest, AHidlDeathReleasesAllAndARegistrationBringsThemBack) {
    LoadWithProfile("hidl");
    const size_t links = LinksOf(kHidl);
    const int alive = Device::LiveServices();
    for (const ServiceRow& row : kServices) {
        if (row.hidlStart == nullptr) continue;
        const std::string dying = row.name;
        SCOPED_TRACE(dying);
        device.At(kHidl, dying).Undeclare();
        device.At(kHidl, dying).Kill();
        ASSERT_TRUE(Device::Settle());
        EXPECT_EQ((Lines{"W enter into ProcessServiceDied, cookie is:" +
                                 std::to_string(row.hidlCookie),
                         "D ExitKvManager by hidl"}),
                  TakeLog());
        EXPECT_EQ(0u, LinksOf(kHidl));
        EXPECT_EQ(nullptr, native_hidl::g_qxFactoryInterface);
        EXPECT_EQ(nullptr, native_hidl::g_ztChipSrvInterface);
        device.Start(kHidl, dying);
        ASSERT_TRUE(Device::Settle());
        EXPECT_EQ(links, LinksOf(kHidl));
        EXPECT_EQ(alive, Device::LiveServices()) << "a death has left something behind";
        TakeLog();
    }
}

TEST_F(DeathTest, ARegistrationLooksUpOnlyWhatIsReleased) {
    device.Start(kHidl, "touch");
    device.Start(kHidl, "light");
    Load();
    ASSERT_TRUE(Device::Settle());
    device.At(kHidl, "touch").Undeclare();
    device.At(kHidl, "touch").Kill();
    ASSERT_TRUE(Device::Settle());
    TakeLog();
    // Registered before means that nothing has to be done.
    native_hidl::ReinitHal("vendor.zantor.hardware.light@2.0::ILight", "default", true);
    EXPECT_EQ(Lines{"W enter into ReinitHal, fqName:vendor.zantor.hardware.light@2.0::ILight, "
                    "name:default, preexisting:1"},
              TakeLog());
    native_hidl::ReinitHal("some.other@1.0::IThing", "slot", false);
    native_hidl::ReinitHal("some.other@1.0::IThing", "slot", false);
    ASSERT_TRUE(Device::Settle());
    Lines log = TakeLog();
    const auto second = std::find(log.begin() + 1, log.end(), log.front());
    EXPECT_EQ("W enter into ReinitHal, fqName:some.other@1.0::IThing, name:slot, preexisting:0",
              log.front());
    const auto count = [](auto begin, auto end, const char* line) {
        return std::count(begin, end, line);
    };
    EXPECT_EQ(1, count(log.begin(), second, "D g_light linkToDeath"));
    EXPECT_EQ(0, count(second, log.end(), "D g_light linkToDeath"));
    EXPECT_EQ(2, count(log.begin(), log.end(), "E g_touchscreen is null"));
    EXPECT_EQ(1u, LinksOf(kHidl));
}

}  // namespace
