#include <hidl/hidl_host.h>
#include <vendor/zantor/hardware/biometrics/fingerprint/2.2/IExtBiometricsFingerprint.h>
#include <vendor/zantor/hardware/camera/factory/1.0/ICameraFactory.h>
#include <vendor/zantor/hardware/light/2.0/ILight.h>
#include <vendor/zantor/hardware/power/1.0/IQXPower.h>
#include <vendor/zantor/hardware/qxdisplay/1.1/IDisplay.h>
#include <vendor/zantor/hardware/qxdisplay/displayfactory/1.0/IDisplayFactory.h>
#include <vendor/zantor/hardware/qxfactoryinterface/1.1/IQxFactoryInterface.h>
#include <vendor/zantor/hardware/radioenhance/1.0/IRadioenhance.h>
#include <vendor/zantor/hardware/sensors/1.2/ISensors.h>
#include <vendor/zantor/hardware/tp/1.0/ITouchscreen.h>
#include <vendor/zantor/hardware/ztchipsrv/1.0/IZtChipSrvInterface.h>

#include <stdexcept>
#include <tuple>

#include "platform/binder/transaction_buffer.h"
#include "simulator/big_data_text.h"
#include "simulator/device.h"
#include "simulator/objects.h"

namespace kalvorn::device {

namespace {

using android::sp;
using android::hardware::hidl_string;
using android::hardware::hidl_vec;
using android::hardware::Return;
using android::hardware::Status;
using android::hardware::Void;
using std::string;
using namespace vendor::zantor::hardware;

using device::Show;

string Show(const qxfactoryinterface::V1_0::FmdCmdData& data) {
    return Show(OperationText(data));
}

string Show(const qxfactoryinterface::V1_0::FmdMsg& message) {
    return Show(MessageText(message));
}

Return<int32_t> Reply(const Answer& answer) {
    if (answer.fault != Fault::kNone) return Status::fromStatusT(ErrorOf(answer.fault));
    return answer.code;
}

/** What a result of this type is of an answer; `texts` counts the texts that came before it. */
template <typename Result>
Result ResultOf(const Answer& answer, int* texts) {
    if constexpr (std::is_same_v<Result, hidl_string>) {
        return (*texts)++ == 0 ? answer.text : answer.detail;
    } else if constexpr (std::is_same_v<Result, hidl_vec<int32_t>>) {
        return {1, 2, 981};
    } else if constexpr (std::is_same_v<Result, bool>) {
        return answer.code != 0;
    } else {
        return static_cast<Result>(answer.code);
    }
}

template <typename... Results>
Return<void> Reply(const Answer& answer, const std::function<void(Results...)>& callback) {
    if (answer.fault != Fault::kNone) return Status::fromStatusT(ErrorOf(answer.fault));
    int texts = 0;
    std::apply(callback, std::tuple<std::decay_t<Results>...>{
                                 ResultOf<std::decay_t<Results>>(answer, &texts)...});
    return Void();
}

template <typename Base>
class Answering : public Base, Counted {
  public:
    explicit Answering(string service) : mService(std::move(service)) {}

  protected:
    Answer Ask(const string& method, const std::vector<string>& arguments) const {
        size_t size = 0;  // a call's texts are about its size
        for (const string& argument : arguments) size += argument.size();
        if (host::IsHidlServiceDead(this)) return Fault::kDeadObject;
        if (size > host::TransactionBuffer::kSize) return Fault::kTransport;
        Answer answer = Device::Get().Ask(Backend::kHidl, mService, method, arguments);
        if (host::IsHidlServiceDead(this)) return Fault::kDeadObject;
        if (answer.text.size() + answer.detail.size() > host::TransactionBuffer::kSize)
            return Fault::kTransport;
        return answer;
    }

  private:
    const string mService;
};

/** An interface's service; generate.sh writes one for each. */
template <typename Interface>
class Simulated;
#include "hidl_services.inc"

/** One HIDL service, declared under the interface that clients ask for. */
template <typename Interface, typename Revision>
class HidlService : public Service {
  public:
    HidlService(string service, string instance)
        : mService(std::move(service)), mInstance(std::move(instance)) {}

    void Declare(bool declared) override {
        host::DeclareHidlService(Interface::descriptor, mInstance, declared);
    }
    void Start() override {
        const sp<Revision> service = new Simulated<Revision>(mService);
        Run(std::make_shared<Objects>(Objects{{}, {service}}));
        // One that another thread has killed by now stays dead.
        if (service->registerAsService(mInstance) != android::OK &&
            !host::IsHidlServiceDead(service.get())) {
            throw std::runtime_error("cannot register " + string(Interface::descriptor));
        }
    }

  private:
    const string mService;
    const string mInstance;
};

/** A revision as a service of its own is named after an @, which no call shows. */
template <typename Interface, typename Revision = Interface>
void Add(NamedServices* services, const string& name, const char* instance) {
    services->emplace_back(name, std::make_unique<HidlService<Interface, Revision>>(
                                         name.substr(0, name.find('@')), instance));
}

}  // namespace

NamedServices HidlServices() {
    namespace factory = qxfactoryinterface;
    using IFactory = factory::V1_0::IQxFactoryInterface;
    using IDisplay = qxdisplay::V1_0::IDisplay;
    using biometrics::fingerprint::V2_2::IExtBiometricsFingerprint;
    NamedServices services;
    Add<IFactory, factory::V1_1::IQxFactoryInterface>(&services, "factory",
                                                      "qxfactoryinterface_hal");
    Add<IFactory>(&services, "factory@1.0", "qxfactoryinterface_hal");
    Add<IDisplay, qxdisplay::V1_1::IDisplay>(&services, "display", "default");
    Add<IDisplay>(&services, "display@1.0", "default");
    Add<tp::V1_0::ITouchscreen>(&services, "touch", "default");
    Add<sensors::V1_2::ISensors>(&services, "sensors", "default");
    Add<power::V1_0::IQXPower>(&services, "power", "default");
    Add<light::V2_0::ILight>(&services, "light", "default");
    Add<camera::factory::V1_0::ICameraFactory>(&services, "camera", "default");
    Add<radioenhance::V1_0::IRadioenhance>(&services, "radio", "default");
    Add<qxdisplay::displayfactory::V1_0::IDisplayFactory>(&services, "display_factory", "default");
    Add<IExtBiometricsFingerprint>(&services, "fingerprint", "default");
    Add<ztchipsrv::V1_0::IZtChipSrvInterface>(&services, "chip", "ztchipsrv_hal");
    return services;
}

}  // namespace kalvorn::device
