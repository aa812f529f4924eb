/** The host's binder: what clients, services and death recipients may rely on. */
#include <android/binder_auto_utils.h>
#include <android/binder_libbinder.h>
#include <android/binder_manager.h>
#include <binder/Binder.h>
#include <binder/IServiceManager.h>
#include <binder/Parcel.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <thread>

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
    std::promise<void> told;
    std::atomic<int> waited = 0;
    const auto tester = std::this_thread::get_id();
    sp<Recipient> waiting = new Recipient([&](const wp<IBinder>& who) {
        EXPECT_TRUE(who == proxy1);
        EXPECT_NE(tester, std::this_thread::get_id());
        EXPECT_EQ(DEAD_OBJECT, proxy1->unlinkToDeath(waiting));
        EXPECT_NE(nullptr, defaultServiceManager()->waitForService(kName));
        ++waited;
    });
    const sp<Recipient> prompt = new Recipient([&](const wp<IBinder>&) { told.set_value(); });
    EXPECT_EQ(OK, proxy1->linkToDeath(waiting));
    EXPECT_EQ(OK, proxy2->linkToDeath(prompt));
    for (int kill = 0; kill < 2; ++kill) KillService(first);
    EXPECT_FALSE(WaitForDeathDelivery(20ms));
    KillService(second);
    EXPECT_EQ(std::future_status::ready, told.get_future().wait_for(5s));
    EXPECT_EQ(0, waited);
    Publish(new Echo);
    EXPECT_TRUE(WaitForDeathDelivery(5s));
    EXPECT_EQ(1, waited);
}

TEST_F(HostBinderTest, LinksAreMatchedAndCounted) {
    const sp<Echo> service = new Echo;
    sp<IBinder> proxy = Publish(service);
    int told = 0, cookie = 0;
    sp<Recipient> recipient = new Recipient([&](const wp<IBinder>&) { ++told; });
    EXPECT_EQ(INVALID_OPERATION, service->linkToDeath(recipient));
    RefuseDeathLinks(service, true);
    EXPECT_EQ(INVALID_OPERATION, proxy->linkToDeath(recipient));
    RefuseDeathLinks(service, false);
    EXPECT_EQ(OK, proxy->linkToDeath(recipient));
    EXPECT_EQ(OK, proxy->linkToDeath(recipient, &cookie));
    EXPECT_EQ(OK, proxy->linkToDeath(recipient, &cookie));
    EXPECT_EQ(NAME_NOT_FOUND, proxy->unlinkToDeath(recipient, &told));
    EXPECT_EQ(NAME_NOT_FOUND, proxy->unlinkToDeath(recipient, &cookie, 1));
    EXPECT_EQ(OK, proxy->unlinkToDeath(recipient, &cookie));
    EXPECT_EQ(2u, DeathLinkCount(service));
    EXPECT_EQ(OK, proxy->linkToDeath(new Recipient([&](const wp<IBinder>&) { told = 100; })));
    KillService(service);
    EXPECT_TRUE(WaitForDeathDelivery(5s));
    EXPECT_EQ(2, told) << "once per link, and not to the recipient that has gone";
    EXPECT_EQ(DEAD_OBJECT, proxy->linkToDeath(recipient));
}

TEST_F(HostBinderTest, ALateServiceOrAWithdrawnNameReleasesTheWaiter) {
    const std::pair<std::function<void()>, bool> cases[] = {
            {[] { Publish(new Echo); }, true},
            {[] { UndeclareService("pkg.IEcho/default"); }, false},
            {[] { ResetServiceManager(); }, false},
    };
    for (const auto& [release, served] : cases) {
        ResetServiceManager();
        DeclareService("pkg.IEcho/default");
        EXPECT_TRUE(defaultServiceManager()->isDeclared(kName));
        auto waiter = std::async(std::launch::async,
                                 [] { return defaultServiceManager()->waitForService(kName); });
        EXPECT_EQ(std::future_status::timeout, waiter.wait_for(30ms));
        release();
        EXPECT_EQ(served, waiter.get() != nullptr);
        EXPECT_EQ(served, defaultServiceManager()->isDeclared(kName));
    }
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

TEST_F(HostBinderTest, NdkLinksAreKnownByTheirCookie) {
    static const AIBinder_Class* const clazz = AIBinder_Class_define(
            "pkg.INdk", [](void* args) { return args; },
            [](void* userData) { *static_cast<bool*>(userData) = true; }, nullptr);
    static std::atomic<void*> told;
    AIBinder_DeathRecipient* const recipient =
            AIBinder_DeathRecipient_new([](void* cookie) { told = cookie; });
    bool destroyed = false;
    int cookie, other;
    ndk::SpAIBinder local(AIBinder_new(clazz, &destroyed));
    EXPECT_EQ(STATUS_INVALID_OPERATION, AIBinder_linkToDeath(local.get(), recipient, &cookie));
    ASSERT_EQ(EX_NONE, AServiceManager_addService(local.get(), "pkg.INdk/default"));
    ndk::SpAIBinder remote(AServiceManager_waitForService("pkg.INdk/default"));
    EXPECT_EQ(remote, ndk::SpAIBinder(AServiceManager_waitForService("pkg.INdk/default")));
    sp<IBinder> service = AIBinder_toPlatformBinder(local.get());
    EXPECT_EQ(STATUS_OK, AIBinder_linkToDeath(remote.get(), recipient, &cookie));
    EXPECT_EQ(STATUS_NAME_NOT_FOUND, AIBinder_unlinkToDeath(remote.get(), recipient, &other));
    EXPECT_EQ(1u, DeathLinkCount(service));
    KillService(service);
    EXPECT_TRUE(WaitForDeathDelivery(5s));
    EXPECT_EQ(&cookie, told);
    EXPECT_EQ(STATUS_DEAD_OBJECT, AIBinder_unlinkToDeath(remote.get(), recipient, &cookie));
    AIBinder_DeathRecipient_delete(recipient);
    AIBinder_DeathRecipient_delete(nullptr);
    service = nullptr;
    local = remote = ndk::SpAIBinder();
    EXPECT_TRUE(destroyed);
}

}  // namespace
