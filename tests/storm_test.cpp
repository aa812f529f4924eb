// Deaths that come together, back to back, with and without calls under way: nothing crashes, every
// call gets an answer that it may get, and at rest every service is held and linked exactly once.
// A few seconds here; KALVORN_STORM=1 in the environment plays the long version, with progress.
#include <android/log.h>
#include <binder_host.h>
#include <gmock/gmock.h>
#include <stdlib.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <functional>
#include <random>
#include <thread>

#include "aidl/services.h"
#include "hidl/services.h"
#include "samples.h"

namespace {

using std::chrono::microseconds;

const bool g_long = getenv("KALVORN_STORM") != nullptr;

class StormTest : public LibraryTest {
  protected:
    void SetUp() override {
        LibraryTest::SetUp();
        // Millions of lines: they are formatted as ever, and dropped.
        __android_log_set_logger([](const __android_logger_data*, const char*) {});
    }

    void TearDown() override {
        Unload();
        LibraryTest::TearDown();
    }

    void Connect(const char* profile, const char* grouping) {
        Unload();
        device.Reset();
        device.RecordCalls(false);
        ASSERT_TRUE(device.StartProfile(profile));
        ASSERT_TRUE(device.GroupProcesses(grouping));
        ASSERT_EQ(JNI_VERSION_1_4, Load());
        ASSERT_TRUE(Device::Settle());
    }

    /**
     * One process dies and comes back. When is left to chance: before the library has heard of the
     * death, in the middle of its restarts, or after them; and so is how long its names stay.
     */
    void Die(const char* service) {
        kalvorn::host::KeepDeadNames(Chance(2));
        device.KillProcess(service);
        Pause();
        kalvorn::host::KeepDeadNames(false);
        Pause();
        device.RestartProcess(service);
        Pause();
    }

    bool Chance(int oneIn) { return mRandom() % oneIn == 0; }

    void Pause() {
        if (Chance(2)) return;
        std::this_thread::sleep_for(microseconds(mRandom() % 300));
    }

    void Progress(const char* what, int run, int runs, int deaths) const {
        if (!g_long) return;
        fprintf(stderr, "%s%s, run %d of %d, %d deaths\033[K%s", isatty(2) ? "\r" : "", what,
                run + 1, runs, deaths, isatty(2) ? "" : "\n");
    }

    /** At rest: all services connected, each with its one death link. */
    void ExpectWhole(Backend backend) {
        ASSERT_TRUE(Device::Settle(30000));
        for (const std::string& service : Device::Services()) {
            if (!device.IsRunning(backend, service)) continue;
            EXPECT_EQ(1u, device.DeathLinks(backend, service)) << service;
        }
    }

  private:
    std::minstd_rand mRandom{20261121};
};

TEST_F(StormTest, ProcessesDieTogether) {
    const struct {
        const char* grouping;
        const char* dying;
        const char* what;
    } processes[] = {{"device", "display", "2 services"},
                     {"device", "light", "3 services"},
                     {"one", "factory", "all services"}};
    const int runs = g_long ? 20 : 1;
    const int deaths = g_long ? 2000 : 200;
    for (const auto& process : processes) {
        SCOPED_TRACE(process.what);
        for (int run = 0; run < runs; run++) {
            ASSERT_NO_FATAL_FAILURE(Connect("aidl", process.grouping));
            for (int death = 0; death < deaths; death++) {
                Die(process.dying);
                if (death % 100 == 99) Progress(process.what, run, runs, death + 1);
            }
            ASSERT_NO_FATAL_FAILURE(ExpectWhole(kAidl));
        }
    }
}

/** A call, and all that it may answer while services die: the last ones when its service is gone.
 */
struct StormCall {
    std::string method;
    Args args;
    Lines answers;
};

/**
 * Those of the samples. Left out are what keeps texts, which would take much memory, and what ends
 * the process when its call breaks off.
 */
std::vector<StormCall> CallsOver(Backend backend) {
    std::vector<StormCall> calls;
    for (const Sample& sample : Samples()) {
        const Sample::Side& side = sample.On(backend);
        if (!side.brokenResult || sample.keeps > 0) continue;
        Lines answers{sample.healthyResult, *side.brokenResult, sample.absentResult};
        // A service that dies in the first of two calls is dead in the second.
        if (side.asks.size() > 1) answers.emplace_back("{0, -1}");
        calls.push_back({sample.method, sample.args, answers});
    }
    return calls;
}

/**
 * Threads that call without pause, each through all calls again and again, and have met a service
 * before the first one dies.
 */
class Callers {
  public:
    explicit Callers(std::vector<StormCall> calls) : mCalls(std::move(calls)) {
        for (size_t i = 0; i < 8; i++) mThreads.emplace_back([this, i] { Run(i); });
        while (!mServed) std::this_thread::yield();
    }
    ~Callers() {
        mStop = true;
        for (std::thread& thread : mThreads) thread.join();
    }

  private:
    void Run(size_t first) {
        for (size_t i = first; !mStop; i++) {
            const StormCall& call = mCalls[i % mCalls.size()];
            const std::string answer = java::Call(call.method, call.args);
            EXPECT_THAT(call.answers, testing::Contains(answer)) << call.method;
            if (answer == call.answers[0]) mServed = true;
        }
        java::Vm()->DetachCurrentThread();
    }

    const std::vector<StormCall> mCalls;
    std::atomic<bool> mStop{false};
    std::atomic<bool> mServed{false};
    std::vector<std::thread> mThreads;
};

TEST_F(StormTest, JavaCallsWhileServicesDie) {
    const struct {
        Backend backend;
        const char* profile;
        const char* grouping;
    } cases[] = {{kAidl, "aidl", "each"},
                 {kAidl, "aidl", "device"},
                 {kAidl, "aidl", "one"},
                 {kHidl, "hidl", "each"},
                 {kHidl, "hidl", "one"}};
    const int runs = g_long ? 20 : 1;
    const int deaths = g_long ? 200 : 50;
    for (const auto& c : cases) {
        const std::string what = std::string(c.profile) + ", processes: " + c.grouping + ", calls";
        SCOPED_TRACE(what);
        for (int run = 0; run < runs; run++) {
            ASSERT_NO_FATAL_FAILURE(Connect(c.profile, c.grouping));
            for (const Sample& sample : Samples()) java::Call(sample.method, sample.args);
            {
                const Callers callers(CallsOver(c.backend));
                const char* const dying[] = {"factory", "sensors", "power", "fingerprint", "light"};
                for (int death = 0; death < deaths; death++) Die(dying[death % std::size(dying)]);
            }
            Progress(what.c_str(), run, runs, deaths);
            ASSERT_NO_FATAL_FAILURE(ExpectWhole(c.backend));
        }
    }
}

}  // namespace
