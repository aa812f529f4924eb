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
using android::hidl::base::V1_0::IBase;
using std::string;
using namespace vendor::zantor::hardware;

/** What a process's buffer for its calls holds; a call's texts are about its size. */
constexpr size_t kTransactionLimit = 1024 * 1024 - 2 * 4096;

template <typename... Args>
Answer Ask(const IBase* self, const string& service, const string& method, Answer usual,
           const Args&... args) {
    const string call = "hidl " + service + "." + method + "(" + ShowAll(args...) + ")";
    if (host::IsHidlServiceDead(self)) return Fault::kDeadObject;
    if (call.size() > kTransactionLimit) return Fault::kTransport;
    Answer answer = Device::Get().Ask(method, call, std::move(usual));
    if (host::IsHidlServiceDead(self)) return Fault::kDeadObject;
    if (answer.text.size() + answer.detail.size() > kTransactionLimit) return Fault::kTransport;
    return answer;
}

Return<int32_t> Reply(const Answer& answer) {
    if (answer.fault != Fault::kNone) return Status::fromStatusT(ErrorOf(answer.fault));
    return answer.code;
}

template <typename Callback, typename... Values>
Return<void> Deliver(const Answer& answer, const Callback& callback, const Values&... values) {
    if (answer.fault != Fault::kNone) return Status::fromStatusT(ErrorOf(answer.fault));
    callback(values...);
    return Void();
}

/** The usual pair of code and text. */
template <typename Callback>
Return<void> Reply(const Answer& answer, const Callback& callback) {
    return Deliver(answer, callback, answer.code, hidl_string(answer.text));
}

namespace factory = qxfactoryinterface;

/** The factory service in either revision: all of 1.0 on the given base. */
template <typename Base>
class Factory : public Base, Counted {
  protected:
    template <typename... Args>
    Answer Ask(const string& method, Answer usual, const Args&... args) {
        return device::Ask(this, "factory", method, std::move(usual), args...);
    }
    static Return<int32_t> ReplyStored(const Answer& answer, Store& store, int32_t id,
                                       const string& text) {
        store.Write(id, text, answer);
        return Reply(answer);
    }

