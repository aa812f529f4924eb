#include <binder/IServiceManager.h>
#include <binder_host.h>
#include <hidl/hidl_host.h>
#include <unistd.h>

#include <chrono>
#include <future>
#include <thread>

#include "aidl/services.h"
#include "asleep.h"
#include "every_service.h"
#include "harness.h"
#include "hidl/services.h"
#include "jni/dispatch.h"

namespace {

using Lines = std::vector<std::string>;

const ServiceRow& RowOf(const std::string& service) {
    return *std::find_if(std::begin(kServices), std::end(kServices),
                         [&](const ServiceRow& row) { return row.name == service; });
}

/** The lines of a load: what each service does on a device that runs these services. */
Lines LoadLines(const Device& device) {
    Lines lines{"I JNI_OnLoad", "E InitKvNativeManager"};
    for (const ServiceRow& row : kServices) {
        lines.push_back(row.aidlStart);
        if (device.IsRunning(kAidl, row.name)) {
            lines.push_back(row.aidlLink);
            continue;
        }
        lines.push_back(row.aidlNull);
        if (row.hidlStart == nullptr) continue;
        lines.push_back(row.hidlStart);
        const bool running = device.IsRunning(kHidl, row.name);
        lines.push_back(running ? row.hidlLink : row.hidlNull);
    }
    return lines;
}

/** Without the lines of callbacks, which come on HIDL threads at their own time. */
Lines WithoutReinit(Lines lines) {
    const auto isReinit = [](const std::string& line) {
        return line.rfind("W enter into ReinitHal", 0) == 0;
    };
    lines.erase(std::remove_if(lines.begin(), lines.end(), isReinit), lines.end());
    return lines;
}

class ConnectionsTest : public LibraryTest {
  protected:
    void TearDown() override {
        native_aidl::g_aidlFingerprint.reset();  // survives an unload when it has no session
        LibraryTest::TearDown();
    }
};

TEST_F(ConnectionsTest, EachServiceIsDecidedSeparatelyAndInOrder) {
    for (const char* profile : {"aidl", "hidl", "mixed", "bare"}) {
        SCOPED_TRACE(profile);
        Unload();
        device.Reset();
        ASSERT_TRUE(device.StartProfile(profile));
        TakeLog();
        EXPECT_EQ(JNI_VERSION_1_4, Load());
        ASSERT_TRUE(Device::Settle());
        EXPECT_EQ(LoadLines(device), WithoutReinit(TakeLog()))
                << "from ConnectServices() in jni/library.cpp";
        for (const ServiceRow& row : kServices) {
            SCOPED_TRACE(row.name);
            EXPECT_EQ(device.IsRunning(kAidl, row.name), device.DeathLinks(kAidl, row.name));
            EXPECT_EQ(device.IsRunning(kHidl, row.name), device.DeathLinks(kHidl, row.name));
        }
    }
}

TEST_F(ConnectionsTest, QueriesTellTheirOwnService) {
    for (const ServiceRow& held : kServices) {
        SCOPED_TRACE(held.name);
        LoadWith(kAidl, held.name);
        for (const ServiceRow& row : kServices) EXPECT_EQ(&row == &held, row.isHeld()) << row.name;
    }
}

TEST_F(ConnectionsTest, ARefusedDeathLinkGoesUnnoticed) {
    for (const Backend backend : {kAidl, kHidl}) {
        Unload();
        device.Reset();
        device.Start(backend, "light");
        device.At(backend, "light").RefuseDeathLinks();
        if (backend == kAidl) device.Start(kHidl, "light");  // connected: no fallback to it
        Load();
        EXPECT_EQ(0u, device.DeathLinks(kHidl, "light"));
        EXPECT_EQ(0u, device.DeathLinks(kAidl, "light"));
        device.Script("set_led_alwayson_status", {4});
        EXPECT_EQ("4", java::Call("nativeSetLedAlwaysOnStatus", {1, 2}));
    }
}

// A declared service is waited for, however late it registers.
TEST_F(ConnectionsTest, ALateServiceHoldsUpTheLoad) {
    for (const char* service : {"light", "fingerprint"}) {
        const ServiceRow& row = RowOf(service);
        for (const Backend backend : {kAidl, kHidl}) {
            SCOPED_TRACE(row.name);
            Unload();
            device.Reset();
            device.At(backend, service).Declare();
            std::promise<void> started;
            OnLine([&, start = backend == kAidl ? row.aidlStart
                                                : row.hidlStart](const std::string& line) {
                if (line == start) started.set_value();
            });
            std::atomic<bool> loaded{false};
            std::thread loader([&] {
                Load();
                loaded = true;
            });
            started.get_future().wait();
            OnLine(nullptr);
            EXPECT_FALSE(loaded);
            device.Start(backend, service);
            loader.join();
            EXPECT_EQ(1u, device.DeathLinks(backend, service));
        }
    }
}

TEST_F(ConnectionsTest, UnloadReleasesEveryServiceAndLoadTakesThemAgain) {
    for (const char* profile : {"aidl", "hidl", "mixed", "bare"}) {
        SCOPED_TRACE(profile);
        device.Reset();
        LoadWithProfile(profile);
        // As calls under way would: what they hold is unlinked all the same.
        const auto light = native_aidl::g_aidlLight;
        const auto interface = native_aidl::g_aidlFingerprint;
        const auto session = native_aidl::g_aidlFingerprintSession;
        const auto notifier = native_aidl::g_deathNotifier;
        Unload();
        EXPECT_EQ((Lines{"I JNI_onUnLoad", "E ExitKvNativeManager", "I ExitKvManager by aidl",
                         "D ExitKvManager by hidl"}),
                  WithoutReinit(TakeLog()));
        for (const std::string& service : Device::Services()) {
            EXPECT_EQ(0u, device.DeathLinks(kAidl, service))
                    << service << ": ExitKvManager() in aidl/death.cpp has to release it";
            EXPECT_EQ(0u, device.DeathLinks(kHidl, service))
                    << service << ": ExitKvManager() in hidl/death.cpp has to release it";
        }
        Load();
        EXPECT_EQ(LoadLines(device), WithoutReinit(TakeLog()));
        EXPECT_EQ(notifier, native_aidl::g_deathNotifier);
        Unload();
        device.Reset();
    }
    EXPECT_EQ(0, Device::LiveServices());
}

// A partial connection keeps the interface over a teardown and never asks for a session again.
TEST_F(ConnectionsTest, AHeldServiceIsNotLookedUp) {
    for (const char* profile : {"aidl", "hidl"}) {
        LoadWithProfile(profile);
        const size_t before = kalvorn::host::LookUpCount() + kalvorn::host::HidlLookUpCount();
        Load();
        EXPECT_EQ(before, kalvorn::host::LookUpCount() + kalvorn::host::HidlLookUpCount());
        EXPECT_EQ(Lines{}, device.TakeCalls()) << "no second session either";
        Unload();
        device.Reset();
    }
}

TEST_F(ConnectionsTest, ARefusedSessionIsNotAskedForAgain) {
    for (const Answer& refusal : {Answer(-1), Answer(Fault::kTransport)}) {
        native_aidl::g_aidlFingerprint.reset();
        device.Reset();
        device.Start(kAidl, "fingerprint");
        device.Start(kHidl, "fingerprint");
        device.Script("createSession", refusal);
        TakeLog();
        EXPECT_EQ(0, native_aidl::InitFingerprintService());
        EXPECT_EQ((Lines{"I InitAidlFingerprintService", "E g_aidlFingerprintSession is null"}),
                  TakeLog());
        EXPECT_EQ(Lines{"aidl fingerprint.createSession(-1, -1000, \"\")"}, device.TakeCalls());
        EXPECT_FALSE(native_aidl::IsFingerprintServiceAidlVersion());
        EXPECT_EQ(1, native_aidl::InitFingerprintService());
        native_aidl::ExitKvManager();
        EXPECT_NE(nullptr, native_aidl::g_aidlFingerprint);
        Load();  // the kept interface counts as connected: no fallback
        EXPECT_EQ(0u, device.DeathLinks(kHidl, "fingerprint"));
        EXPECT_EQ(Lines{}, device.TakeCalls());
    }
    native_aidl::g_aidlFingerprint.reset();
}

TEST_F(ConnectionsTest, AFingerprintServiceThatNeverComes) {
    device.At(kAidl, "fingerprint").Declare();
    std::promise<pid_t> id;
    auto loader = std::async(std::launch::async, [&] {
        id.set_value(gettid());
        return native_aidl::InitFingerprintService();
    });
    WaitUntilAsleep(id.get_future());
    device.Reset();  // without a service, only the stand-in ends the wait
    EXPECT_EQ(0, loader.get());
    EXPECT_EQ("E Could not connect to declared sensors AIDL HAL", TakeLastLine());
}

TEST_F(ConnectionsTest, AForeignServiceUnderTheFingerprintsName) {
    const std::string name = std::string(native_aidl::IFingerprint::descriptor) + "/default";
    device.At(kAidl, "fingerprint").Declare();
    android::defaultServiceManager()->addService(android::String16(name.c_str()),
                                                 new android::BBinder);
    EXPECT_EQ(0, native_aidl::InitFingerprintService());
    EXPECT_EQ("E g_aidlFingerprintSession is null", TakeLastLine());
}

// Instances of a virtual machine that fail at one step.
jint GetEnvFails(JavaVM*, void**, jint) {
    return JNI_EVERSION;
}
jint GetEnvGivesNull(JavaVM*, void** env, jint) {
    *env = nullptr;
    return JNI_OK;
}
JNIEnv g_env;
jint GetEnvGivesFake(JavaVM*, void** env, jint version) {
    *env = &g_env;
    return version == JNI_VERSION_1_4 ? JNI_OK : JNI_EVERSION;
}

TEST_F(ConnectionsTest, FailuresOfTheVirtualMachineRefuseTheLibrary) {
    JNINativeInterface functions{};
    functions.FindClass = [](JNIEnv*, const char*) -> jclass { return nullptr; };
    JNINativeInterface registers{};
    registers.FindClass = [](JNIEnv*, const char*) -> jclass {
        return reinterpret_cast<jclass>(&g_env);
    };
    registers.RegisterNatives = [](JNIEnv*, jclass, const JNINativeMethod*, jint count) -> jint {
        return count == kMethodCount ? -1 : 0;
    };
    JNINativeInterface runsShort = registers;
    runsShort.RegisterNatives = [](JNIEnv*, jclass, const JNINativeMethod*, jint) -> jint {
        return JNI_ENOMEM;
    };
    const std::string name = "'com/quorvin/kalvornii/KvNativeInterface'";
    const struct {
        jint (*getEnv)(JavaVM*, void**, jint);
        const JNINativeInterface* functions;
        Lines lines;
    } cases[] = {
            {GetEnvFails, nullptr, {"E ERROR: GetEnv failed"}},
            {GetEnvGivesNull,
             nullptr,
             {"E RegisterNativeMethods fail, env is null", "E ERROR: RegisterAllNatives failed"}},
            {GetEnvGivesFake,
             &functions,
             {"E Native registration unable to find class " + name,
              "E ERROR: RegisterAllNatives failed"}},
            {GetEnvGivesFake,
             &registers,
             {"E RegisterNatives failed for " + name, "E ERROR: RegisterAllNatives failed"}},
            {GetEnvGivesFake,
             &runsShort,
             {"E RegisterNatives failed for " + name, "E ERROR: RegisterAllNatives failed"}},
            {[](JavaVM*, void**, jint) -> jint { return JNI_EDETACHED; },
             nullptr,
             {"E ERROR: GetEnv failed"}},
    };
    for (const auto& c : cases) {
        device.Reset();
        device.Start(kAidl, "light");
        TakeLog();
        Lines expected = LoadLines(device);
        expected.insert(expected.end(), c.lines.begin(), c.lines.end());
        JNIInvokeInterface invoke{};
        invoke.GetEnv = c.getEnv;
        g_env.functions = c.functions;
        JavaVM vm{&invoke};
        EXPECT_EQ(-1, JNI_OnLoad(&vm, nullptr));
        EXPECT_EQ(expected, TakeLog());
        EXPECT_EQ(1u, device.DeathLinks(kAidl, "light")) << "connections are kept";
        Unload();
    }
}

}  // namespace
