#include <aidl/vendor/zantor/hardware/biometrics/fingerprint/BnFingerprint.h>
#include <aidl/vendor/zantor/hardware/biometrics/fingerprint/BnSession.h>
#include <android/binder_libbinder.h>
#include <binder/IServiceManager.h>
#include <binder_host.h>
#include <utils/String8.h>
#include <vendor/zantor/hardware/camera/factory/BnCameraFactory.h>
#include <vendor/zantor/hardware/light/BnLight.h>
#include <vendor/zantor/hardware/power/BnQXPower.h>
#include <vendor/zantor/hardware/qxdisplay/BnDisplay.h>
#include <vendor/zantor/hardware/qxdisplay/displayfactory/BnDisplayFactory.h>
#include <vendor/zantor/hardware/qxfactoryinterface/BnQxFactoryInterface.h>
#include <vendor/zantor/hardware/radioenhance/BnRadioenhance.h>
#include <vendor/zantor/hardware/sensors/BnSensors.h>
#include <vendor/zantor/hardware/tp/BnTouchscreen.h>
#include <vendor/zantor/hardware/ztchipsrvhertz/BnZtChipSrvHertz.h>
#include <vendor/zantor/hardware/ztchipsrvsat/BnZtChipSrvSat.h>
#include <vendor/zantor/hardware/ztsimradio/BnZtsimradio.h>

#include "simulator/big_data_text.h"
#include "simulator/device.h"
#include "simulator/objects.h"

namespace kalvorn::device {

namespace {

using android::IBinder;
using android::sp;
using android::binder::Status;
using std::string;
using namespace vendor::zantor::hardware;

using device::Show;

// Big data, with the texts that only the AIDL records have and that this system sends empty.
string Show(const qxfactoryinterface::FmdCmdData& data) {
    return Show(OperationText(data) + data.reserved1 + data.reserved2 + data.reserved3 +
                data.reserved4 + data.reserved5);
}

string Show(const qxfactoryinterface::FmdMsg& message) {
    string text = MessageText(message);
    for (const auto& event : message.events) {
        text += event.reserved1 + event.reserved2 + event.reserved3 + event.reserved4 +
                event.reserved5 + event.reserved6;
    }
    return Show(text);
}

// What a reply takes of an answer: most have these two.
template <typename CodeAndText>
void Put(const Answer& answer, CodeAndText* reply) {
    reply->resultCode = answer.code;
    reply->text = answer.text;
}

void Put(const Answer& answer, int32_t* code) {
    *code = answer.code;
}

void Put(const Answer& answer, string* text) {
    *text = answer.text;
}

void Put(const Answer& answer, qxfactoryinterface::IFacIntStrStr* reply) {
    reply->resultCode = answer.code;
    reply->checkResult = answer.text;
    reply->detail = answer.detail;
}

void Put(const Answer& answer, qxfactoryinterface::IFacBoolStr* reply) {
    reply->result = answer.code != 0;
    reply->text = answer.text;
}

void Put(const Answer& answer, tp::ITPIntString* reply) {
    reply->result = answer.code;
    reply->text = answer.text;
}

void Put(const Answer& answer, sensors::ZtSensorString* reply) {
    reply->text = answer.text;
}

void Put(const Answer& /* answer */, std::vector<int32_t>* values) {
    *values = {1, 2, 981};
}

void Put(const Answer& answer, power::PowerOutInfo* reply) {
    reply->state = answer.text;
}

void Put(const Answer& answer, ztsimradio::ZtSimPowerInfo* reply) {
    reply->resultCode = answer.code;
}

template <typename... Replies>
Status Reply(const Answer& answer, Replies*... replies) {
    (Put(answer, replies), ...);
    return Status::fromStatusT(ErrorOf(answer.fault));
}

template <typename Base>
class Answering : public Base, Counted {
  public:
    explicit Answering(string service) : mService(std::move(service)) {}

  protected:
    Answer Ask(const string& method, const std::vector<string>& arguments) const {
        return Device::Get().Ask(Backend::kAidl, mService, method, arguments);
    }

