#include <string.h>

#include "arguments.h"
#include "bare_calls.h"
#include "common/service_constants.h"
#include "hidl/services.h"

namespace bench {

namespace {

using namespace vendor::zantor::hardware;
using android::sp;
using android::hardware::hidl_death_recipient;
using android::hardware::hidl_string;
using android::hardware::hidl_vec;
using kalvorn::kItemLength;
using kalvorn::kPanelTest;
using native_hidl::IBase;

struct Proxies {
    sp<native_hidl::IQxFactoryInterface> factory;
    sp<native_hidl::IQxFactoryInterfaceV1_1> factory1_1;
    sp<native_hidl::IDisplay> display;
    sp<native_hidl::IDisplayV1_1> display1_1;
    sp<native_hidl::ITouchscreen> touch;
    sp<native_hidl::ISensors> sensors;
    sp<native_hidl::IQXPower> power;
    sp<native_hidl::ILight> light;
    sp<native_hidl::ICameraFactory> camera;
    sp<native_hidl::IRadioenhance> radio;
    sp<native_hidl::IDisplayFactory> displayFactory;
    sp<native_hidl::IExtBiometricsFingerprint> fingerprint;
    sp<native_hidl::IZtChipSrvInterface> chip;
} g;

const hidl_string t = kText;  // the text that most methods are given
const hidl_string kHex = "4b5601029f00ff104b5601029f00ff10";
const hidl_string kCycle = "0101";

qxfactoryinterface::V1_0::FmdCmdData Operation() {
    qxfactoryinterface::V1_0::FmdCmdData data{};
    data.station = data.bsn = t;
    return data;
}

qxfactoryinterface::V1_0::FmdMsg Value() {
    qxfactoryinterface::V1_0::FmdMsg message{};
    message.numEvents = 1;
    message.events.resize(1);
    auto& e = message.events[0];
    for (hidl_string* text :
         {&e.result, &e.station, &e.bsn, &e.time, &e.deviceName, &e.testName, &e.value,
          &e.minThreshold, &e.maxThreshold, &e.firmware, &e.description}) {
        *text = t;
    }
    return message;
}

const qxfactoryinterface::V1_0::FmdCmdData kOperation = Operation();
const qxfactoryinterface::V1_0::FmdMsg kValue = Value();

/** Takes what is answered, as the operations do. */
struct Taken {
    int32_t code;
    hidl_string text, detail;