    Return<void> getVersionName(typename Base::getVersionName_cb cb) override {
        return Reply(Ask("getVersionName", {0, "KV-MAIN-V3"}), cb);
    }
    Return<void> readNv(int32_t nvId, typename Base::readNv_cb cb) override {
        return Reply(Ask("readNv", Device::Get().nv.Read(nvId), nvId), cb);
    }
    Return<int32_t> writeNv(int32_t nvId, const hidl_string& value) override {
        return ReplyStored(Ask("writeNv", {}, nvId, value), Device::Get().nv, nvId, value);
    }
    Return<void> getTestResult(int32_t id, typename Base::getTestResult_cb cb) override {
        return Reply(Ask("getTestResult", Device::Get().results.Read(id), id), cb);
    }
    Return<int32_t> setTestResult(int32_t id, const hidl_string& value) override {
        return ReplyStored(Ask("setTestResult", {}, id, value), Device::Get().results, id, value);
    }
    Return<void> setCommand(const hidl_string& first, const hidl_string& second, int32_t capacity,
                            typename Base::setCommand_cb cb) override {
        return Reply(Ask("setCommand", {0, "done"}, first, second, capacity), cb);
    }
    Return<void> i2cTest(int32_t maxSize, typename Base::i2cTest_cb cb) override {
        const Answer answer = Ask("i2cTest", {0, "pass", "bus0:0x38 bus2:0x6b"}, maxSize);
        return Deliver(answer, cb, answer.code, hidl_string(answer.text),
                       hidl_string(answer.detail));
    }
    Return<void> fpgaTest(const hidl_string& testScene, int32_t maxSize,
                          typename Base::fpgaTest_cb cb) override {
        return Reply(Ask("fpgaTest", {0, "fpga ok"}, testScene, maxSize), cb);
    }
    Return<void> setWatchdog(const hidl_string& cmd, typename Base::setWatchdog_cb cb) override {
        return Reply(Ask("setWatchdog", {0, "watchdog set"}, cmd), cb);
    }
    Return<void> setJtagtosd(const hidl_string& cmd, typename Base::setJtagtosd_cb cb) override {
        return Reply(Ask("setJtagtosd", {0, "jtag set"}, cmd), cb);
    }
    Return<void> socTest(const hidl_string& testScene, const hidl_string& para,
                         typename Base::socTest_cb cb) override {
        return Reply(Ask("socTest", {}, testScene, para), cb);
    }
    Return<void> getSocInfo(const hidl_string& testScene,
                            typename Base::getSocInfo_cb cb) override {
        return Reply(Ask("getSocInfo", {0, "soc-8c"}, testScene), cb);
    }
    Return<int32_t> setSocInfo(const hidl_string& testScene, const hidl_string& para) override {
        return Reply(Ask("setSocInfo", {}, testScene, para));
    }
    Return<int32_t> lockBigCpu(int32_t lockOrRelease) override {
        return Reply(Ask("lockBigCpu", {}, lockOrRelease));
    }
    Return<int32_t> setLightSleep(int32_t action) override {
        return Reply(Ask("setLightSleep", {}, action));
    }
    Return<void> ddrTest(const hidl_string& testScene, const hidl_string& para,
                         const hidl_string& status, typename Base::ddrTest_cb cb) override {
        return Reply(Ask("ddrTest", {0, "ddr ok"}, testScene, para, status), cb);
    }
    Return<void> ddrMapperTest(const hidl_string& status,
                               typename Base::ddrMapperTest_cb cb) override {
        return Reply(Ask("ddrMapperTest", {0, "no bad rows"}, status), cb);
    }
    Return<void> emmcTest(const hidl_string& testScene, const hidl_string& para,
                          const hidl_string& status, typename Base::emmcTest_cb cb) override {
        return Reply(Ask("emmcTest", {0, "emmc ok"}, testScene, para, status), cb);
    }
    Return<void> storageJoblessTest(const hidl_string& testScene, const hidl_string& para,
                                    typename Base::storageJoblessTest_cb cb) override {
        return Reply(Ask("storageJoblessTest", {0, "idle 0.8 W"}, testScene, para), cb);
    }
    Return<void> storageTestJudge(const hidl_string& testScene,
                                  typename Base::storageTestJudge_cb cb) override {
        return Reply(Ask("storageTestJudge", {0, "412 MB/s"}, testScene), cb);
    }
    Return<void> setWifiCommand(const hidl_string& testScene, const hidl_string& cmd,
                                int32_t capacity, typename Base::setWifiCommand_cb cb) override {
        const Answer answer = Ask("setWifiCommand", {0, "wlan0 up"}, testScene, cmd, capacity);
        return Deliver(answer, cb, answer.code != 0, hidl_string(answer.text));
    }
    Return<int32_t> sendBigDataOperation(const factory::V1_0::FmdCmdData& data) override {
        return Reply(Ask("sendBigDataOperation", {}, OperationText(data)));
    }
    Return<int32_t> sendBigData(const factory::V1_0::FmdMsg& message) override {
        return Reply(Ask("sendBigData", {}, MessageText(message)));
    }
    Return<void> socVoltageOffsetById(int32_t socId,
                                      typename Base::socVoltageOffsetById_cb cb) override {
        return Reply(Ask("socVoltageOffsetById", {0, "-12mV"}, socId), cb);
    }
};

using FactoryV1_0 = Factory<factory::V1_0::IQxFactoryInterface>;

class FactoryV1_1 : public Factory<factory::V1_1::IQxFactoryInterface> {
    Return<int32_t> writeOemSubInfo(int32_t id, int32_t subId, int32_t length,
                                    const hidl_string& data) override {
        return Reply(Ask("writeOemSubInfo", {}, id, subId, length, data));
    }
    Return<int32_t> writeOemInfo(int32_t id, int32_t length, const hidl_string& data) override {
        return Reply(Ask("writeOemInfo", {}, id, length, data));
    }
    Return<void> getControlFlag(int32_t flagId, int32_t maxSize, getControlFlag_cb cb) override {
        return Reply(Ask("getControlFlag",
                         Device::Get().flags.Read(flagId, static_cast<size_t>(maxSize)), flagId,
                         maxSize),
                     cb);
    }
    Return<int32_t> setControlFlag(int32_t flagId, const hidl_string& flag,
                                   int32_t flagSize) override {
        return ReplyStored(Ask("setControlFlag", {}, flagId, flag, flagSize), Device::Get().flags,
                           flagId, flag);
    }
    Return<int32_t> getManufactureMode() override { return Reply(Ask("getManufactureMode", {1})); }
};

