/** The host's binder: what clients, services and death recipients may rely on. */
#include <android/binder_auto_utils.h>
#include <android/binder_libbinder.h>
#include <android/binder_manager.h>
#include <binder/Binder.h>
#include <binder/IServiceManager.h>
#include <binder/Parcel.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "asleep.h"
#include "binder_host.h"

using namespace android;
using namespace kalvorn::host;
using namespace std::chrono_literals;

namespace {

const String16 kName("pkg.IEcho/default");

/** Answers with as many bytes as it is asked for. */
struct Echo : BBinder {
    std::function<void()> onCall = [] {};
    int calls = 0;

    status_t onTransact(uint32_t, const Parcel& data, Parcel* reply, uint32_t) override {
        ++calls;
        onCall();
        return reply->setDataSize(data.readInt32());
    }
};

struct Recipient : IBinder::DeathRecipient {
    explicit Recipient(std::function<void(const wp<IBinder>&)> action) : onDeath(action) {}
    void binderDied(const wp<IBinder>& who) override { onDeath(who); }
    const std::function<void(const wp<IBinder>&)> onDeath;
};

sp<IBinder> Publish(const sp<IBinder>& service, const String16& name = kName) {
    EXPECT_EQ(OK, defaultServiceManager()->addService(name, service));
    return defaultServiceManager()->checkService(name);
}

status_t Call(const sp<IBinder>& binder, size_t send = 4, size_t receive = 4,
              Parcel* reply = nullptr) {
    Parcel data, ignored;
    data.writeInt32(static_cast<int32_t>(receive));
    data.setDataSize(send);
    return binder->transact(IBinder::FIRST_CALL_TRANSACTION, data, reply ? reply : &ignored);
}

class HostBinderTest : public testing::Test {
  protected:
    ~HostBinderTest() override {
        ResetServiceManager();
        EXPECT_TRUE(WaitForDeathDelivery(5s));
    }
};

TEST_F(HostBinderTest, ADeadServiceAnswersNoCall) {
    const sp<Echo> service = new Echo;
    const sp<IBinder> proxy = Publish(service);
    EXPECT_EQ(nullptr, proxy->localBinder());
    EXPECT_EQ(nullptr, proxy->queryLocalInterface(String16()));
    EXPECT_EQ(OK, proxy->pingBinder());
    service->onCall = [&] { KillProcess({service}); };
    EXPECT_EQ(DEAD_OBJECT, Call(proxy)) << "died during the call";
    EXPECT_EQ(DEAD_OBJECT, Call(proxy)) << "dead before the call";
    EXPECT_EQ(1, service->calls);
    EXPECT_FALSE(proxy->isBinderAlive());
    EXPECT_EQ(nullptr, defaultServiceManager()->checkService(kName));
    EXPECT_EQ(DEAD_OBJECT, defaultServiceManager()->addService(kName, service));
}

// A notice that waits for a service has been taken up, one that looks a present one up has not.
TEST_F(HostBinderTest, ALookUpInPassingIsNoWait) {
    const sp<Echo> service = new Echo;
    const String16 other("pkg.IOther/default");
    Publish(new Echo, other);
    std::atomic<bool> passed{false};
    const sp<Recipient> recipient = new Recipient([&](const wp<IBinder>&) {
        for (int i = 0; i < 20000; i++) defaultServiceManager()->waitForService(other);
        passed = true;
        defaultServiceManager()->waitForService(kName);
    });
    const sp<IBinder> proxy = Publish(service);
    EXPECT_EQ(OK, proxy->linkToDeath(recipient));
    KillProcess({service});
    EXPECT_TRUE(WaitForDeathUptake(30s));
    EXPECT_TRUE(passed);
    EXPECT_FALSE(WaitForDeathDelivery(0ms));
}

TEST_F(HostBinderTest, LinksAreMatchedAndCounted) {
    const sp<Echo> service = new Echo;
    int told = 0, a, b;
    sp<Recipient> recipient = new Recipient([&](const wp<IBinder>&) { ++told; });
    EXPECT_EQ(INVALID_OPERATION, service->linkToDeath(recipient));
    EXPECT_EQ(OK, Publish(service)->linkToDeath(recipient));
    EXPECT_EQ(0u, DeathLinkCount(service)) << "a proxy takes its links with it";
    const sp<IBinder> proxy = Publish(service);
    for (void* cookie : {&a, &b, &b, &b}) EXPECT_EQ(OK, proxy->linkToDeath(recipient, cookie));
    EXPECT_EQ(NAME_NOT_FOUND, proxy->unlinkToDeath(recipient, &b, 1)) << "flags are compared";
    EXPECT_EQ(OK, proxy->unlinkToDeath(recipient, &b)) << "the first link, whatever its cookie";
    EXPECT_EQ(NAME_NOT_FOUND, proxy->unlinkToDeath(nullptr, &a));
    EXPECT_EQ(OK, proxy->unlinkToDeath(nullptr, &b));
    EXPECT_EQ(OK, proxy->linkToDeath(new Recipient([&](const wp<IBinder>&) { told = 100; })));
    EXPECT_EQ(2u, DeathLinkCount(service)) << "the last one's recipient has gone";
    for (int kill = 0; kill < 2; ++kill) KillProcess({service});
    EXPECT_EQ(0u, DeathLinkCount(service));
    EXPECT_TRUE(WaitForDeathDelivery(5s));
    EXPECT_EQ(2, told) << "once per link";
}

/** As many as the platform gives a process that asks for no other number. */
constexpr int kBinderThreads = 15;

/** Keeps every binder thread in a notice: those that come later wait until this has gone. */
class BusyBinderThreads {
  public:
    BusyBinderThreads() {
        std::vector<sp<IBinder>> services;
        for (int i = 0; i < kBinderThreads; ++i) {
            services.push_back(new Echo);
            mProxies.push_back(Publish(services.back()));
            EXPECT_EQ(OK, mProxies.back()->linkToDeath(mRecipient));
        }
        KillProcess(services);
        const auto end = std::chrono::steady_clock::now() + 30s;
        while (mHeld < kBinderThreads && std::chrono::steady_clock::now() < end) {
            std::this_thread::yield();
        }
        EXPECT_EQ(kBinderThreads, mHeld);
    }
    ~BusyBinderThreads() {
        mDone.set_value();
        EXPECT_TRUE(WaitForDeathDelivery(30s));
    }

