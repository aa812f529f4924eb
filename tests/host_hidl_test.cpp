// The host's HIDL library: the rules that end the process, and the registry with its threads.
#include <gtest/gtest.h>
#include <hidl/HostInterface.h>
#include <hidl/hidl_host.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace kalvorn_test {

using ::android::sp;
using ::android::wp;
using ::android::hardware::hidl_death_recipient;
using ::android::hardware::hidl_handle;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hardware::Status;
using ::android::hardware::Void;
using ::android::hidl::base::V1_0::IBase;
using ::android::hidl::manager::V1_0::IServiceNotification;

// The library's own notification interface serves as the 1.0 service, this child of it as the 1.1.
struct IExtended : public IServiceNotification {
    static const char* descriptor;
    Return<void> interfaceChain(interfaceChain_cb callback) override;
    Return<void> debug(const hidl_handle& fd, const hidl_vec<hidl_string>& options) override;
    Return<void> interfaceDescriptor(interfaceDescriptor_cb callback) override;
    Return<void> getHashChain(getHashChain_cb callback) override;
    Return<void> setHALInstrumentation() override;
    Return<bool> linkToDeath(const sp<hidl_death_recipient>& recipient, uint64_t cookie) override;
    Return<void> ping() override;
    Return<void> getDebugInfo(getDebugInfo_cb callback) override;
    Return<void> notifySyspropsChanged() override;
    Return<bool> unlinkToDeath(const sp<hidl_death_recipient>& recipient) override;
    static Return<sp<IExtended>> castFrom(const sp<IExtended>& same, bool emitError = false);
    static Return<sp<IExtended>> castFrom(const sp<IServiceNotification>&, bool emitError = false);
    static Return<sp<IExtended>> castFrom(const sp<IBase>& parent, bool emitError = false);
    static sp<IExtended> tryGetService(const std::string& name, bool getStub = false);
    static sp<IExtended> getService(const std::string& name, bool getStub = false);
    ::android::status_t registerAsService(const std::string& name);
    static bool registerForNotifications(const std::string&, const sp<IServiceNotification>&);
};

}  // namespace kalvorn_test

KALVORN_HIDL_INTERFACE_EXTENDS(::kalvorn_test::IExtended, "test@1.1::IExtended",
                               ::android::hidl::manager::V1_0::IServiceNotification)