template <typename Base>
class Display : public Base, Counted {
    Return<void> displayTest(int32_t type, int32_t scene,
                             typename Base::displayTest_cb cb) override {
        const Answer answer = Ask(this, "display", "displayTest", {0, "shown"}, type, scene);
        return Deliver(answer, cb, static_cast<qxdisplay::V1_0::DISPLAY_RET>(answer.code),
                       hidl_string(answer.text));
    }
    Return<int32_t> mft_set_end_time_of_ageing() override {
        return Reply(Ask(this, "display", "mft_set_end_time_of_ageing", {}));
    }
};

using DisplayV1_0 = Display<qxdisplay::V1_0::IDisplay>;

class DisplayV1_1 : public Display<qxdisplay::V1_1::IDisplay> {
    Return<int32_t> setDisplayFps(int32_t freqIndex) override {
        return Reply(Ask(this, "display", "setDisplayFps", {}, freqIndex));
    }
    Return<void> getDisplayFpsConfig(getDisplayFpsConfig_cb cb) override {
        return Reply(Ask(this, "display", "getDisplayFpsConfig", {0, "60,90,120"}), cb);
    }
};

class DisplayFactory : public qxdisplay::displayfactory::V1_0::IDisplayFactory, Counted {
    Return<void> displayGeneralTest(int32_t type, int32_t scene,
                                    displayGeneralTest_cb cb) override {
        const Answer answer =
                Ask(this, "display_factory", "displayGeneralTest", {0, "ok"}, type, scene);
        return Deliver(answer, cb,
                       static_cast<qxdisplay::displayfactory::V1_0::DISPLAY_FACT_RET>(answer.code),
                       hidl_string(answer.text));
    }
};

class Touch : public tp::V1_0::ITouchscreen, Counted {
    Return<void> zantor_tp_capacitance_test(int32_t id, zantor_tp_capacitance_test_cb cb) override {
        return Reply(Ask(this, "touch", "zantor_tp_capacitance_test", {0, "1024 nodes ok"}, id),
                     cb);
    }
};

class Sensors : public sensors::V1_2::ISensors, Counted {
    Return<int32_t> setSensorSelfTest(int32_t sensorId, int32_t command) override {
        return Reply(Ask(this, "sensors", "setSensorSelfTest", {}, sensorId, command));
    }
    Return<int32_t> getSensorSelfTestResult(int32_t sensorId) override {
        return Reply(Ask(this, "sensors", "getSensorSelfTestResult", {1}, sensorId));
    }
    Return<void> handleSensorPara(int32_t sensorId, int32_t mainCmd, int32_t subCmd, int32_t length,
                                  handleSensorPara_cb cb) override {
        const Answer answer = Ask(this, "sensors", "handleSensorPara", {0, "0.01,0.02,9.81"},
                                  sensorId, mainCmd, subCmd, length);
        return Deliver(answer, cb, answer.code, hidl_string(answer.text),
                       hidl_vec<int32_t>{1, 2, 981});
    }
};

class Power : public power::V1_0::IQXPower, Counted {
    Return<void> getPowerState(const hidl_string& scene, getPowerState_cb cb) override {
        return Reply(Ask(this, "power", "getPowerState", {0, "charging"}, scene), cb);
    }
    Return<int32_t> setPowerState(const hidl_string& scene, const hidl_string& para) override {
        return Reply(Ask(this, "power", "setPowerState", {}, scene, para));
    }
    Return<void> powerTest(const hidl_string& scene, const hidl_string& testTimes,
                           const hidl_string& maxLimit, const hidl_string& minLimit,
                           powerTest_cb cb) override {
        return Reply(
                Ask(this, "power", "powerTest", {0, "312"}, scene, testTimes, maxLimit, minLimit),
                cb);
    }
};

