// The host's HIDL library: the rules that end the process, and the registry with its threads.
#include <android/hidl/manager/1.0/IServiceNotification.h>
#include <gtest/gtest.h>
#include <hidl/hidl_host.h>

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "asleep.h"

namespace {

using ::android::sp;
using ::android::wp;
using ::android::hardware::hidl_death_recipient;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hardware::Status;
using ::android::hardware::Void;
using ::android::hidl::base::V1_0::IBase;
using ::android::hidl::manager::V1_0::IServiceNotification;

using namespace ::kalvorn::host;
using namespace std::chrono_literals;

// The library's own notification interface serves as the service.
const char* const kService = IServiceNotification::descriptor;

struct Service : IServiceNotification {
    Return<void> onRegistration(const hidl_string&, const hidl_string&, bool) override {
        return Void();
    }
};

/** A service that answers look-ups with a failed call. */
struct Failing : Service {
    Return<void> interfaceChain(interfaceChain_cb callback) override {
        ++asked;
        return status.isOk() ? Service::interfaceChain(callback) : status;
    }
    Status status;
    std::atomic<int> asked = 0;
};

/** Writes down what arrives, as "instance preexisting" or "died cookie". */
class Listener : public IServiceNotification, public hidl_death_recipient {
  public:
    Return<void> onRegistration(const hidl_string&, const hidl_string& name,
                                bool preexisting) override {
        if (mOnRegistration) mOnRegistration();
        note(name.c_str() + std::string(preexisting ? " true" : " false"));
        return Void();
    }
    void serviceDied(uint64_t cookie, const wp<IBase>& who) override {
        mDied = who;
        if (mOnDeath) mOnDeath();
        note("died " + std::to_string(cookie));
    }
    std::vector<std::string> heard() {
        EXPECT_TRUE(WaitForHidlDelivery(5s));
        const std::lock_guard<std::mutex> lock(mMutex);
        return std::exchange(mHeard, {});
    }

    std::function<void()> mOnRegistration, mOnDeath;
    wp<IBase> mDied;

  private:
    void note(const std::string& line) {
        const std::lock_guard<std::mutex> lock(mMutex);
        EXPECT_NE(mCreator, std::this_thread::get_id());
        mHeard.push_back(line);
    }

    const std::thread::id mCreator = std::this_thread::get_id();
    std::mutex mMutex;
    std::vector<std::string> mHeard;
};

using Lines = std::vector<std::string>;

class HostHidlTest : public ::testing::Test {
  protected:
    void TearDown() override {
        ResetHidlRegistry();
        EXPECT_TRUE(WaitForHidlDelivery(5s));
    }
};

/** Keeps the HIDL thread busy, so that what is posted meanwhile stays queued. */
class BusyHidlThread {
  public:
    BusyHidlThread() {
        mListener->mOnRegistration = [this] {
            mBusy.set_value();
            mDone.get_future().wait();
        };
        IServiceNotification::registerForNotifications("busy", mListener);
        EXPECT_EQ(::android::OK, (new Service)->registerAsService("busy"));
        EXPECT_EQ(std::future_status::ready, mBusy.get_future().wait_for(20s));
    }
    ~BusyHidlThread() {
        mDone.set_value();
        mListener->heard();
    }