  private:
    const string mService;
};

/** An interface's service; generate.sh writes one for each. */
template <typename Interface>
class Simulated;
#include "aidl_services.inc"

// The fingerprint service speaks the NDK binder.
namespace ndk_fingerprint = ::aidl::vendor::zantor::hardware::biometrics::fingerprint;
using SessionCallback = ::aidl::android::hardware::biometrics::fingerprint::ISessionCallback;
using ndk::ScopedAStatus;

ScopedAStatus NdkOutcome(const Answer& answer) {
    return ScopedAStatus(AStatus_fromStatus(ErrorOf(answer.fault)));
}

Answer AskFingerprint(const string& method, const std::vector<string>& arguments) {
    return Device::Get().Ask(Backend::kAidl, "fingerprint", method, arguments);
}

class Session : public ndk_fingerprint::BnSession, Counted {
    ScopedAStatus sendCmdToHal(int32_t cmd, int32_t* ret) override {
        const Answer answer = AskFingerprint("sendCmdToHal", {Show(cmd)});
        *ret = answer.code;
        return NdkOutcome(answer);
    }
};

class Fingerprint : public ndk_fingerprint::BnFingerprint, Counted {
  public:
    const std::shared_ptr<Session> session = ndk::SharedRefBase::make<Session>();

  private:
    ScopedAStatus createSession(int32_t sensorId, int32_t userId,
                                const std::shared_ptr<SessionCallback>& callback,
                                std::shared_ptr<ndk_fingerprint::ISession>* opened) override {
        const Answer answer = AskFingerprint(
                "createSession",
                {Show(sensorId), Show(userId), Show(callback == nullptr ? "" : "callback")});
        if (answer.code == 0) *opened = session;  // any other code refuses the session
        return NdkOutcome(answer);
    }
};

sp<IBinder> PlatformBinder(ndk::ICInterface& interface) {
    return AIBinder_toPlatformBinder(interface.asBinder().get());
}

/** One AIDL service; its binders die together, as those of one process do. */
class AidlService : public Service {
  public:
    explicit AidlService(string name) : mName(std::move(name)) {}

    void Declare(bool declared) override { host::DeclareService(mName, declared); }
    void Start() override {
        const std::vector<sp<IBinder>> binders = NewBinders();
        host::ShareProcess(binders);
        Run(std::make_shared<Objects>(Objects{binders, {}}));
        android::defaultServiceManager()->addService(android::String16(mName.c_str()), binders[0]);
    }

  protected:
    /** The binder to register, then others of the same process. */
    virtual std::vector<sp<IBinder>> NewBinders() = 0;

  private:
    const string mName;
};

template <typename Interface>
class CppService : public AidlService {
  public:
    CppService(string service, const string& instance)
        : AidlService(string(android::String8(Interface::descriptor).string()) + "/" + instance),
          mService(std::move(service)) {}
    std::vector<sp<IBinder>> NewBinders() override { return {new Simulated<Interface>(mService)}; }

  private:
    const string mService;
};

class FingerprintService : public AidlService {
  public:
    FingerprintService()
        : AidlService(string(ndk_fingerprint::IFingerprint::descriptor) + "/default") {}
    std::vector<sp<IBinder>> NewBinders() override {
        const auto fingerprint = ndk::SharedRefBase::make<Fingerprint>();
        return {PlatformBinder(*fingerprint), PlatformBinder(*fingerprint->session)};
    }
};

template <typename Interface>
void Add(NamedServices* services, const char* service, const char* instance) {
    services->emplace_back(service, std::make_unique<CppService<Interface>>(service, instance));
}

}  // namespace

NamedServices AidlServices() {
    NamedServices services;
    Add<qxfactoryinterface::IQxFactoryInterface>(&services, "factory", "qxfactoryinterface_hal");
    Add<qxdisplay::IDisplay>(&services, "display", "default");
    Add<tp::ITouchscreen>(&services, "touch", "default");
    Add<sensors::ISensors>(&services, "sensors", "default");
    Add<power::IQXPower>(&services, "power", "default");
    Add<light::ILight>(&services, "light", "default");
    Add<camera::factory::ICameraFactory>(&services, "camera", "default");
    Add<radioenhance::IRadioenhance>(&services, "radio", "default");
    Add<qxdisplay::displayfactory::IDisplayFactory>(&services, "display_factory", "default");
    services.emplace_back("fingerprint", std::make_unique<FingerprintService>());
    Add<ztchipsrvhertz::IZtChipSrvHertz>(&services, "chip", "ztchipsrv_hertz");
    Add<ztsimradio::IZtsimradio>(&services, "sim", "slot1");
    Add<ztchipsrvsat::IZtChipSrvSat>(&services, "satellite", "ztchipsrv_sat");
    return services;
}

}  // namespace kalvorn::device