class Light : public light::V2_0::ILight, Counted {
    Return<int32_t> setLightsBrightness(int32_t type, int32_t brightness) override {
        return Reply(Ask(this, "light", "setLightsBrightness", {}, type, brightness));
    }
    Return<int32_t> set_led_alwayson_status(int32_t type, int32_t status) override {
        return Reply(Ask(this, "light", "set_led_alwayson_status", {}, type, status));
    }
};

class Camera : public camera::factory::V1_0::ICameraFactory, Counted {
    Return<int32_t> setFlashLight(uint8_t type, uint8_t value) override {
        return Reply(Ask(this, "camera", "setFlashLight", {}, type, value));
    }
    Return<int32_t> getOisAgingResult() override {
        return Reply(Ask(this, "camera", "getOisAgingResult", {}));
    }
};

class Radio : public radioenhance::V1_0::IRadioenhance, Counted {
    Return<int32_t> setModemLogState(uint32_t state) override {
        return Reply(Ask(this, "radio", "setModemLogState", {}, static_cast<int32_t>(state)));
    }
};

class Fingerprint : public biometrics::fingerprint::V2_2::IExtBiometricsFingerprint, Counted {
    Return<int32_t> sendCmdToHal(int32_t cmd) override {
        return Reply(Ask(this, "fingerprint", "sendCmdToHal", {}, cmd));
    }
};

class Chip : public ztchipsrv::V1_0::IZtChipSrvInterface, Counted {
    Return<void> startHertzTest(startHertzTest_cb cb) override {
        return Reply(Ask(this, "chip", "startHertzTest", {0, "60-120"}), cb);
    }
    Return<int32_t> stopHertzTest() override {
        return Reply(Ask(this, "chip", "stopHertzTest", {}));
    }
    Return<int32_t> getHertzTestResult() override {
        return Reply(Ask(this, "chip", "getHertzTestResult", {}));
    }
};

/** One HIDL service, declared under the interface that clients ask for. */
template <typename Interface, typename Implementation>
class HidlService : public Service {
  public:
    explicit HidlService(string instance) : mInstance(std::move(instance)) {}

    void Declare() override { host::DeclareHidlService(Interface::descriptor, mInstance); }
    void Undeclare() override { host::UndeclareHidlService(Interface::descriptor, mInstance); }
    void Start() override {
        const sp<Implementation> service = new Implementation;
        Run(std::make_shared<Objects>(Objects{{}, {service}}));
        // One that another thread has killed by now stays dead.
        if (service->registerAsService(mInstance) != android::OK &&
            !host::IsHidlServiceDead(service.get())) {
            throw std::runtime_error("cannot register " + string(Interface::descriptor));
        }
    }

  private:
    const string mInstance;
};

template <typename Interface, typename Implementation>
std::unique_ptr<Service> New(const char* instance) {
    return std::make_unique<HidlService<Interface, Implementation>>(instance);
}

}  // namespace

ServiceMap HidlServices() {
    using IFactory = factory::V1_0::IQxFactoryInterface;
    using IDisplay = qxdisplay::V1_0::IDisplay;
    ServiceMap services;
    services["factory"] = New<IFactory, FactoryV1_1>("qxfactoryinterface_hal");
    services["factory@1.0"] = New<IFactory, FactoryV1_0>("qxfactoryinterface_hal");
    services["display"] = New<IDisplay, DisplayV1_1>("default");
    services["display@1.0"] = New<IDisplay, DisplayV1_0>("default");
    services["touch"] = New<tp::V1_0::ITouchscreen, Touch>("default");
    services["sensors"] = New<sensors::V1_2::ISensors, Sensors>("default");
    services["power"] = New<power::V1_0::IQXPower, Power>("default");
    services["light"] = New<light::V2_0::ILight, Light>("default");
    services["camera"] = New<camera::factory::V1_0::ICameraFactory, Camera>("default");
    services["radio"] = New<radioenhance::V1_0::IRadioenhance, Radio>("default");
    services["display_factory"] =
            New<qxdisplay::displayfactory::V1_0::IDisplayFactory, DisplayFactory>("default");
    services["fingerprint"] =
            New<biometrics::fingerprint::V2_2::IExtBiometricsFingerprint, Fingerprint>("default");
    services["chip"] = New<ztchipsrv::V1_0::IZtChipSrvInterface, Chip>("ztchipsrv_hal");
    return services;
}

}  // namespace kalvorn::device