  private:
    std::promise<void> mDone;
    const std::shared_future<void> mReleased = mDone.get_future().share();
    std::atomic<int> mHeld = 0;
    std::vector<sp<IBinder>> mProxies;
    const sp<Recipient> mRecipient = new Recipient([this](const wp<IBinder>&) {
        ++mHeld;
        mReleased.wait();
    });
};

TEST_F(HostBinderTest, OnlyTheObituaryEndsTheLinks) {
    std::atomic<int> told = 0;
    const sp<Recipient> before = new Recipient([](const wp<IBinder>&) { FAIL(); });
    const sp<Recipient> late = new Recipient([&](const wp<IBinder>&) { ++told; });
    const sp<Echo> service = new Echo, quiet = new Echo, dropped = new Echo;
    const sp<IBinder> proxy = Publish(service), quietProxy = Publish(quiet);
    sp<IBinder> droppedProxy = Publish(dropped);
    for (const auto& linked : {proxy, quietProxy, droppedProxy}) {
        EXPECT_EQ(OK, linked->linkToDeath(before));
    }
    {
        const BusyBinderThreads busy;
        KillProcess({service, quiet, dropped});
        EXPECT_TRUE(proxy->isBinderAlive()) << "a proxy knows only what it was told";
        EXPECT_EQ(DEAD_OBJECT, proxy->pingBinder());
        EXPECT_FALSE(proxy->isBinderAlive());
        EXPECT_EQ(OK, proxy->unlinkToDeath(before));
        EXPECT_EQ(NAME_NOT_FOUND, proxy->unlinkToDeath(before));
        for (int link = 0; link < 2; ++link) EXPECT_EQ(OK, proxy->linkToDeath(late));
        EXPECT_EQ(OK, quietProxy->unlinkToDeath(before));
        droppedProxy = nullptr;
        EXPECT_FALSE(WaitForDeathDelivery(0ms));
        EXPECT_EQ(0, told);
    }
    EXPECT_EQ(2, told);
    for (const auto& linked : {proxy, quietProxy}) {
        EXPECT_FALSE(linked->isBinderAlive()) << "told, although nobody was linked";
        EXPECT_EQ(DEAD_OBJECT, linked->linkToDeath(late));
        EXPECT_EQ(DEAD_OBJECT, linked->unlinkToDeath(late));
    }
}

TEST_F(HostBinderTest, ADeadServiceHandedOutAgain) {
    KeepDeadNames(true);
    const sp<Echo> service = new Echo;
    sp<IBinder> proxy = Publish(service);
    const auto lookUp = [] { return defaultServiceManager()->waitForService(kName); };
    std::atomic<int> told = 0;
    const sp<Recipient> again = new Recipient([&](const wp<IBinder>&) { ++told; });
    const sp<Recipient> first = new Recipient([&](const wp<IBinder>& who) {
        proxy = nullptr;
        EXPECT_TRUE(who.promote() == nullptr);
        proxy = lookUp();
        EXPECT_TRUE(who == proxy) << "a notice under way keeps the proxy in use";
        EXPECT_EQ(DEAD_OBJECT, proxy->linkToDeath(again));
    });
    EXPECT_EQ(OK, proxy->linkToDeath(first));
    KillProcess({service});
    EXPECT_TRUE(WaitForDeathDelivery(5s));

    wp<IBinder> weak = proxy;
    proxy = nullptr;
    EXPECT_EQ(DEAD_OBJECT, lookUp()->linkToDeath(again)) << "still the same proxy";
    weak = nullptr;
    proxy = lookUp();
    EXPECT_TRUE(proxy->isBinderAlive());
    EXPECT_EQ(OK, proxy->linkToDeath(again));
    EXPECT_TRUE(WaitForDeathDelivery(5s));
    EXPECT_EQ(1, told) << "a new proxy has an obituary of its own";
    EXPECT_EQ(DEAD_OBJECT, proxy->linkToDeath(again));

    const sp<IBinder> living = Publish(new Echo, String16("living"));
    KeepDeadNames(false);
    EXPECT_EQ(nullptr, defaultServiceManager()->checkService(kName));
    EXPECT_EQ(living, defaultServiceManager()->checkService(String16("living")));
}

TEST_F(HostBinderTest, UnlinkingRacesWithTheNotice) {
    for (int round = 0; round < 300; ++round) {
        const sp<Echo> service = new Echo;
        const sp<IBinder> proxy = Publish(service);
        std::atomic<int> told = 0;
        const sp<Recipient> recipient = new Recipient([&](const wp<IBinder>&) { ++told; });
        EXPECT_EQ(OK, proxy->linkToDeath(recipient));
        auto killer = std::async(std::launch::async, [&] { KillProcess({service}); });
        const bool unlinked = proxy->unlinkToDeath(recipient) == OK;
        killer.wait();
        ASSERT_TRUE(WaitForDeathDelivery(5s));
        ASSERT_EQ(unlinked ? 0 : 1, told);
    }
}

TEST_F(HostBinderTest, LookingUpRacesWithDropping) {
    const sp<Echo> service = new Echo;
    Publish(service);
    const auto lookUp = [] { return defaultServiceManager()->checkService(kName); };
    const auto useIt = [&] {
        for (int round = 0; round < 3000; ++round) ASSERT_EQ(OK, lookUp()->pingBinder());
    };
    auto other = std::async(std::launch::async, useIt);
    useIt();
    other.wait();

    const sp<Recipient> recipient = new Recipient([](const wp<IBinder>&) { FAIL(); });
    sp<IBinder> dropped = lookUp(), again;
    OnLastReference([&] {
        again = lookUp();
        EXPECT_EQ(OK, again->linkToDeath(recipient));
    });
    dropped = nullptr;
    OnLastReference(nullptr);
    EXPECT_EQ(0u, DeathLinkCount(service)) << "the last reference took the new link too";
    EXPECT_EQ(OK, again->pingBinder());
}

// The restart of the first notice may come before the second service has gone.
TEST_F(HostBinderTest, ServicesOfAProcessGoOneByOne) {
    const String16 other("pkg.IOther/default");
    const sp<Echo> first = new Echo, second = new Echo;
    std::promise<void> linked;
    std::atomic<int> told = 0;
    const sp<Recipient> late = new Recipient([&](const wp<IBinder>&) { ++told; });
    sp<IBinder> dying;
    const sp<Recipient> early = new Recipient([&](const wp<IBinder>&) {
        dying = defaultServiceManager()->checkService(other);
        EXPECT_EQ(OK, dying->linkToDeath(late));
        EXPECT_EQ(DEAD_OBJECT, dying->pingBinder());
        linked.set_value();
    });
    const sp<IBinder> proxy = Publish(first);
    Publish(second, other);
    EXPECT_EQ(OK, proxy->linkToDeath(early));
    int gone = 0;
    OnServiceDied([&] {
        if (++gone == 1) linked.get_future().wait();
    });
    KillProcess({first, second});
    OnServiceDied(nullptr);
    EXPECT_TRUE(WaitForDeathDelivery(5s));
    EXPECT_EQ(1, told);
    EXPECT_EQ(nullptr, defaultServiceManager()->checkService(other));
}

// What comes back while a service is waited for is told on a binder thread, or found by asking.
TEST_F(HostBinderTest, AWaiterGetsWhatWasRegistered) {
    const auto wait = [] { return defaultServiceManager()->waitForService(kName); };
    const sp<Echo> service = new Echo;
    {
        const BusyBinderThreads busy;
        const auto start = std::chrono::steady_clock::now();
        auto waiting = std::async(std::launch::async, wait);
        std::this_thread::sleep_for(50ms);
        Publish(service);
        EXPECT_EQ(OK, waiting.get()->pingBinder());
        EXPECT_LE(900ms, std::chrono::steady_clock::now() - start);
    }
    KillProcess({service});
    std::promise<pid_t> id;
    std::future<pid_t> asleep = id.get_future();
    auto waiting = std::async(std::launch::async, [&] {
        id.set_value(gettid());
        return wait();
    });
    WaitUntilAsleep(std::move(asleep));
    const sp<Echo> shortLived = new Echo;
    Publish(shortLived);
    KillProcess({shortLived});
    EXPECT_EQ(DEAD_OBJECT, waiting.get()->pingBinder()) << "it has died since";
}

constexpr size_t kMost = 1024 * 1024 - 2 * 4096;

TEST_F(HostBinderTest, WhatIsLargerThanABufferFails) {
    const sp<Echo> service = new Echo;
    const sp<IBinder> proxy = Publish(service);
    EXPECT_EQ(OK, Call(proxy, kMost, kMost));
    EXPECT_EQ(FAILED_TRANSACTION, Call(proxy, kMost + 4, 4));
    EXPECT_EQ(1, service->calls) << "it never came";
    Parcel reply;
    EXPECT_EQ(FAILED_TRANSACTION, Call(proxy, 4, kMost + 4, &reply));
    EXPECT_EQ(0u, reply.dataSize());
    EXPECT_EQ(2, service->calls);
    KillProcess({service});
    EXPECT_EQ(DEAD_OBJECT, Call(proxy, kMost + 4, 4)) << "death comes first";
}

TEST_F(HostBinderTest, TransactionsUnderWayShareABuffer) {
    const sp<Echo> service = new Echo, other = new Echo;
    const sp<IBinder> proxy = Publish(service), otherProxy = Publish(other);
    std::vector<status_t> nested;
    service->onCall = [&] {
        if (service->calls > 1) return;
        nested = {Call(proxy, kMost / 2, 4), Call(proxy, kMost / 4, 4),
                  Call(otherProxy, kMost / 2, 4)};
    };
    const auto callAll = [&] {
        service->calls = 0;
        EXPECT_EQ(OK, Call(proxy, kMost / 2 + 8, 4));
        return nested;
    };
    EXPECT_EQ((std::vector<status_t>{FAILED_TRANSACTION, OK, OK}), callAll());
    ShareProcess({service, other});
    EXPECT_EQ((std::vector<status_t>{FAILED_TRANSACTION, OK, FAILED_TRANSACTION}), callAll());
    EXPECT_EQ(OK, Call(otherProxy, kMost, 4)) << "all given back";
    {
        Parcel kept;
        EXPECT_EQ(OK, Call(proxy, 4, kMost / 2 + 8, &kept));
        EXPECT_EQ(FAILED_TRANSACTION, Call(otherProxy, 4, kMost / 2));
    }
    EXPECT_EQ(OK, Call(proxy, 4, kMost)) << "a reply takes its room until it is freed";
}

TEST(HostParcelTest, TruncatedOrForgedDataIsRefused) {
    EXPECT_EQ(BAD_VALUE, Parcel().writeUtf8AsUtf16("\xff\xff"));
    std::string text = "kept";
    std::vector<int32_t> ints = {1};
    std::vector<uint8_t> bytes = {1};
    sp<IBinder> binder;
    const auto readText = [&](const Parcel& parcel) { return parcel.readUtf8FromUtf16(&text); };
    const auto readInts = [&](const Parcel& parcel) { return parcel.readInt32Vector(&ints); };
    const auto readBytes = [&](const Parcel& parcel) { return parcel.readByteVector(&bytes); };
    const auto readBinder = [&](const Parcel& parcel) { return parcel.readStrongBinder(&binder); };
    const struct {
        std::vector<int32_t> words;
        std::function<status_t(const Parcel&)> read;
        status_t expected;
    } cases[] = {
            {{}, readText, NOT_ENOUGH_DATA},          {{9, 0}, readText, NOT_ENOUGH_DATA},
            {{2, 0}, readText, NOT_ENOUGH_DATA},      {{-1}, readText, UNEXPECTED_NULL},
            {{INT32_MAX}, readInts, NOT_ENOUGH_DATA}, {{5, 0}, readBytes, NOT_ENOUGH_DATA},
            {{1234}, readBinder, BAD_TYPE},           {{0}, readBinder, UNEXPECTED_NULL},
    };
    for (const auto& [words, read, expected] : cases) {
        Parcel parcel;
        for (int32_t word : words) parcel.writeInt32(word);
        parcel.setDataPosition(0);
        EXPECT_EQ(expected, read(parcel)) << testing::PrintToString(words);
    }
    EXPECT_EQ("kept", text);
    EXPECT_EQ(1u, ints.size() * bytes.size());
}

class NdkBinderTest : public HostBinderTest {
  protected:
    NdkBinderTest() { ended = told = 0; }

