// The simulated device: its processes, and what its services do to a caller.
#include "device/device.h"

#include <binder/IServiceManager.h>
#include <gtest/gtest.h>
#include <hidl/hidl_host.h>
#include <vendor/zantor/hardware/light/2.0/ILight.h>
#include <vendor/zantor/hardware/light/ILight.h>
#include <vendor/zantor/hardware/power/1.0/IQXPower.h>

#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>

#include "device/objects.h"

using android::IBinder;
using android::sp;
using android::wp;
using android::hardware::hidl_string;
using android::hardware::Return;
using android::hardware::Void;
using kalvorn::device::Backend;
using kalvorn::device::Device;
using kalvorn::device::Fault;
using vendor::zantor::hardware::power::V1_0::IQXPower;

using AidlLight = vendor::zantor::hardware::light::ILight;
using HidlLight = vendor::zantor::hardware::light::V2_0::ILight;

namespace {

constexpr Backend kAidl = Backend::kAidl;
constexpr Backend kHidl = Backend::kHidl;

using Names = std::vector<std::string>;

/** Told of deaths and registrations of either backend. */
struct Watcher : IBinder::DeathRecipient,
                 android::hardware::hidl_death_recipient,
                 android::hidl::manager::V1_0::IServiceNotification {
    void binderDied(const wp<IBinder>&) override { onAidlDeath(); }
    void serviceDied(uint64_t, const wp<IBase>&) override { onHidlDeath(); }
    Return<void> onRegistration(const hidl_string&, const hidl_string&, bool) override {
        onRegistered();
        return Void();
    }
    std::function<void()> onAidlDeath, onHidlDeath, onRegistered;
};

sp<AidlLight> FindAidlLight() {
    static const android::String16 name("vendor.zantor.hardware.light.ILight/default");
    return android::interface_cast<AidlLight>(android::defaultServiceManager()->checkService(name));
}

class DeviceTest : public testing::Test {
  protected:
    ~DeviceTest() override { device.Reset(); }

    Names Running() {
        Names running;
        for (const char* service : {"factory", "factory@1.0", "display", "display_factory"}) {
            if (device.IsRunning(kAidl, service)) running.push_back(std::string("aidl ") + service);
            if (device.IsRunning(kHidl, service)) running.push_back(std::string("hidl ") + service);
        }
        return running;
    }