namespace kalvorn_test {
namespace {

using namespace ::kalvorn::host;
using namespace std::chrono_literals;

const char kBase[] = "android.hidl.manager@1.0::IServiceNotification";
const char kExtended[] = "test@1.1::IExtended";

template <typename Interface>
struct Service : Interface {
    Return<void> onRegistration(const hidl_string&, const hidl_string&, bool) override {
        return Void();
    }
};
using Service10 = Service<IServiceNotification>;
using Service11 = Service<IExtended>;

struct Disowning11 : Service11 {
    Return<void> interfaceChain(interfaceChain_cb callback) override {
        // NOLINTNEXTLINE(bugprone-parent-virtual-call): so that it denies being an IExtended
        return IServiceNotification::interfaceChain(callback);
    }
};

/** A service that answers look-ups with a failed call. */
struct Failing11 : Service11 {
    Return<void> interfaceChain(interfaceChain_cb callback) override {
        ++asked;
        return status.isOk() ? Service11::interfaceChain(callback) : status;
    }
    Status status;
    std::atomic<int> asked = 0;
};

/** Writes down what arrives, as "name instance preexisting" or "died cookie". */
class Listener : public IServiceNotification, public hidl_death_recipient {
  public:
    Return<void> onRegistration(const hidl_string& fqName, const hidl_string& name,
                                bool preexisting) override {
        if (mOnRegistration) mOnRegistration();
        note(std::string(fqName) + " " + name.c_str() + (preexisting ? " true" : " false"));
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

bool Eventually(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (!condition() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(1ms);
    }
    return condition();
}

/** A look-up on a thread of its own, so that a failed test does not hang. */
class Search {
  public:
    explicit Search(const std::string& name)
        : mFound(std::async(std::launch::async, [name] { return IExtended::getService(name); })) {}
    ~Search() {
        if (mFound.valid()) ResetHidlRegistry();
    }

    bool waits() const {
        return Eventually([] { return HidlWaiterCount() == 1; });
    }

    sp<IExtended> found() {
        const bool ended = mFound.wait_for(20s) == std::future_status::ready;
        EXPECT_TRUE(ended);
        return ended ? mFound.get() : nullptr;
    }

  private:
    std::future<sp<IExtended>> mFound;
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
        EXPECT_EQ(::android::OK, (new Service10)->registerAsService("busy"));
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
    EXPECT_DEATH(Return<bool>(Failed()).description(), "went unseen");
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
    static_assert(sizeof(hidl_vec<char>) == 16 && sizeof(hidl_handle) == 16);

    char text[] = "abc";
    hidl_vec<hidl_string> vec = {"first", "second"};
    vec[1].setToExternal(text, 3);
    const hidl_vec<hidl_string> copy = vec;
    hidl_string moved = std::move(vec[1]);
    text[0] = 'X';
    EXPECT_STREQ("abc", copy[1].c_str());
    EXPECT_STREQ("Xbc", moved.c_str());
    EXPECT_STREQ("", vec[1].c_str());
    moved = *&moved;
    EXPECT_EQ(hidl_string("Xbc"), moved);
    EXPECT_EQ(std::string("a\0b", 3), std::string(hidl_string("a\0b", 3)));

    vec.resize(3);
    EXPECT_EQ(hidl_string("first"), vec[0]);
    EXPECT_TRUE(vec[2].empty());
    vec.resize(1);
    EXPECT_EQ(1u, vec.size());

    int32_t numbers[] = {1, 2};
    hidl_vec<int32_t> lent;
    lent.setToExternal(numbers, 2);
    const hidl_vec<int32_t> owned = lent;
    numbers[1] = 9;
    EXPECT_EQ((hidl_vec<int32_t>{1, 9}), lent);
    EXPECT_EQ((hidl_vec<int32_t>{1, 2}), owned);
}

TEST_F(HostHidlTest, GetServiceWaitsForADeclaredServiceOnly) {
    EXPECT_EQ(nullptr, IExtended::getService("x"));
    DeclareHidlService(kExtended, "x");
    EXPECT_EQ(nullptr, IExtended::tryGetService("x"));

    Search late("x");
    EXPECT_TRUE(late.waits());
    const sp<IExtended> service = new Service11;
    EXPECT_EQ(::android::OK, service->registerAsService("x"));
    EXPECT_EQ(service, late.found());
    EXPECT_EQ(nullptr, IServiceNotification::tryGetService("x")) << "the parent is not declared";
    DeclareHidlService(kBase, "x");
    EXPECT_EQ(service, IServiceNotification::getService("x"));
}

TEST_F(HostHidlTest, OnlyTheServiceOrAResetEndsAWait) {
    DeclareHidlService(kExtended, "x");
    {
        Search search("x");
        EXPECT_TRUE(search.waits());
        UndeclareHidlService(kExtended, "x");
        EXPECT_EQ(nullptr, IExtended::getService("x")) << "asked after the withdrawal";
        const sp<IExtended> service = new Service11;
        EXPECT_EQ(::android::OK, service->registerAsService("x"));
        EXPECT_EQ(service, search.found());
    }
    ResetHidlRegistry();
    DeclareHidlService(kExtended, "x");
    Search search("x");
    EXPECT_TRUE(search.waits());
    ResetHidlRegistry();
    DeclareHidlService(kExtended, "x");
    EXPECT_EQ(nullptr, search.found());
}

TEST_F(HostHidlTest, AServiceFoundDeadCountsAsNotThereYet) {
    DeclareHidlService(kExtended, "x");
    const sp<Failing11> failing = new Failing11;
    EXPECT_EQ(::android::OK, failing->registerAsService("x"));
    failing->status = Status::fromStatusT(::android::FAILED_TRANSACTION);
    EXPECT_EQ(nullptr, Search("x").found()) << "a cast that fails otherwise ends the wait";

    failing->status = Status::fromStatusT(::android::DEAD_OBJECT);
    EXPECT_EQ(nullptr, IExtended::tryGetService("x"));
    failing->asked = 0;
    const auto start = std::chrono::steady_clock::now();
    Search search("x");
    EXPECT_TRUE(search.waits());
    std::this_thread::sleep_for(20ms);
    const auto seconds = (std::chrono::steady_clock::now() - start) / 1s;
    EXPECT_LE(failing->asked, 2 + seconds) << "it waits before it looks again";
    const sp<IExtended> living = new Service11;
    EXPECT_EQ(::android::OK, living->registerAsService("x"));
    EXPECT_EQ(living, search.found());
}

TEST_F(HostHidlTest, ADeadServicesNameMayStayForAWhile) {
    const auto registered = [] {
        const sp<Listener> listener = new Listener;
        IExtended::registerForNotifications("x", listener);
        return !listener->heard().empty();
    };
    DeclareHidlService(kExtended, "x");
    KeepDeadHidlNames(true);
    for (const bool replaced : {true, false}) {
        const sp<IExtended> dying = new Service11;
        EXPECT_EQ(::android::OK, dying->registerAsService("x"));
        KillHidlService(dying);
        EXPECT_TRUE(registered());
        EXPECT_EQ(nullptr, IExtended::tryGetService("x"));
        const sp<IExtended> next = new Service11;
        if (replaced) {
            EXPECT_EQ(::android::OK, next->registerAsService("x"));
        }
        KeepDeadHidlNames(false);
        EXPECT_EQ(replaced, registered());
        EXPECT_EQ(replaced ? next : nullptr, IExtended::tryGetService("x"));
        KillHidlService(next);
        KeepDeadHidlNames(true);
    }
    ResetHidlRegistry();
    const sp<IExtended> last = new Service11;
    EXPECT_EQ(::android::OK, last->registerAsService("x"));
    KillHidlService(last);
    EXPECT_FALSE(registered()) << "a reset ends it";
}

TEST_F(HostHidlTest, NotificationsTellNewFromPresent) {
    const sp<Listener> all = new Listener;
    const sp<Listener> one = new Listener;
    EXPECT_FALSE(IExtended::registerForNotifications("", nullptr));
    EXPECT_TRUE(IExtended::registerForNotifications("", all));
    EXPECT_TRUE(IExtended::registerForNotifications("", all));
    EXPECT_TRUE(IServiceNotification::registerForNotifications("b", one));
    EXPECT_EQ(2u, HidlNotificationCount(kExtended));

    const sp<Service11> service = new Service11;
    EXPECT_EQ(::android::OK, service->registerAsService("a"));
    EXPECT_EQ((Lines{"test@1.1::IExtended a false", "test@1.1::IExtended a false"}), all->heard());
    EXPECT_EQ(::android::OK, service->registerAsService("b"));
    EXPECT_EQ((Lines{std::string(kBase) + " b false"}), one->heard());

    const sp<Listener> late = new Listener;
    EXPECT_TRUE(IExtended::registerForNotifications("", late));
    EXPECT_EQ((Lines{"test@1.1::IExtended a true", "test@1.1::IExtended b true"}), late->heard());
}

TEST_F(HostHidlTest, CallbacksComeOneAtATimeAndInOrder) {
    const sp<Listener> blocked = new Listener;
    const sp<Listener> other = new Listener;
    DeclareHidlService(kExtended, "late");
    std::atomic<int> entered = 0;
    blocked->mOnRegistration = [&] {
        ++entered;
        EXPECT_NE(nullptr, IExtended::getService("late"));
    };
    IServiceNotification::registerForNotifications("x", blocked);
    IServiceNotification::registerForNotifications("x", blocked);

    const sp<Service10> service = new Service10;
    EXPECT_EQ(::android::OK, service->registerAsService("x"));
    EXPECT_TRUE(service->linkToDeath(other, 1));
    KillHidlService(service);
    EXPECT_TRUE(Eventually([] { return HidlWaiterCount() == 1; }));
    EXPECT_FALSE(WaitForHidlDelivery(0ms));
    EXPECT_EQ(1, entered);
    EXPECT_EQ(nullptr, other->mDied.promote());
    EXPECT_EQ(::android::OK, (new Service11)->registerAsService("late"));
    EXPECT_EQ(2u, blocked->heard().size());
    EXPECT_EQ(Lines{"died 1"}, other->heard());
}

TEST_F(HostHidlTest, EveryLinkOfADeadServiceIsDelivered) {
    DeclareHidlService(kBase, "x");
    const sp<Listener> recipient = new Listener;
    const sp<Service10> service = new Service10;
    EXPECT_EQ(::android::OK, service->registerAsService("x"));
    EXPECT_FALSE(service->unlinkToDeath(recipient));
    for (const uint64_t cookie : {1, 2, 3}) EXPECT_TRUE(service->linkToDeath(recipient, cookie));
    EXPECT_TRUE(service->linkToDeath(new Listener, 4)) << "a recipient that goes at once";
    EXPECT_TRUE(service->unlinkToDeath(recipient));
    RefuseHidlDeathLinks(service, true);
    EXPECT_FALSE(service->linkToDeath(recipient, 5));
    EXPECT_EQ(3u, HidlDeathLinkCount(service));

    EXPECT_FALSE(IsHidlServiceDead(service.get()));
    KillHidlService(service);
    EXPECT_EQ((Lines{"died 1", "died 2"}), recipient->heard());
    EXPECT_EQ(service, recipient->mDied.promote());
    KillHidlService(service);
    EXPECT_EQ(Lines{}, recipient->heard());

    EXPECT_TRUE(IsHidlServiceDead(service.get()));
    EXPECT_TRUE(service->ping().isDeadObject());
    EXPECT_FALSE(service->linkToDeath(recipient, 6));
    EXPECT_FALSE(service->unlinkToDeath(recipient));
    EXPECT_EQ(nullptr, IServiceNotification::tryGetService("x"));
    EXPECT_NE(::android::OK, service->registerAsService("x"));
}

TEST_F(HostHidlTest, LinksChangeUntilTheObituaryIsOut) {
    const sp<Listener> first = new Listener, second = new Listener;
    const sp<Service10> service = new Service10, unheard = new Service10;
    for (const uint64_t cookie : {1, 2, 3}) EXPECT_TRUE(service->linkToDeath(first, cookie));
    EXPECT_TRUE(service->linkToDeath(second, 4));
    EXPECT_TRUE(unheard->linkToDeath(second, 5));
    first->mOnDeath = [&] {
        EXPECT_FALSE(service->unlinkToDeath(first));
        EXPECT_FALSE(service->unlinkToDeath(second)) << "not yet told, but too late";
        EXPECT_FALSE(service->linkToDeath(second, 6));
    };
    {
        const BusyHidlThread busy;
        KillHidlProcess({service, unheard});
        EXPECT_TRUE(service->unlinkToDeath(first)) << "the youngest";
        EXPECT_TRUE(service->unlinkToDeath(second));
        EXPECT_FALSE(service->unlinkToDeath(second)) << "it had one link";
        EXPECT_TRUE(service->linkToDeath(second, 7));
        EXPECT_TRUE(unheard->unlinkToDeath(second));
    }
    EXPECT_EQ((Lines{"died 1", "died 2"}), first->heard());
    EXPECT_EQ(Lines{"died 7"}, second->heard());
    for (const auto& dead : {service, unheard}) {
        EXPECT_FALSE(dead->linkToDeath(second, 8));
        EXPECT_FALSE(dead->unlinkToDeath(second));
        EXPECT_EQ(0u, HidlDeathLinkCount(dead));
    }
}

TEST_F(HostHidlTest, ALinkToTheDeadBringsTheObituary) {
    const sp<Listener> recipient = new Listener;
    const sp<Service10> service = new Service10;
    KillHidlService(service);
    EXPECT_TRUE(service->linkToDeath(recipient, 1));
    EXPECT_EQ(Lines{"died 1"}, recipient->heard());
    EXPECT_FALSE(service->linkToDeath(recipient, 2));
    EXPECT_EQ(Lines{}, recipient->heard());
}

TEST_F(HostHidlTest, AProcessIsDeadBeforeTheFirstNotice) {
    DeclareHidlService(kBase, "a");
    const sp<Listener> recipient = new Listener;
    const sp<Service10> a = new Service10, b = new Service10;
    EXPECT_EQ(::android::OK, a->registerAsService("a"));
    EXPECT_TRUE(b->linkToDeath(recipient, 1));
    EXPECT_TRUE(a->linkToDeath(recipient, 2));
    const size_t queued = HidlDeliveryCount();
    KillHidlProcess({b, nullptr, a, b}, [&] {
        EXPECT_TRUE(a->ping().isDeadObject());
        EXPECT_TRUE(b->ping().isDeadObject());
        EXPECT_EQ(nullptr, IServiceNotification::tryGetService("a"));
        EXPECT_EQ(queued, HidlDeliveryCount());
    });
    EXPECT_EQ((Lines{"died 1", "died 2"}), recipient->heard());
    EXPECT_EQ(queued + 2, HidlDeliveryCount());
}

TEST_F(HostHidlTest, CastsFollowTheInterfaceChain) {
    const sp<IServiceNotification> only10 = new Service10;
    const sp<IServiceNotification> both = new Service11;
    const auto cast = [](const sp<IServiceNotification>& from) -> sp<IExtended> {
        return IExtended::castFrom(from);
    };
    EXPECT_EQ(nullptr, cast(nullptr));
    EXPECT_EQ(nullptr, cast(only10));
    EXPECT_EQ(both, cast(both));
    EXPECT_EQ(nullptr, cast(new Disowning11)) << "the chain decides, not the C++ type";
    KillHidlService(both);
    EXPECT_EQ(nullptr, cast(both));
    EXPECT_FALSE(IExtended::castFrom(both, /*emitError=*/true).isOk());
}

TEST_F(HostHidlTest, TheRegistryLetsGoOfWhatItHeld) {
    wp<IServiceNotification> service = new Service10;
    wp<Listener> listener = new Listener;
    EXPECT_EQ(::android::OK, service.promote()->registerAsService("x"));
    EXPECT_TRUE(IServiceNotification::registerForNotifications("x", listener.promote()));
    EXPECT_TRUE(WaitForHidlDelivery(5s));
    EXPECT_NE(nullptr, service.promote());
    EXPECT_NE(nullptr, listener.promote());
    ResetHidlRegistry();
    EXPECT_EQ(nullptr, service.promote());
    EXPECT_EQ(nullptr, listener.promote());
}

}  // namespace
}  // namespace kalvorn_test
