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
using qxfactoryinterface::IFacIntStr;

template <typename... Args>
Answer Ask(const string& service, const string& method, Answer usual, const Args&... args) {
    return Device::Get().Ask(method,
                             "aidl " + service + "." + method + "(" + ShowAll(args...) + ")",
                             std::move(usual));
}

Status Outcome(const Answer& answer) {
    return Status::fromStatusT(ErrorOf(answer.fault));
}

Status Reply(const Answer& answer, int32_t* code) {
    *code = answer.code;
    return Outcome(answer);
}

Status Reply(const Answer& answer, string* text) {
    *text = answer.text;
    return Outcome(answer);
}

Status Reply(const Answer& answer, IFacIntStr* reply) {
    reply->resultCode = answer.code;
    reply->text = answer.text;
    return Outcome(answer);
}

// Texts that only the AIDL records have, and that this system sends empty.
string Reserved(const qxfactoryinterface::FmdCmdData& data) {
    return data.reserved1 + data.reserved2 + data.reserved3 + data.reserved4 + data.reserved5;
}

string Reserved(const std::vector<qxfactoryinterface::FmdEvent>& events) {
    string text;
    for (const auto& event : events) {
        text += event.reserved1 + event.reserved2 + event.reserved3 + event.reserved4 +
                event.reserved5 + event.reserved6;
    }
    return text;
}

class Factory : public qxfactoryinterface::BnQxFactoryInterface, Counted {
    template <typename... Args>
    static Answer Ask(const string& method, Answer usual, const Args&... args) {
        return device::Ask("factory", method, std::move(usual), args...);
    }
    static Store& Nv() { return Device::Get().nv; }
    static Store& Results() { return Device::Get().results; }
    static Store& Flags() { return Device::Get().flags; }

    static Status ReplyStored(const Answer& answer, Store& store, int32_t id, const string& text,
                              int32_t* code) {
        store.Write(id, text, answer);
        return Reply(answer, code);
    }

