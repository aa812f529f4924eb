#include <binder/IInterface.h>
#include <utils/Errors.h>

#include <memory>

#include "aidl/services.h"

using namespace kalvorn;

namespace native_aidl {

using android::IBinder;
using android::IInterface;

namespace {

void Release(sp<IInterface>* global) {
    const sp<IInterface> service = held::Take(global);
    if (service == nullptr) return;
    Unlink(IInterface::asBinder(service));
    g_retired.Add(service, global);
}

// intended: the session is not closed and its callback not touched, and without a session the
// interface is kept too, with the effect that a later connector does not ask for one again.
void ReleaseFingerprint() {
    const std::shared_ptr<ISession> session = held::Take(&g_aidlFingerprintSession);
    if (session == nullptr) return;
    UnlinkSession(session);
    held::Take(&g_aidlFingerprint);
}

void ReleaseAll() {
#define SERVICE(connector, query, Interface, global, ...) Release(held::As<IInterface>(&global));
#define FINGERPRINT(connector, query) ReleaseFingerprint();
#include "aidl/services.inc"
}

void Exit() {
    KV_LOGI("ExitKvManager by aidl");
    ReleaseAll();
}

/**
 * Whether no link goes with the service: the last reference to a proxy clears its links, also one
 * that was made meanwhile. Of a proxy that is held again it is not the last, and one that has not
 * answered a ping is linked by nobody.
 */
bool MayGo(const sp<IInterface>& service, const sp<IInterface>& global) {
    const sp<IInterface> held = held::Copy(global);
    if (held == nullptr) return false;
    const sp<IBinder> binder = IInterface::asBinder(service);
    return IInterface::asBinder(held) == binder || binder->pingBinder() == android::DEAD_OBJECT;
}

// Whichever service died, all are released and connected afresh. The restart waits here, on the
// binder thread of the notification, until every declared service is back. Of services that die
// together each notice does all of this, on a thread of its own and beside the others.
void OnServiceDied() {
    KV_LOGW("serviceDied, remote hal service died");
    Exit();
    LetGoOfUseless();
    RestartAidlService();
    g_retired.LetGo(MayGo);
}

/**
 * At exit binder threads may still be connecting. What they fill later stays, and they link no
 * session any more.
 */
const struct ReleaseAtExit {
    ~ReleaseAtExit() {
        ReleaseAll();
        held::Take(&g_aidlFingerprint);
        g_retired.LetGoOfAll();
        AIBinder_DeathRecipient* const recipient = g_deathRecipient.release();
        if (!held::IsBeingRead()) AIBinder_DeathRecipient_delete(recipient);
    }
} g_releaseAtExit;

}  // namespace

void Unlink(const sp<IBinder>& binder) {
    // Fails harmlessly for the service that has just died.
    binder->unlinkToDeath(g_deathNotifier, nullptr, 0, nullptr);
}

void LetGoOfUseless() {
    g_retired.LetGo([](const sp<IInterface>& service, const sp<IInterface>& /* global */) {
        return !IInterface::asBinder(service)->isBinderAlive();
    });
}

bool LinkSession(const std::shared_ptr<ISession>& session) {
    const held::Reading reading;
    return AIBinder_linkToDeath(session->asBinder().get(), g_deathRecipient.get(), session.get()) ==
           STATUS_OK;
}

void UnlinkSession(const std::shared_ptr<ISession>& session) {
    const held::Reading reading;
    AIBinder_unlinkToDeath(session->asBinder().get(), g_deathRecipient.get(), session.get());
}

DeathNotifier::~DeathNotifier() = default;

void DeathNotifier::binderDied(const android::wp<IBinder>& /* who */) {
    OnServiceDied();
}

void ServiceDied(void* /* cookie */) {
    OnServiceDied();
}

int RestartAidlService() {
    KV_LOGI("RestartAidlService");
    int connected = 0;
#define SERVICE(connector, ...) connected = connector();
#define FINGERPRINT(connector, query) connector();
#include "aidl/services.inc"
    return connected;
}

void ExitKvManager() {
    Exit();
    g_retired.LetGoOfAll();
}

}  // namespace native_aidl