    /** An NDK service's proxy. */
    static ndk::SpAIBinder Start() {
        static const AIBinder_Class* const clazz = AIBinder_Class_define(
                "pkg.INdk", [](void* args) { return args; }, [](void*) { ++ended; }, nullptr);
        const ndk::SpAIBinder local(AIBinder_new(clazz, nullptr));
        service = AIBinder_toPlatformBinder(local.get());
        EXPECT_EQ(EX_NONE, AServiceManager_addService(local.get(), "pkg.INdk/default"));
        return ndk::SpAIBinder(AServiceManager_waitForService("pkg.INdk/default"));
    }
    static void Kill() {
        KillProcess({service});
        EXPECT_TRUE(WaitForDeathDelivery(5s));
    }
    ~NdkBinderTest() override { service = nullptr; }

    static inline sp<IBinder> service;
    static inline std::atomic<int> ended, told;
    int a = 0, b = 0;
};

TEST_F(NdkBinderTest, BinderAndCookieNameALinkUntilItsNotice) {
    static std::atomic<void*> last;
    AIBinder_DeathRecipient* const recipient = AIBinder_DeathRecipient_new([](void* cookie) {
        ++told;
        last = cookie;
    });
    ndk::SpAIBinder remote = Start();
    EXPECT_EQ(remote, ndk::SpAIBinder(AServiceManager_waitForService("pkg.INdk/default")));
    for (void* cookie : {&a, &b, &b}) {
        EXPECT_EQ(STATUS_OK, AIBinder_linkToDeath(remote.get(), recipient, cookie));
    }
    EXPECT_EQ(3u, DeathLinkCount(service));
    EXPECT_EQ(STATUS_NAME_NOT_FOUND, AIBinder_unlinkToDeath(remote.get(), recipient, &told));
    EXPECT_EQ(STATUS_OK, AIBinder_unlinkToDeath(remote.get(), recipient, &b));
    EXPECT_EQ(STATUS_OK, AIBinder_unlinkToDeath(remote.get(), recipient, &a));
    EXPECT_EQ(STATUS_NAME_NOT_FOUND, AIBinder_unlinkToDeath(remote.get(), recipient, &a));
    {
        const BusyBinderThreads busy;
        KillProcess({service});
        EXPECT_EQ(STATUS_OK, AIBinder_linkToDeath(remote.get(), recipient, &b)) << "no obituary";
    }
    EXPECT_EQ(2, told);
    EXPECT_EQ(&b, last);
    EXPECT_EQ(STATUS_NAME_NOT_FOUND, AIBinder_unlinkToDeath(remote.get(), recipient, &b));
    EXPECT_EQ(STATUS_DEAD_OBJECT, AIBinder_linkToDeath(remote.get(), recipient, &b));
    AIBinder_DeathRecipient_delete(recipient);
    service = nullptr;
    remote = ndk::SpAIBinder();
    EXPECT_EQ(1, ended);
}

TEST_F(NdkBinderTest, ALinkEndsWithItsBinderOrItsRecipient) {
    static AIBinder_DeathRecipient* recipient;
    static ndk::SpAIBinder remote;
    const auto link = [&](AIBinder_DeathRecipient_onBinderDied onBinderDied) {
        recipient = AIBinder_DeathRecipient_new(onBinderDied);
        EXPECT_EQ(STATUS_OK, AIBinder_linkToDeath(remote.get(), recipient, &a));
    };
    remote = Start();
    const sp<IBinder> proxy = AIBinder_toPlatformBinder(remote.get());
    link([](void*) { ++told; });
    remote = ndk::SpAIBinder();
    Kill();
    EXPECT_EQ(0, told) << "the platform's proxy is held, but the AIBinder has gone";
    AIBinder_DeathRecipient_delete(recipient);

    remote = Start();
    link([](void*) { ++told; });
    AIBinder_DeathRecipient_delete(recipient);
    EXPECT_EQ(0u, DeathLinkCount(service));
    link([](void* cookie) {
        ++told;
        EXPECT_EQ(STATUS_DEAD_OBJECT, AIBinder_unlinkToDeath(remote.get(), recipient, cookie));
        AIBinder_DeathRecipient_delete(recipient);
        remote = ndk::SpAIBinder();
    });
    Kill();
    EXPECT_EQ(1, told) << "both went during the notice";
}

}  // namespace