    Status getControlFlag(int32_t flagId, int32_t maxSize, IFacIntStr* reply) override {
        return Reply(Ask("getControlFlag", Flags().Read(flagId, static_cast<size_t>(maxSize)),
                         flagId, maxSize),
                     reply);
    }
    Status readNv(int32_t nvId, IFacIntStr* reply) override {
        return Reply(Ask("readNv", Nv().Read(nvId), nvId), reply);
    }
    Status i2cTest(int32_t maxSize, qxfactoryinterface::IFacIntStrStr* reply) override {
        const Answer answer = Ask("i2cTest", {0, "pass", "bus0:0x38 bus2:0x6b"}, maxSize);
        reply->resultCode = answer.code;
        reply->checkResult = answer.text;
        reply->detail = answer.detail;
        return Outcome(answer);
    }
    Status getVersionName(IFacIntStr* reply) override {
        return Reply(Ask("getVersionName", {0, "KV-MAIN-V3"}), reply);
    }
    Status getManufactureMode(int32_t* mode) override {
        return Reply(Ask("getManufactureMode", {1}), mode);
    }
    Status getTestResult(int32_t id, IFacIntStr* reply) override {
        return Reply(Ask("getTestResult", Results().Read(id), id), reply);
    }
    Status fpgaTest(const string& testScene, int32_t maxSize, IFacIntStr* reply) override {
        return Reply(Ask("fpgaTest", {0, "fpga ok"}, testScene, maxSize), reply);
    }
    Status setSocInfo(const string& testScene, const string& para, int32_t* ret) override {
        return Reply(Ask("setSocInfo", {}, testScene, para), ret);
    }
    Status sendBigData(const qxfactoryinterface::FmdMsg& message, int32_t* ret) override {
        return Reply(Ask("sendBigData", {}, MessageText(message) + Reserved(message.events)), ret);
    }
    Status sendBigDataOperation(const qxfactoryinterface::FmdCmdData& data, int32_t* ret) override {
        return Reply(Ask("sendBigDataOperation", {}, OperationText(data) + Reserved(data)), ret);
    }
    Status setCommand(const string& first, const string& second, int32_t capacity,
                      IFacIntStr* reply) override {
        return Reply(Ask("setCommand", {0, "done"}, first, second, capacity), reply);
    }
    Status setControlFlag(int32_t flagId, const string& flag, int32_t flagSize,
                          int32_t* ret) override {
        return ReplyStored(Ask("setControlFlag", {}, flagId, flag, flagSize), Flags(), flagId, flag,
                           ret);
    }
    Status writeNv(int32_t nvId, const string& value, int32_t* ret) override {
        return ReplyStored(Ask("writeNv", {}, nvId, value), Nv(), nvId, value, ret);
    }
    Status setLightSleep(int32_t action, int32_t* ret) override {
        return Reply(Ask("setLightSleep", {}, action), ret);
    }
    Status setTestResult(int32_t id, const string& value, int32_t* ret) override {
        return ReplyStored(Ask("setTestResult", {}, id, value), Results(), id, value, ret);
    }
    Status writeOemInfo(int32_t id, int32_t length, const std::vector<uint8_t>& data,
                        int32_t* ret) override {
        return Reply(Ask("writeOemInfo", {}, id, length, data), ret);
    }
    Status writeOemSubInfo(int32_t id, int32_t subId, int32_t length,
                           const std::vector<uint8_t>& data, int32_t* ret) override {
        return Reply(Ask("writeOemSubInfo", {}, id, subId, length, data), ret);
    }
    Status setWifiCommand(const string& testScene, const string& cmd, int32_t capacity,
                          qxfactoryinterface::IFacBoolStr* reply) override {
        const Answer answer = Ask("setWifiCommand", {0, "wlan0 up"}, testScene, cmd, capacity);
        reply->result = answer.code != 0;
        reply->text = answer.text;
        return Outcome(answer);
    }
    Status ddrMapperTest(const string& status, IFacIntStr* reply) override {
        return Reply(Ask("ddrMapperTest", {0, "no bad rows"}, status), reply);
    }
    Status ddrTest(const string& testScene, const string& para, const string& status,
                   IFacIntStr* reply) override {
        return Reply(Ask("ddrTest", {0, "ddr ok"}, testScene, para, status), reply);
    }
    Status emmcTest(const string& testScene, const string& para, const string& status,
                    IFacIntStr* reply) override {
        return Reply(Ask("emmcTest", {0, "emmc ok"}, testScene, para, status), reply);
    }
    Status storageJoblessTest(const string& testScene, const string& para,
                              IFacIntStr* reply) override {
        return Reply(Ask("storageJoblessTest", {0, "idle 0.8 W"}, testScene, para), reply);
    }
    Status storageTestJudge(const string& testScene, IFacIntStr* reply) override {
        return Reply(Ask("storageTestJudge", {0, "412 MB/s"}, testScene), reply);
    }
    Status setWatchdog(const string& cmd, IFacIntStr* reply) override {
        return Reply(Ask("setWatchdog", {0, "watchdog set"}, cmd), reply);
    }
    Status getSocInfo(const string& testScene, IFacIntStr* reply) override {
        return Reply(Ask("getSocInfo", {0, "soc-8c"}, testScene), reply);
    }
    Status setJtagtosd(const string& cmd, IFacIntStr* reply) override {
        return Reply(Ask("setJtagtosd", {0, "jtag set"}, cmd), reply);
    }
    Status socTest(const string& testScene, const string& para, IFacIntStr* reply) override {
        return Reply(Ask("socTest", {}, testScene, para), reply);
    }
    Status socVoltageOffsetById(int32_t socId, IFacIntStr* reply) override {
        return Reply(Ask("socVoltageOffsetById", {0, "-12mV"}, socId), reply);
    }
    Status lockBigCpu(int32_t lockOrRelease, int32_t* ret) override {
        return Reply(Ask("lockBigCpu", {}, lockOrRelease), ret);
    }
};