  private:
    const sp<Listener> mListener = new Listener;
    std::promise<void> mBusy, mDone;
};

Status Failed() {
    return Status::fromStatusT(::android::DEAD_OBJECT);
}

TEST(HostHidlDeathTest, MisuseEndsTheProcess) {
    EXPECT_DEATH((void)static_cast<int32_t>(Return<int32_t>(Failed())), "value of a failed call");
    EXPECT_DEATH((void)sp<IBase>(Return<sp<IBase>>(Failed())), "value of a failed call");
    EXPECT_DEATH(Return<void>{Failed()}, "went unseen");
    EXPECT_DEATH(
            {
                Return<void> overwritten = Failed();
                overwritten = Void();
                (void)overwritten.isOk();
            },
            "went unseen");
    EXPECT_DEATH(
            {
                Return<void> seen = Failed();
                (void)seen.isOk();
                Return<int32_t> moved = 1;
                Return<int32_t> source = Failed();
                moved = std::move(source);
            },
            "went unseen");
    EXPECT_DEATH(hidl_string().setToExternal("abc", 2), "terminating zero");
}

TEST(HostHidlReturn, SeenFailuresAreHarmless) {
    Return<void> asked = Failed();
    EXPECT_FALSE(asked.isOk());
    asked = Void();
    EXPECT_TRUE(Return<int32_t>(Failed()).isDeadObject());
    Return<bool> source = Failed();
    const Return<bool> moved = std::move(source);
    EXPECT_FALSE(moved.isOk());
    EXPECT_EQ(7, Return<int32_t>(7));
}

TEST(HostHidlTypes, StringsAndVectorsOwnTheirCopies) {
    static_assert(sizeof(hidl_string) == 16 && alignof(hidl_string) == 8);
    static_assert(sizeof(hidl_vec<char>) == 16);

    char text[] = "abc";
    hidl_vec<hidl_string> vec = {"first", "second"};
    vec[1].setToExternal(text, 3);
    const hidl_vec<hidl_string> copy = vec;
    const hidl_string moved = std::move(vec[1]);
    text[0] = 'X';
    EXPECT_STREQ("abc", copy[1].c_str());
    EXPECT_STREQ("Xbc", moved.c_str());
    EXPECT_STREQ("", vec[1].c_str());
    vec.resize(3);
    EXPECT_EQ((hidl_vec<hidl_string>{"first", "", ""}), vec);
}

TEST_F(HostHidlTest, AServiceFoundDeadCountsAsNotThereYet) {
    DeclareHidlService(kService, "x");
    const sp<Failing> failing = new Failing;
    EXPECT_EQ(::android::OK, failing->registerAsService("x"));
    failing->status = Status::fromStatusT(::android::FAILED_TRANSACTION);
    EXPECT_EQ(nullptr, IServiceNotification::getService("x")) << "otherwise failed: no wait";

    failing->status = Failed();
    EXPECT_EQ(nullptr, IServiceNotification::tryGetService("x"));
    failing->asked = 0;
    const auto start = std::chrono::steady_clock::now();
    std::promise<pid_t> id;
    auto search = std::async(std::launch::async, [&] {
        id.set_value(gettid());
        return IServiceNotification::getService("x");
    });
    WaitUntilAsleep(id.get_future());
    std::this_thread::sleep_for(20ms);
    const auto seconds = (std::chrono::steady_clock::now() - start) / 1s;
    EXPECT_LE(failing->asked, 2 + seconds) << "it waits before it looks again";
    const sp<Service> living = new Service;
    EXPECT_EQ(::android::OK, living->registerAsService("x"));
    EXPECT_EQ(living, search.get());
}

TEST_F(HostHidlTest, ADeadServicesNameMayStayForAWhile) {
    const auto registered = [] {
        const sp<Listener> listener = new Listener;
        IServiceNotification::registerForNotifications("x", listener);
        return !listener->heard().empty();
    };
    DeclareHidlService(kService, "x");
    for (const bool replaced : {true, false}) {
        KeepDeadHidlNames(true);
        const sp<Service> dying = new Service, next = new Service;
        EXPECT_EQ(::android::OK, dying->registerAsService("x"));
        KillHidlProcess({dying});
        EXPECT_TRUE(registered());
        EXPECT_EQ(nullptr, IServiceNotification::tryGetService("x"));
        if (replaced) {
            EXPECT_EQ(::android::OK, next->registerAsService("x"));
        }
        KeepDeadHidlNames(false);
        EXPECT_EQ(replaced, registered());
        KillHidlProcess({next});
        EXPECT_FALSE(registered());
    }
}

TEST_F(HostHidlTest, EveryListenerHearsOfItsInstances) {
    const sp<Listener> all = new Listener, one = new Listener;
    EXPECT_FALSE(IServiceNotification::registerForNotifications("", nullptr));
    for (int i = 0; i < 2; ++i) IServiceNotification::registerForNotifications("", all);
    IServiceNotification::registerForNotifications("b", one);
    for (const char* name : {"a", "b"}) {
        EXPECT_EQ(::android::OK, (new Service)->registerAsService(name));
        EXPECT_EQ(Lines(2, std::string(name) + " false"), all->heard());
    }
    EXPECT_EQ(Lines{"b false"}, one->heard());
}

TEST_F(HostHidlTest, LinksChangeUntilTheObituaryIsOut) {
    const sp<Listener> first = new Listener, second = new Listener;
    const sp<Service> service = new Service, unheard = new Service, unlinked = new Service;
    EXPECT_FALSE(service->unlinkToDeath(first));
    for (const uint64_t cookie : {1, 2, 3}) EXPECT_TRUE(service->linkToDeath(first, cookie));
    EXPECT_TRUE(service->linkToDeath(new Listener, 9)) << "a recipient that goes at once";
    EXPECT_TRUE(service->linkToDeath(second, 4));
    EXPECT_TRUE(unheard->linkToDeath(second, 5));
    first->mOnDeath = [&] {
        EXPECT_FALSE(service->unlinkToDeath(first));
        EXPECT_FALSE(service->unlinkToDeath(second)) << "not yet told, but too late";
        EXPECT_FALSE(service->linkToDeath(second, 6));
    };
    {
        const BusyHidlThread busy;
        KillHidlProcess({service, nullptr, unheard, service});
        EXPECT_FALSE(WaitForHidlDelivery(0ms));
        EXPECT_TRUE(service->ping().isDeadObject());
        EXPECT_NE(::android::OK, service->registerAsService("x"));
        EXPECT_TRUE(service->unlinkToDeath(first)) << "the youngest";
        EXPECT_TRUE(service->unlinkToDeath(second));
        EXPECT_FALSE(service->unlinkToDeath(second)) << "it had one link";
        EXPECT_TRUE(service->linkToDeath(second, 7));
        EXPECT_TRUE(unheard->unlinkToDeath(second));
    }
    EXPECT_EQ((Lines{"died 1", "died 2"}), first->heard());
    EXPECT_EQ(service, first->mDied.promote());
    EXPECT_EQ(Lines{"died 7"}, second->heard());
    KillHidlProcess({service, unheard, unlinked});
    EXPECT_TRUE(unlinked->linkToDeath(second, 10)) << "brings the obituary";
    EXPECT_EQ(Lines{"died 10"}, second->heard());
    for (const auto& dead : {service, unheard, unlinked}) {
        EXPECT_FALSE(dead->linkToDeath(second, 8));
        EXPECT_FALSE(dead->unlinkToDeath(second));
        EXPECT_EQ(0u, HidlDeathLinkCount(dead));
    }
    EXPECT_EQ(Lines{}, second->heard());
}

}  // namespace