    Device& device = Device::Get();
};

TEST_F(DeviceTest, ServicesShareAProcessAsGrouped) {
    const struct {
        const char* grouping;
        const char* service;
        Names expected;
    } cases[] = {
            {"each", "display", {"display"}},
            {"one", "display@1.0", Device::Services()},
            {"device", "factory@1.0", {"factory"}},
            {"device", "display@1.0", {"display", "display_factory"}},
            {"device", "light", {"touch", "sensors", "light"}},
            {"device", "power", {"power"}},
            {"device", "sim", {"radio", "sim"}},
            {"device", "chip", {"chip", "satellite"}},
    };
    for (const auto& c : cases) {
        EXPECT_TRUE(device.GroupProcesses(c.grouping));
        EXPECT_FALSE(device.GroupProcesses("none"));
        EXPECT_EQ(c.expected, device.ServicesWith(c.service)) << c.grouping;
    }
    device.Reset();
    EXPECT_EQ(Names{"chip"}, device.ServicesWith("chip"));
    EXPECT_THROW(device.KillProcess("lights"), std::out_of_range);
}

TEST_F(DeviceTest, AProcessComesBackAsItWas) {
    const auto start = [this] {
        device.Start(kAidl, "display");
        device.Start(kHidl, "display_factory");
        device.Start(kHidl, "factory@1.0");
    };
    const Names all{"hidl factory@1.0", "aidl display", "hidl display_factory"};
    start();
    device.KillProcess("display");
    EXPECT_EQ((Names{"hidl factory@1.0", "hidl display_factory"}), Running());
    device.RestartProcess("display");
    EXPECT_EQ(all, Running());

    EXPECT_TRUE(device.GroupProcesses("device"));
    device.KillProcess("display_factory");
    EXPECT_EQ(Names{"hidl factory@1.0"}, Running());
    device.KillProcess("display");  // nothing runs there
    device.RestartProcess("display");
    EXPECT_EQ(all, Running());

    EXPECT_TRUE(device.GroupProcesses("one"));
    device.KillProcess("chip");
    EXPECT_EQ(Names{}, Running());
    device.Start(kAidl, "display");
    const auto display = device.At(kAidl, "display").Running();
    device.RestartProcess("chip");
    EXPECT_EQ(all, Running());
    EXPECT_EQ(display, device.At(kAidl, "display").Running()) << "it ran already";
}

TEST_F(DeviceTest, AProcessIsDeadOverBothBackendsBeforeANotice) {
    device.GroupProcesses("one");
    for (int i = 0; i < 50; i++) {
        device.Start(kAidl, "light");
        device.Start(kHidl, "light");
        const sp<AidlLight> aidl = FindAidlLight();
        const sp<HidlLight> hidl = HidlLight::getService("default");
        const sp<Watcher> watcher = new Watcher;
        std::atomic<int> deaths = 0;
        watcher->onAidlDeath = watcher->onHidlDeath = [&] {
            EXPECT_EQ(android::DEAD_OBJECT, AidlLight::asBinder(aidl)->pingBinder());
            EXPECT_TRUE(hidl->ping().isDeadObject());
            deaths++;
        };
        EXPECT_EQ(android::OK, AidlLight::asBinder(aidl)->linkToDeath(watcher));
        EXPECT_TRUE(hidl->linkToDeath(watcher, 0));
        device.KillProcess("factory");
        EXPECT_TRUE(Device::Settle());
        EXPECT_EQ(2, deaths);
    }
}

// Each death has a service registered on the other backend, whose registration brings a death.
TEST_F(DeviceTest, SettlesWhenBothBackendsAreIdleAtOnce) {
    const sp<Watcher> watcher = new Watcher;
    std::atomic<int> deaths = 0;
    sp<AidlLight> light;
    watcher->onRegistered = [&] {
        device.Start(kAidl, "light");
        light = FindAidlLight();
        EXPECT_EQ(android::OK, AidlLight::asBinder(light)->linkToDeath(watcher));
        device.At(kAidl, "light").Kill();
    };
    watcher->onAidlDeath = [&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (++deaths < 20) device.Start(kHidl, "light");
    };
    HidlLight::registerForNotifications("default", watcher);
    device.Start(kHidl, "light");
    EXPECT_TRUE(Device::Settle());
    EXPECT_EQ(20, deaths);
}

TEST_F(DeviceTest, HidlCallsThatFail) {
    const std::string large(1024 * 1024 - 2 * 4096, 'x');
    device.Start(kHidl, "power");
    const sp<IQXPower> power = IQXPower::getService("default");
    std::string answer;
    const auto ask = [&](const std::string& scene) {
        answer = "preset";
        return power->getPowerState(scene, [&](int32_t, const auto& text) { answer = text; });
    };
    EXPECT_TRUE(ask(large.substr(100)).isOk());
    EXPECT_EQ("charging", answer);
    EXPECT_EQ(1u, device.TakeCalls().size());
    const Return<void> request = ask(large);
    EXPECT_TRUE(!request.isOk() && !request.isDeadObject());
    EXPECT_EQ("preset", answer);
    EXPECT_EQ(Names{}, device.TakeCalls()) << "it never came";

    device.Script("getPowerState", {0, large + "x"});
    const Return<void> reply = ask("s");
    EXPECT_TRUE(!reply.isOk() && !reply.isDeadObject());
    EXPECT_EQ("preset", answer);
    device.Script("getPowerState", Fault::kDeadObject);
    EXPECT_TRUE(ask("s").isDeadObject());
    EXPECT_EQ("preset", answer);
    device.OnCall([&] { device.KillProcess("power"); });
    EXPECT_TRUE(ask("s").isDeadObject()) << "died within the call";
    device.TakeCalls();
    EXPECT_TRUE(ask("s").isDeadObject()) << "dead before the call";
    EXPECT_EQ("preset", answer);
    EXPECT_EQ(Names{}, device.TakeCalls());
}

TEST_F(DeviceTest, RecordsCallsUnlessToldNotTo) {
    device.Start(kAidl, "light");
    int ret = 0;
    device.RecordCalls(false);
    FindAidlLight()->setLightsBrightness(1, 2, &ret);
    device.RecordCalls(true);
    FindAidlLight()->setLightsBrightness(3, 4, &ret);
    EXPECT_EQ(Names{"aidl light.setLightsBrightness(3, 4)"}, device.TakeCalls());
    device.RecordCalls(false);
    device.Reset();
    device.Start(kAidl, "light");
    FindAidlLight()->setLightsBrightness(5, 6, &ret);
    EXPECT_EQ(1u, device.TakeCalls().size());
}

TEST_F(DeviceTest, DiesWhileItIsCalledAndLookedAt) {
    device.GroupProcesses("device");
    device.RecordCalls(false);
    ASSERT_TRUE(device.StartProfile("mixed"));
    device.Start(kAidl, "light");
    std::atomic<bool> done = false;
    std::vector<std::thread> callers(4);
    for (std::thread& caller : callers) {
        caller = std::thread([&] {
            while (!done) {
                const sp<AidlLight> aidl = FindAidlLight();
                int32_t ret = -1;
                if (aidl != nullptr && aidl->setLightsBrightness(1, 2, &ret).isOk()) {
                    EXPECT_EQ(0, ret);
                }
                const sp<HidlLight> hidl = HidlLight::tryGetService("default");
                if (hidl != nullptr) (void)hidl->setLightsBrightness(1, 2).isOk();
                device.DeathLinks(kAidl, "light");
                device.IsRunning(kHidl, "light");
            }
        });
    }
    for (int i = 0; i < 200; i++) {
        device.KillProcess("sensors");
        device.RestartProcess("touch");
    }
    done = true;
    for (std::thread& caller : callers) caller.join();
    EXPECT_TRUE(Device::Settle());
    EXPECT_TRUE(device.IsRunning(kAidl, "light"));
    EXPECT_TRUE(device.IsRunning(kHidl, "light"));
}

}  // namespace