class Display : public qxdisplay::BnDisplay, Counted {
    using OutInfo = qxdisplay::DisplayOutInfo;
    static Status Reply(const Answer& answer, OutInfo* info) {
        info->resultCode = answer.code;
        info->text = answer.text;
        return Outcome(answer);
    }
    Status getDisplayFpsConfig(int32_t scene, OutInfo* info) override {
        return Reply(Ask("display", "getDisplayFpsConfig", {0, "60,90,120"}, scene), info);
    }
    Status setDisplayFps(int32_t freqIndex, int32_t* ret) override {
        return device::Reply(Ask("display", "setDisplayFps", {}, freqIndex), ret);
    }
    Status displayTest(int32_t type, int32_t scene, OutInfo* info) override {
        return Reply(Ask("display", "displayTest", {0, "shown"}, type, scene), info);
    }
    Status mft_set_end_time_of_ageing(int32_t* ret) override {
        return device::Reply(Ask("display", "mft_set_end_time_of_ageing", {}), ret);
    }
};

class DisplayFactory : public qxdisplay::displayfactory::BnDisplayFactory, Counted {
    Status displayGeneralTest(int32_t type, int32_t scene,
                              qxdisplay::displayfactory::DisplayFactoryOutInfo* info) override {
        const Answer answer = Ask("display_factory", "displayGeneralTest", {0, "ok"}, type, scene);
        info->resultCode = answer.code;
        info->text = answer.text;
        return Outcome(answer);
    }
};

class Touch : public tp::BnTouchscreen, Counted {
    Status zantor_tp_capacitance_test(int32_t id, tp::ITPIntString* reply) override {
        const Answer answer = Ask("touch", "zantor_tp_capacitance_test", {0, "1024 nodes ok"}, id);
        reply->result = answer.code;
        reply->text = answer.text;
        return Outcome(answer);
    }
};

class Sensors : public sensors::BnSensors, Counted {
    Status getSensorSelfTestResult(int32_t sensorId, int32_t* ret) override {
        return Reply(Ask("sensors", "getSensorSelfTestResult", {1}, sensorId), ret);
    }
    Status handleSensorPara(int32_t sensorId, int32_t mainCmd, int32_t subCmd, int32_t length,
                            sensors::ZtSensorString* result, std::vector<int32_t>* values,
                            int32_t* ret) override {
        const Answer answer = Ask("sensors", "handleSensorPara", {0, "0.01,0.02,9.81"}, sensorId,
                                  mainCmd, subCmd, length);
        result->text = answer.text;
        *values = {1, 2, 981};
        return Reply(answer, ret);
    }
    Status setSensorSelfTest(int32_t sensorId, int32_t command, int32_t* ret) override {
        return Reply(Ask("sensors", "setSensorSelfTest", {}, sensorId, command), ret);
    }
};

class Power : public power::BnQXPower, Counted {
    Status getPowerState(const string& packageName, const string& scene, power::PowerOutInfo* info,
                         int32_t* ret) override {
        const Answer answer = Ask("power", "getPowerState", {0, "charging"}, packageName, scene);
        info->state = answer.text;
        return Reply(answer, ret);
    }
    Status setPowerState(const string& packageName, const string& scene, const string& para,
                         int32_t* ret) override {
        return Reply(Ask("power", "setPowerState", {}, packageName, scene, para), ret);
    }
};

class Light : public light::BnLight, Counted {
    Status set_led_alwayson_status(int32_t type, int32_t status, int32_t* ret) override {
        return Reply(Ask("light", "set_led_alwayson_status", {}, type, status), ret);
    }
    Status setLightsBrightness(int32_t type, int32_t brightness, int32_t* ret) override {
        return Reply(Ask("light", "setLightsBrightness", {}, type, brightness), ret);
    }
};

class Camera : public camera::factory::BnCameraFactory, Counted {
    Status getOisAgingResult(int32_t* ret) override {
        return Reply(Ask("camera", "getOisAgingResult", {}), ret);
    }
    Status setFlashLight(int8_t type, int8_t value, int32_t* ret) override {
        return Reply(Ask("camera", "setFlashLight", {}, type, value), ret);
    }
};

class Radio : public radioenhance::BnRadioenhance, Counted {
    Status setModemLogState(int32_t state, int32_t* ret) override {
        return Reply(Ask("radio", "setModemLogState", {}, state), ret);
    }
};

