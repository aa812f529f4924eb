// The simulated device: its processes, and what its services do to a caller.
#include "simulator/device.h"

#include <binder/IServiceManager.h>
#include <gtest/gtest.h>
#include <hidl/hidl_host.h>
#include <unistd.h>
#include <vendor/zantor/hardware/light/2.0/ILight.h>
#include <vendor/zantor/hardware/light/ILight.h>
#include <vendor/zantor/hardware/power/1.0/IQXPower.h>
#include <vendor/zantor/hardware/power/IQXPower.h>
#include <vendor/zantor/hardware/qxfactoryinterface/1.1/IQxFactoryInterface.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <stdexcept>
#include <thread>

#include "asleep.h"
#include "simulator/objects.h"

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
using namespace std::chrono_literals;

namespace factory = vendor::zantor::hardware::qxfactoryinterface;
using Factory10 = factory::V1_0::IQxFactoryInterface;
using Factory11 = factory::V1_1::IQxFactoryInterface;
using AidlPower = vendor::zantor::hardware::power::IQXPower;
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

template <typename Interface>
android::String16 NameOf() {
    return Interface::descriptor + android::String16("/default");
}

template <typename Interface>
sp<IBinder> Find() {
    return android::defaultServiceManager()->checkService(NameOf<Interface>());
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
    EXPECT_TRUE(device.GroupProcesses("one"));
    EXPECT_EQ(Device::Services(), device.ServicesWith("display@1.0"));
    EXPECT_TRUE(device.GroupProcesses("device"));
    EXPECT_FALSE(device.GroupProcesses("none"));
    EXPECT_EQ((Names{"display", "display_factory"}), device.ServicesWith("display@1.0"));
    EXPECT_EQ(Names{"power"}, device.ServicesWith("power"));
    device.Reset();
    EXPECT_EQ(Names{"display"}, device.ServicesWith("display"));
    EXPECT_THROW(device.KillProcess("lights"), std::out_of_range);
}

TEST_F(DeviceTest, AProcessComesBackAsItWas) {
    device.Start(kAidl, "display");
    device.Start(kHidl, "display_factory");
    device.Start(kHidl, "factory@1.0");
    const Names all{"hidl factory@1.0", "aidl display", "hidl display_factory"};
    device.KillProcess("display");
    EXPECT_EQ((Names{"hidl factory@1.0", "hidl display_factory"}), Running());
    device.RestartProcess("display");
    EXPECT_EQ(all, Running());

    EXPECT_TRUE(device.GroupProcesses("device"));
    device.KillProcess("display_factory");
    EXPECT_EQ(Names{"hidl factory@1.0"}, Running());
    device.KillProcess("display");  // nothing runs there
    device.Start(kAidl, "display");
    const auto display = device.At(kAidl, "display").Running();
    device.RestartProcess("display");
    EXPECT_EQ(all, Running());
    EXPECT_EQ(display, device.At(kAidl, "display").Running()) << "it ran already";
}

TEST_F(DeviceTest, AServiceMayDieWhileItStarts) {
    for (const Backend backend : {kAidl, kHidl}) {
        std::atomic<bool> stop{false};
        std::thread killer([&] {
            while (!stop) device.At(backend, "power").Kill();
        });
        for (int i = 0; i < 20000; i++) device.Start(backend, "power");
        stop = true;
        killer.join();
        device.Start(backend, "power");
        EXPECT_TRUE(device.IsRunning(backend, "power"));
    }
}

TEST_F(DeviceTest, AProcessIsDeadOverBothBackendsBeforeANotice) {
    device.GroupProcesses("one");
    for (int i = 0; i < 100; i++) {
        for (const char* service : {"light", "power"}) {
            device.Start(kAidl, service);
            device.Start(kHidl, service);
        }
        const sp<IBinder> binders[] = {Find<AidlLight>(), Find<AidlPower>()};
        const sp<Watcher::IBase> services[] = {HidlLight::getService("default"),
                                               IQXPower::getService("default")};
        const sp<Watcher> watcher = new Watcher;
        std::atomic<int> deaths = 0;
        watcher->onAidlDeath = watcher->onHidlDeath = [&] {
            for (const auto& dead : binders) EXPECT_EQ(android::DEAD_OBJECT, dead->pingBinder());
            for (const auto& dead : services) EXPECT_TRUE(dead->ping().isDeadObject());
            EXPECT_EQ(nullptr, HidlLight::tryGetService("default"));
            EXPECT_EQ(nullptr, IQXPower::tryGetService("default"));
            deaths++;
        };
        for (const auto& binder : binders) EXPECT_EQ(android::OK, binder->linkToDeath(watcher));
        for (const auto& service : services) EXPECT_TRUE(service->linkToDeath(watcher, 0));
        device.KillProcess("factory");
        EXPECT_TRUE(Device::Settle());
        EXPECT_EQ(4, deaths);
    }
}

TEST_F(DeviceTest, OnlyTheServiceOrAResetEndsAWait) {
    for (const Backend backend : {kAidl, kHidl}) {
        for (const bool served : {true, false}) {
            device.Reset();
            device.At(backend, "light").Declare();
            const auto manager = android::defaultServiceManager();
            const auto name = NameOf<AidlLight>();
            std::promise<pid_t> id;
            auto search = std::async(std::launch::async, [&] {
                id.set_value(gettid());
                return backend == kAidl ? manager->waitForService(name) != nullptr
                                        : HidlLight::getService("default") != nullptr;
            });
            WaitUntilAsleep(id.get_future());
            device.At(backend, "light").Undeclare();
            EXPECT_EQ(std::future_status::timeout, search.wait_for(20ms));
            if (served) {
                device.At(backend, "light").Start();
            } else {
                device.Reset();
            }
            EXPECT_EQ(served, search.get());
        }
    }
}

// A parent version has a declaration of its own, and casts ask the living.
TEST_F(DeviceTest, HidlVersionsAreDeclaredAndAskedFor) {
    const std::string name = "qxfactoryinterface_hal";
    device.Start(kHidl, "factory");
    const sp<Factory10> factory = Factory10::getService(name);
    ASSERT_NE(nullptr, factory);
    EXPECT_EQ(nullptr, Factory11::getService(name));
    kalvorn::host::DeclareHidlService(Factory11::descriptor, name);
    EXPECT_EQ(factory, Factory11::getService(name));
    EXPECT_EQ(factory, sp<Factory11>(Factory11::castFrom(factory)));
    device.KillProcess("factory");
    EXPECT_EQ(nullptr, sp<Factory11>(Factory11::castFrom(factory)));
    EXPECT_FALSE(Factory11::castFrom(factory, /*emitError=*/true).isOk());
    device.Start(kHidl, "factory@1.0");
    EXPECT_EQ(nullptr, sp<Factory11>(Factory11::castFrom(Factory10::getService(name))));
}

// Each death has a service registered on the other backend, whose registration brings a death.
TEST_F(DeviceTest, SettlesWhenBothBackendsAreIdleAtOnce) {
    const sp<Watcher> watcher = new Watcher;
    std::atomic<int> deaths = 0;
    sp<IBinder> light;
    watcher->onRegistered = [&] {
        device.Start(kAidl, "light");
        light = Find<AidlLight>();
        EXPECT_EQ(android::OK, light->linkToDeath(watcher));
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

}  // namespace