    template <typename Code>
    void operator()(Code newCode, const hidl_string& newText) {
        code = static_cast<int32_t>(newCode);
        text = newText;
    }
    void operator()(int32_t newCode, const hidl_string& newText, const hidl_string& newDetail) {
        (*this)(newCode, newText);
        detail = newDetail;
    }
    void operator()(int32_t newCode, const hidl_string& newText, const hidl_vec<int32_t>&) {
        (*this)(newCode, newText);
    }
};

int32_t ret;

// One call of a proxy, whose answer comes into a callback, or is returned.
#define TAKE(proxy, ...)                   \
    [] {                                   \
        Taken taken{};                     \
        const auto into = std::ref(taken); \
        (void)g.proxy->__VA_ARGS__.isOk(); \
    }
#define GET(proxy, ...) [] { ret = g.proxy->__VA_ARGS__; }

// clang-format off
const BareCalls kCalls{
    {"nativeGetTestResult", TAKE(factory, getTestResult(1, into))},
    {"nativeSetTestResult", GET(factory, setTestResult(1, t))},
    {"nativeSocTest", TAKE(factory, socTest(t, t, into))},
    {"nativeDdrTest", TAKE(factory, ddrTest(t, t, t, into))},
    {"nativeEmmcTest", TAKE(factory, emmcTest(t, t, t, into))},
    {"nativeStorageJoblessTest", TAKE(factory, storageJoblessTest(t, t, into))},
    {"nativeStorageTestJudge", TAKE(factory, storageTestJudge(t, into))},
    {"nativeDdrMapperTest", TAKE(factory, ddrMapperTest(t, into))},
    {"nativeGetSocInfo", TAKE(factory, getSocInfo(t, into))},
    {"nativeSetSocInfo", GET(factory, setSocInfo(t, t))},
    {"nativeFpgaTest", TAKE(factory, fpgaTest(t, 1024, into))},
    {"nativeI2cTest", TAKE(factory, i2cTest(1024, into))},
    {"nativeGetBoardName", TAKE(factory, getVersionName(into))},
    {"nativeOemWatchdogSetFunc", TAKE(factory, setWatchdog(t, into))},
    {"nativeOemJtagtosdSetFunc", TAKE(factory, setJtagtosd(t, into))},
    {"nativeReadNvValue", TAKE(factory, readNv(1, into))},
    {"nativeWriteNvValue", GET(factory, writeNv(1, t))},
    {"nativeSetKvInfoToOem", GET(factory, writeNv(1, t))},
    {"nativeGetKvInfoFromOem", TAKE(factory, readNv(1, into))},
    {"nativeGetCapacitanceTestResult", TAKE(touch, zantor_tp_capacitance_test(1, into))},
    {"sendCmdToFingerprintHalNative", GET(fingerprint, sendCmdToHal(1))},
    {"nativeSetFlashLight", GET(camera, setFlashLight(1, 1))},
    {"nativeGetOisAgingResult", GET(camera, getOisAgingResult())},
    {"nativeSetSensorSelfTest", GET(sensors, setSensorSelfTest(1, 1))},
    {"nativeGetSensorSelfTestResult", GET(sensors, getSensorSelfTestResult(1))},
    {"nativeGetSensorPara", TAKE(sensors, handleSensorPara(1, 1, 1, 1, into))},
    {"nativeDisplayTest", TAKE(display, displayTest(kPanelTest, 0, into))},
    {"nativeDisplayGeneralTest", TAKE(displayFactory, displayGeneralTest(kPanelTest, 18, into))},
    {"nativeStartHertzTest", TAKE(chip, startHertzTest(into))},
    {"nativeStopHertzTest", GET(chip, stopHertzTest())},
    {"nativeGetHertzTestResult", GET(chip, getHertzTestResult())},
    {"nativeSetLedBrightness", GET(light, setLightsBrightness(1, 1))},
    {"nativeSetEndTimeOfAgeing", GET(display, mft_set_end_time_of_ageing())},
    {"nativeSetPowerState", GET(power, setPowerState(t, t))},
    {"nativeGetPowerState", TAKE(power, getPowerState(t, into))},
    {"nativeSetCommand", TAKE(factory, setCommand(t, t, 2048, into))},
    {"nativeSetWifiCommand", TAKE(factory, setWifiCommand(t, t, 1024, into))},
    {"nativeSocVoltageOffsetById", TAKE(factory, socVoltageOffsetById(1, into))},
    {"nativeSetLedAlwaysOnStatus", GET(light, set_led_alwayson_status(1, 1))},
    {"nativePowerTest", TAKE(power, powerTest(t, t, t, t, into))},
    {"nativeLockOrReleaseBigCpu", GET(factory, lockBigCpu(1))},
    {"nativeSendBigDataOperation", GET(factory, sendBigDataOperation(kOperation))},
    {"nativeSendBigDataValue", GET(factory, sendBigData(kValue))},
    {"nativeSetLightSleep", GET(factory, setLightSleep(1))},
    {"nativeGetControlFlag", TAKE(factory1_1, getControlFlag(1, 1024, into))},
    {"nativeSetControlFlag", GET(factory1_1, setControlFlag(1, t, static_cast<int32_t>(t.size())))},
    {"nativeSetTestCycle", GET(factory1_1, writeOemInfo(143, kItemLength, kCycle))},
    {"nativeSetTestItemName", [] {
        ret = g.factory1_1->writeOemSubInfo(204, 10, kItemLength, t);
        ret = g.factory1_1->writeOemSubInfo(204, 11, kItemLength, t);
    }},
    {"nativeSetModemLogState", GET(radio, setModemLogState(1))},
    {"nativeGetManufactureMode", GET(factory1_1, getManufactureMode())},
    {"nativeGetVerifySignatureResult", GET(factory, writeNv(11, kHex))},
    {"nativeGetScreenFpsConfigByScenes", [] {
        ret = g.display1_1->setDisplayFps(1);
        Taken taken{};
        (void)g.display1_1->getDisplayFpsConfig(std::ref(taken)).isOk();
    }},
    {"nativeSetScreenFps", GET(display1_1, setDisplayFps(1))},
};
// clang-format on

class Deaf : public hidl_death_recipient {
    void serviceDied(uint64_t, const android::wp<IBase>&) override {}
};

/** One service as a client would look it up that has nothing else to do; true when it is there. */
template <typename Interface>
bool LookUp(const char* instance, const sp<Deaf>& recipient, sp<Interface>* service) {
    *service = Interface::getService(instance, /* getStub */ false);
    if (*service == nullptr) return false;
    if (recipient != nullptr) (void)(*service)->linkToDeath(recipient, 0).isOk();
    return true;
}

int LookUpAll(const sp<Deaf>& deaf) {
    return LookUp("qxfactoryinterface_hal", deaf, &g.factory) +
           LookUp("default", deaf, &g.display) + LookUp("default", deaf, &g.touch) +
           LookUp("default", deaf, &g.sensors) + LookUp("default", deaf, &g.power) +
           LookUp("default", deaf, &g.light) + LookUp("default", deaf, &g.camera) +
           LookUp("default", deaf, &g.radio) + LookUp("default", deaf, &g.displayFactory) +
           LookUp("default", deaf, &g.fingerprint) + LookUp("ztchipsrv_hal", deaf, &g.chip);
}

}  // namespace

const BareCalls& ConnectHidl() {
    LookUpAll(nullptr);
    g.factory1_1 = native_hidl::IQxFactoryInterfaceV1_1::castFrom(g.factory);
    g.display1_1 = native_hidl::IDisplayV1_1::castFrom(g.display);
    return kCalls;
}

void LetGoOfHidl() {
    g = {};
}

int LookUpHidl() {
    static const auto* deaf = new sp<Deaf>(new Deaf);
    return LookUpAll(*deaf);
}

}  // namespace bench