class Chip : public ztchipsrvhertz::BnZtChipSrvHertz, Counted {
    Status getHertzTestResult(int32_t* ret) override {
        return Reply(Ask("chip", "getHertzTestResult", {}), ret);
    }
    Status startHertzTest(string* parameters) override {
        return Reply(Ask("chip", "startHertzTest", {0, "60-120"}), parameters);
    }
    Status stopHertzTest(int32_t* ret) override {
        return Reply(Ask("chip", "stopHertzTest", {}), ret);
    }
};

class Sim : public ztsimradio::BnZtsimradio, Counted {
    Status setSimPowerState(int32_t state, ztsimradio::ZtSimPowerInfo* info) override {
        return Reply(Ask("sim", "setSimPowerState", {}, state), &info->resultCode);
    }
};

class Satellite : public ztchipsrvsat::BnZtChipSrvSat, Counted {
    Status chipTtTestCp(const string& testScene, string* result) override {
        return Reply(Ask("satellite", "chipTtTestCp", {0, "cp ok"}, testScene), result);
    }
    Status chipTtTestPdet(const string& testScene, string* result) override {
        return Reply(Ask("satellite", "chipTtTestPdet", {0, "pdet ok"}, testScene), result);
    }
    Status chipTtTestPa(const string& testScene, string* result) override {
        return Reply(Ask("satellite", "chipTtTestPa", {0, "pa ok"}, testScene), result);
    }
    Status chipTtRssiTest(const string& testScene, string* result) override {
        return Reply(Ask("satellite", "chipTtRssiTest", {0, "-97 dBm"}, testScene), result);
    }
};

// The fingerprint service speaks the NDK binder.
namespace ndk_fingerprint = ::aidl::vendor::zantor::hardware::biometrics::fingerprint;
using SessionCallback = ::aidl::android::hardware::biometrics::fingerprint::ISessionCallback;
using ndk::ScopedAStatus;

ScopedAStatus NdkOutcome(const Answer& answer) {
    return ScopedAStatus(AStatus_fromStatus(ErrorOf(answer.fault)));
}

class Session : public ndk_fingerprint::BnSession, Counted {
    ScopedAStatus sendCmdToHal(int32_t cmd, int32_t* ret) override {
        const Answer answer = Ask("fingerprint", "sendCmdToHal", {}, cmd);
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
        const Answer answer = Ask("fingerprint", "createSession", {}, sensorId, userId,
                                  string(callback == nullptr ? "" : "callback"));
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

    void Declare() override { host::DeclareService(mName); }
    void Undeclare() override { host::UndeclareService(mName); }
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

template <typename Implementation>
class CppService : public AidlService {
  public:
    explicit CppService(const string& instance)
        : AidlService(string(android::String8(Implementation::descriptor).string()) + "/" +
                      instance) {}
    std::vector<sp<IBinder>> NewBinders() override { return {new Implementation}; }
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

}  // namespace

ServiceMap AidlServices() {
    ServiceMap services;
    services["factory"] = std::make_unique<CppService<Factory>>("qxfactoryinterface_hal");
    services["display"] = std::make_unique<CppService<Display>>("default");
    services["touch"] = std::make_unique<CppService<Touch>>("default");
    services["sensors"] = std::make_unique<CppService<Sensors>>("default");
    services["power"] = std::make_unique<CppService<Power>>("default");
    services["light"] = std::make_unique<CppService<Light>>("default");
    services["camera"] = std::make_unique<CppService<Camera>>("default");
    services["radio"] = std::make_unique<CppService<Radio>>("default");
    services["display_factory"] = std::make_unique<CppService<DisplayFactory>>("default");
    services["fingerprint"] = std::make_unique<FingerprintService>();
    services["chip"] = std::make_unique<CppService<Chip>>("ztchipsrv_hertz");
    services["sim"] = std::make_unique<CppService<Sim>>("slot1");
    services["satellite"] = std::make_unique<CppService<Satellite>>("ztchipsrv_sat");
    return services;
}

}  // namespace kalvorn::device
