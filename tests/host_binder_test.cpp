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
#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>
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

/** Answers with the int it gets plus one. */
struct Echo : BBinder {
    ~Echo() override { onEnd(); }
    std::function<void()> onCall = [] {};
    std::function<void()> onEnd = [] {};
    int calls = 0;

    status_t onTransact(uint32_t, const Parcel& data, Parcel* reply, uint32_t) override {
        ++calls;
        onCall();
        return reply->writeInt32(data.readInt32() + 1);
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

status_t Call(const sp<IBinder>& binder, int32_t* value) {
    Parcel data, reply;
    data.writeInt32(*value);
    const status_t status = binder->transact(IBinder::FIRST_CALL_TRANSACTION, data, &reply);
    return status == OK ? reply.readInt32(value) : status;
}

class HostBinderTest : public testing::Test {
  protected:
    ~HostBinderTest() override {
        ResetServiceManager();
        EXPECT_TRUE(WaitForDeathDelivery(5s));
    }
};

TEST_F(HostBinderTest, ClientsGetTheOneProxyAndNeverTheService) {
    const sp<Echo> service = new Echo;
    const sp<IBinder> proxy = Publish(service);
    EXPECT_EQ(nullptr, proxy->localBinder());
    EXPECT_EQ(nullptr, proxy->queryLocalInterface(String16()));
    for (const sp<IBinder>& written : {sp<IBinder>(service), proxy, sp<IBinder>()}) {
        Parcel parcel;
        parcel.writeStrongBinder(written);
        parcel.setDataPosition(0);
        sp<IBinder> read = new Echo;
        EXPECT_EQ(OK, parcel.readNullableStrongBinder(&read));
        EXPECT_EQ(written == nullptr ? nullptr : proxy, read);
    }
    int32_t value = 41;
    EXPECT_EQ(OK, Call(proxy, &value));
    EXPECT_EQ(42, value);
}

TEST_F(HostBinderTest, AFailedCallLeavesTheCallersValueAlone) {
    const sp<Echo> service = new Echo;
    const sp<IBinder> proxy = Publish(service);
    int32_t value = 7;
    FailNextTransaction(service, FAILED_TRANSACTION);
    EXPECT_EQ(OK, proxy->pingBinder());
    EXPECT_EQ(FAILED_TRANSACTION, Call(proxy, &value));
    EXPECT_EQ(0, service->calls);
    service->onCall = [&] { KillService(service); };
    EXPECT_EQ(DEAD_OBJECT, Call(proxy, &value)) << "died during the call";
    EXPECT_EQ(DEAD_OBJECT, Call(proxy, &value)) << "dead before the call";
    EXPECT_EQ(1, service->calls);
    EXPECT_EQ(7, value);
    EXPECT_FALSE(proxy->isBinderAlive());
    EXPECT_EQ(nullptr, defaultServiceManager()->checkService(kName));
    EXPECT_EQ(DEAD_OBJECT, defaultServiceManager()->addService(kName, service));
}

TEST_F(HostBinderTest, ABlockedNoticeDoesNotHoldUpTheNextDeath) {
    const sp<Echo> first = new Echo, second = new Echo;
    const sp<IBinder> proxy1 = Publish(first), proxy2 = Publish(second, String16("second"));
    std::promise<void> entered, told;
    std::atomic<int> waited = 0;
    const auto tester = std::this_thread::get_id();
    sp<Recipient> waiting = new Recipient([&](const wp<IBinder>& who) {
        EXPECT_TRUE(who == proxy1);
        EXPECT_NE(tester, std::this_thread::get_id());
        entered.set_value();
        EXPECT_NE(nullptr, defaultServiceManager()->waitForService(kName));
        ++waited;
    });
    const sp<Recipient> prompt = new Recipient([&](const wp<IBinder>&) { told.set_value(); });
    EXPECT_EQ(OK, proxy1->linkToDeath(waiting));
    EXPECT_EQ(OK, proxy2->linkToDeath(prompt));
    for (int kill = 0; kill < 2; ++kill) KillService(first);
    entered.get_future().wait();
    EXPECT_FALSE(WaitForDeathDelivery(0ms));
    KillService(second);
    told.get_future().wait();
    EXPECT_EQ(0, waited);
    Publish(new Echo);
    EXPECT_TRUE(WaitForDeathDelivery(5s));
    EXPECT_EQ(1, waited);
}

TEST_F(HostBinderTest, LinksAreMatchedAndCounted) {
    const sp<Echo> service = new Echo;
    sp<IBinder> proxy = Publish(service);
    int told = 0, a, b;
    wp<IBinder::DeathRecipient> removed;
    sp<Recipient> recipient = new Recipient([&](const wp<IBinder>&) { ++told; });
    EXPECT_EQ(INVALID_OPERATION, service->linkToDeath(recipient));
    EXPECT_EQ(NAME_NOT_FOUND, proxy->unlinkToDeath(recipient));
    RefuseDeathLinks(service, true);
    EXPECT_EQ(INVALID_OPERATION, proxy->linkToDeath(recipient));
    RefuseDeathLinks(service, false);
    for (void* cookie : {&a, &b, &b, &b}) EXPECT_EQ(OK, proxy->linkToDeath(recipient, cookie));
    EXPECT_EQ(NAME_NOT_FOUND, proxy->unlinkToDeath(recipient, &b, 1)) << "flags are compared";
    EXPECT_EQ(OK, proxy->unlinkToDeath(recipient, &b)) << "the first link, whatever its cookie";
    EXPECT_EQ(NAME_NOT_FOUND, proxy->unlinkToDeath(nullptr, &a));
    EXPECT_EQ(OK, proxy->unlinkToDeath(nullptr, &b, 0, &removed));
    EXPECT_TRUE(removed == recipient);
    EXPECT_EQ(2u, DeathLinkCount(service));
    EXPECT_EQ(OK, proxy->linkToDeath(new Recipient([&](const wp<IBinder>&) { told = 100; })));
    EXPECT_EQ(2u, DeathLinkCount(service)) << "the last one's recipient has gone";
    KillService(service);
    EXPECT_EQ(0u, DeathLinkCount(service));
    EXPECT_TRUE(WaitForDeathDelivery(5s));
    EXPECT_EQ(2, told) << "once per link";
}

/** As many as the platform gives a process that asks for no other number. */
constexpr size_t kBinderThreads = 15;

/** Keeps every binder thread in a notice: those that come later wait until this is released. */
class BusyBinderThreads {
  public:
    BusyBinderThreads() {
        std::vector<sp<IBinder>> services;
        for (size_t i = 0; i < kBinderThreads; ++i) {
            services.push_back(new Echo);
            mProxies.push_back(Publish(services.back(), String16(std::to_string(i).c_str())));
            mRecipients.push_back(new Recipient([this](const wp<IBinder>&) { hold(); }));
            EXPECT_EQ(OK, mProxies.back()->linkToDeath(mRecipients.back()));
        }
        KillProcess(services);
        std::unique_lock<std::mutex> lock(mMutex);
        EXPECT_TRUE(mChanged.wait_for(lock, 30s, [this] { return mHeld == kBinderThreads; }))
                << mHeld;
    }
    ~BusyBinderThreads() { release(); }

    /** Returns when what waited has been told, too. */
    void release() {
        {
            std::lock_guard<std::mutex> lock(mMutex);
            mReleased = true;
            mChanged.notify_all();
        }
        EXPECT_TRUE(WaitForDeathDelivery(30s));
    }

  private:
    void hold() {
        std::unique_lock<std::mutex> lock(mMutex);
        ++mHeld;
        mChanged.notify_all();
        mChanged.wait(lock, [this] { return mReleased; });
    }

    std::vector<sp<IBinder>> mProxies;
    std::vector<sp<Recipient>> mRecipients;
    std::mutex mMutex;
    std::condition_variable mChanged;
    size_t mHeld = 0;
    bool mReleased = false;
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

    BusyBinderThreads busy;
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

    busy.release();
    EXPECT_EQ(2, told);
    for (const auto& linked : {proxy, quietProxy}) {
        EXPECT_FALSE(linked->isBinderAlive()) << "told, although nobody was linked";
        EXPECT_EQ(DEAD_OBJECT, linked->linkToDeath(late));
        EXPECT_EQ(DEAD_OBJECT, linked->unlinkToDeath(late));
    }
}

TEST_F(HostBinderTest, ADeadServiceHandedOutAgain) {
    KeepDeadNames(true);
    const sp<Echo> service = new Echo, living = new Echo;
    sp<IBinder> proxy = Publish(service);
    Publish(living, String16("living"));
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
    KillService(service);
    EXPECT_TRUE(WaitForDeathDelivery(5s));
    EXPECT_EQ(proxy, lookUp());

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

    EXPECT_EQ(OK, Publish(new Echo)->pingBinder()) << "a new service takes the name over";
    const sp<Echo> other = new Echo;
    Publish(other, String16("other"));
    KillService(other);
    EXPECT_NE(nullptr, defaultServiceManager()->checkService(String16("other")));
    KeepDeadNames(false);
    EXPECT_EQ(nullptr, defaultServiceManager()->checkService(String16("other")));
    EXPECT_EQ(OK, defaultServiceManager()->checkService(String16("living"))->pingBinder());
}

TEST_F(HostBinderTest, AProcessDiesAsOne) {
    for (int round = 0; round < 200; ++round) {
        std::vector<sp<IBinder>> services, proxies;
        const auto name = [](size_t i) { return String16(std::to_string(i).c_str()); };
        for (size_t i = 0; i < 4; ++i) {
            services.push_back(new Echo);
            proxies.push_back(Publish(services[i], name(i)));
        }
        std::atomic<int> told = 0;
        const sp<Recipient> recipient = new Recipient([&](const wp<IBinder>&) {
            ++told;
            for (size_t i = services.size(); i-- > 0;) {
                EXPECT_EQ(DEAD_OBJECT, proxies[i]->pingBinder());
                EXPECT_EQ(nullptr, defaultServiceManager()->checkService(name(i)));
            }
            KillProcess(services);
        });
        for (const sp<IBinder>& proxy : proxies) EXPECT_EQ(OK, proxy->linkToDeath(recipient));
        KillProcess(services);
        ASSERT_TRUE(WaitForDeathDelivery(5s));
        ASSERT_EQ(4, told);
    }
}

TEST_F(HostBinderTest, UnlinkingOrDroppingRacesWithTheNotice) {
    for (int round = 0; round < 300; ++round) {
        const sp<Echo> service = new Echo;
        sp<IBinder> proxy = Publish(service), dropped;
        std::atomic<int> told = 0;
        const sp<Recipient> kept = new Recipient([&](const wp<IBinder>&) { ++told; });
        sp<Recipient> leaving = new Recipient([](const wp<IBinder>&) {});
        EXPECT_EQ(OK, proxy->linkToDeath(kept));
        EXPECT_EQ(OK, proxy->linkToDeath(leaving));
        auto killer = std::async(std::launch::async, [&] { KillService(service); });
        if (round % 3 == 0) {
            proxy = nullptr;
        } else if (round % 3 == 1) {
            leaving = nullptr;
        }
        if (proxy != nullptr) {
            const bool unlinked = proxy->unlinkToDeath(kept) == OK;
            killer.wait();
            ASSERT_TRUE(WaitForDeathDelivery(5s));
            ASSERT_EQ(unlinked ? 0 : 1, told);
        }
        killer.wait();
        ASSERT_TRUE(WaitForDeathDelivery(5s));
    }
}

TEST_F(HostBinderTest, LookingUpRacesWithDropping) {
    const sp<Echo> service = new Echo;
    Publish(service);
    const auto useIt = [] {
        const sp<Recipient> recipient = new Recipient([](const wp<IBinder>&) { FAIL(); });
        for (int round = 0; round < 3000; ++round) {
            const sp<IBinder> proxy = defaultServiceManager()->checkService(kName);
            ASSERT_EQ(OK, proxy->linkToDeath(recipient));
            ASSERT_EQ(OK, proxy->pingBinder());
            ASSERT_EQ(OK, proxy->unlinkToDeath(recipient)) << "somebody else's dropping took it";
        }
    };
    auto other = std::async(std::launch::async, useIt);
    useIt();
    other.get();
    EXPECT_EQ(0u, DeathLinkCount(service));
    KillService(service);
}

TEST_F(HostBinderTest, OnlyTheServiceOrAResetEndsAWait) {
    for (const bool served : {true, false}) {
        ResetServiceManager();
        DeclareService("pkg.IEcho/default");
        EXPECT_TRUE(defaultServiceManager()->isDeclared(kName));
        std::promise<pid_t> id;
        auto waiter = std::async(std::launch::async, [&] {
            id.set_value(gettid());
            return defaultServiceManager()->waitForService(kName);
        });
        WaitUntilAsleep(id.get_future());
        UndeclareService("pkg.IEcho/default");
        EXPECT_FALSE(defaultServiceManager()->isDeclared(kName));
        EXPECT_EQ(std::future_status::timeout, waiter.wait_for(20ms));
        if (served) {
            Publish(new Echo);
        } else {
            ResetServiceManager();
        }
        EXPECT_EQ(served, waiter.get() != nullptr);
    }
}

constexpr size_t kMost = 1024 * 1024 - 2 * 4096;

/** Answers with as many bytes as it is asked for. */
struct Bulk : Echo {
    status_t onTransact(uint32_t, const Parcel& data, Parcel* reply, uint32_t) override {
        ++calls;
        onCall();
        return reply->setDataSize(data.readInt32());
    }
};

status_t CallBulk(const sp<IBinder>& binder, size_t send, size_t receive, Parcel* reply) {
    Parcel data;
    data.writeInt32(static_cast<int32_t>(receive));
    data.setDataSize(send);
    return binder->transact(IBinder::FIRST_CALL_TRANSACTION, data, reply);
}

status_t CallBulk(const sp<IBinder>& binder, size_t send, size_t receive) {
    Parcel reply;
    return CallBulk(binder, send, receive, &reply);
}

TEST_F(HostBinderTest, WhatIsLargerThanABufferFails) {
    const sp<Bulk> service = new Bulk;
    const sp<IBinder> proxy = Publish(service);
    const struct {
        size_t send, receive;
        status_t expected;
        int calls;
    } cases[] = {
            {kMost, 4, OK, 1},
            {4, kMost, OK, 1},
            {kMost, kMost, OK, 1},
            {kMost + 4, 4, FAILED_TRANSACTION, 0},
            {4, kMost + 4, FAILED_TRANSACTION, 1},
    };
    for (const auto& [send, receive, expected, calls] : cases) {
        service->calls = 0;
        Parcel reply;
        EXPECT_EQ(expected, CallBulk(proxy, send, receive, &reply));
        EXPECT_EQ(expected == OK ? receive : 0, reply.dataSize());
        EXPECT_EQ(calls, service->calls) << send << " " << receive;
    }
    KillService(service);
    EXPECT_EQ(DEAD_OBJECT, CallBulk(proxy, kMost + 4, 4)) << "death comes first";
}

TEST_F(HostBinderTest, TransactionsUnderWayShareABuffer) {
    const sp<Bulk> service = new Bulk, other = new Bulk;
    const sp<IBinder> proxy = Publish(service), otherProxy = Publish(other);
    std::vector<status_t> nested;
    service->onCall = [&] {
        if (service->calls > 1) return;
        nested = {CallBulk(proxy, kMost / 2, 4), CallBulk(proxy, kMost / 4, 4),
                  CallBulk(otherProxy, kMost / 2, 4)};
    };
    const auto callAll = [&] {
        service->calls = 0;
        EXPECT_EQ(OK, CallBulk(proxy, kMost / 2 + 8, 4));
        return nested;
    };
    EXPECT_EQ((std::vector<status_t>{FAILED_TRANSACTION, OK, OK}), callAll());
    ShareProcess({service, other});
    EXPECT_EQ((std::vector<status_t>{FAILED_TRANSACTION, OK, FAILED_TRANSACTION}), callAll());
    EXPECT_EQ(OK, CallBulk(otherProxy, kMost, 4)) << "all given back";
    {
        Parcel kept;
        EXPECT_EQ(OK, CallBulk(proxy, 4, kMost / 2 + 8, &kept));
        EXPECT_EQ(FAILED_TRANSACTION, CallBulk(otherProxy, 4, kMost / 2));
    }
    EXPECT_EQ(OK, CallBulk(proxy, 4, kMost)) << "a reply takes its room until it is freed";
}

TEST_F(HostBinderTest, NothingIsLeaked) {
    bool ended = false;
    sp<Echo> service = new Echo;
    service->onEnd = [&] { ended = true; };
    sp<IBinder> proxy = Publish(service);
    const sp<Recipient> recipient = new Recipient([](const wp<IBinder>&) { FAIL(); });
    EXPECT_EQ(OK, proxy->linkToDeath(recipient));
    proxy = nullptr;
    EXPECT_EQ(0u, DeathLinkCount(service)) << "a proxy takes its links with it";

    proxy = Publish(service);
    service = nullptr;
    ResetServiceManager();
    EXPECT_EQ(OK, proxy->pingBinder()) << "the proxy keeps the service";
    EXPECT_EQ(OK, proxy->linkToDeath(recipient));
    proxy = nullptr;
    EXPECT_TRUE(ended);
}

TEST(HostParcelTest, TextsComeBackAndBadOnesAreRefused) {
    for (const std::string text : {"", "a", "abc", "\u00e9\u4e2d", "\U0001F600\U0001D11E!"}) {
        Parcel parcel;
        ASSERT_EQ(OK, parcel.writeUtf8AsUtf16(text));
        EXPECT_EQ(0u, parcel.dataSize() % 4);
        parcel.setDataPosition(0);
        std::string read = "?";
        EXPECT_EQ(OK, parcel.readUtf8FromUtf16(&read));
        EXPECT_EQ(text, read);
        EXPECT_EQ(0u, parcel.dataAvail());
    }
    EXPECT_EQ(BAD_VALUE, Parcel().writeUtf8AsUtf16("\xff\xff"));
}

TEST(HostParcelTest, TruncatedOrForgedDataIsRefused) {
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
        KillService(service);
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
    Kill();
    EXPECT_EQ(1, told);
    EXPECT_EQ(&b, last);
    EXPECT_EQ(STATUS_NAME_NOT_FOUND, AIBinder_unlinkToDeath(remote.get(), recipient, &b));
    EXPECT_EQ(STATUS_DEAD_OBJECT, AIBinder_linkToDeath(remote.get(), recipient, &b));
    AIBinder_DeathRecipient_delete(recipient);
    AIBinder_DeathRecipient_delete(nullptr);
    service = nullptr;
    remote = ndk::SpAIBinder();
    EXPECT_EQ(1, ended);
}

TEST_F(NdkBinderTest, ALinkBeforeTheObituaryGetsItsNotice) {
    AIBinder_DeathRecipient* const recipient = AIBinder_DeathRecipient_new([](void*) { ++told; });
    const ndk::SpAIBinder remote = Start();
    KillService(service);
    EXPECT_EQ(STATUS_OK, AIBinder_linkToDeath(remote.get(), recipient, &a));
    EXPECT_TRUE(WaitForDeathDelivery(5s));
    EXPECT_EQ(1, told);
    EXPECT_EQ(STATUS_DEAD_OBJECT, AIBinder_linkToDeath(remote.get(), recipient, &a));
    AIBinder_DeathRecipient_delete(recipient);
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
