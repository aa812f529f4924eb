#include <android/binder_manager.h>
#include <binder/IServiceManager.h>
#include <string.h>
#include <utils/String16.h>

#include <vector>

#include "aidl/services.h"
#include "arguments.h"
#include "bare_calls.h"
#include "common/service_constants.h"

namespace bench {

namespace {

using namespace vendor::zantor::hardware;
using android::sp;
using android::String16;
using kalvorn::kItemLength;
using kalvorn::kPanelTest;
using qxfactoryinterface::IFacIntStr;

struct Proxies {
    sp<native_aidl::IQxFactoryInterface> factory;
    sp<native_aidl::IDisplay> display;
    sp<native_aidl::ITouchscreen> touch;
    sp<native_aidl::ISensors> sensors;
    sp<native_aidl::IQXPower> power;
    sp<native_aidl::ILight> light;
    sp<native_aidl::ICameraFactory> camera;
    sp<native_aidl::IRadioenhance> radio;
    sp<native_aidl::IDisplayFactory> displayFactory;
    sp<native_aidl::IZtChipSrvHertz> chip;
    sp<native_aidl::IZtsimradio> sim;
    sp<native_aidl::IZtChipSrvSat> satellite;
    std::shared_ptr<native_aidl::ISession> session;
} g;

const std::string kPackage = "com.quorvin.kalvornii";
const std::string t = kText;  // the text that most methods are given
const std::string kPowerTest = "testTimes=" + t + ",maxLimit=" + t + ",minLimit=" + t;
const std::string kHex = "4b5601029f00ff104b5601029f00ff10";
const std::vector<uint8_t> kCycle = {'0', '1', '0', '1'};
const std::vector<uint8_t> kName(t.begin(), t.end());
int32_t ret;

qxfactoryinterface::FmdCmdData Operation() {
    qxfactoryinterface::FmdCmdData data{};
    data.station = data.bsn = t;
    return data;
}

qxfactoryinterface::FmdMsg Value() {
    qxfactoryinterface::FmdMsg message{};
    message.numEvents = 1;
    message.events.resize(1);
    auto& e = message.events[0];
    for (std::string* text :
         {&e.result, &e.station, &e.bsn, &e.time, &e.deviceName, &e.testName, &e.value,
          &e.minThreshold, &e.maxThreshold, &e.firmware, &e.description}) {
        *text = t;
    }
    return message;
}

const qxfactoryinterface::FmdCmdData kOperation = Operation();
const qxfactoryinterface::FmdMsg kValue = Value();

// clang-format off
const BareCalls kCalls{
    {"nativeGetTestResult", [] { IFacIntStr reply{}; g.factory->getTestResult(1, &reply); }},
    {"nativeSetTestResult", [] { g.factory->setTestResult(1, t, &ret); }},
    {"nativeSocTest", [] { IFacIntStr reply{}; g.factory->socTest(t, t, &reply); }},
    {"nativeDdrTest", [] { IFacIntStr reply{}; g.factory->ddrTest(t, t, t, &reply); }},
    {"nativeEmmcTest", [] { IFacIntStr reply{}; g.factory->emmcTest(t, t, t, &reply); }},
    {"nativeStorageJoblessTest", [] { IFacIntStr reply{}; g.factory->storageJoblessTest(t, t, &reply); }},
    {"nativeStorageTestJudge", [] { IFacIntStr reply{}; g.factory->storageTestJudge(t, &reply); }},
    {"nativeDdrMapperTest", [] { IFacIntStr reply{}; g.factory->ddrMapperTest(t, &reply); }},
    {"nativeGetSocInfo", [] { IFacIntStr reply{}; g.factory->getSocInfo(t, &reply); }},
    {"nativeSetSocInfo", [] { g.factory->setSocInfo(t, t, &ret); }},
    {"nativeFpgaTest", [] { IFacIntStr reply{}; g.factory->fpgaTest(t, 1024, &reply); }},
    {"nativeI2cTest", [] { qxfactoryinterface::IFacIntStrStr reply{}; g.factory->i2cTest(1024, &reply); }},
    {"nativeGetBoardName", [] { IFacIntStr reply{}; g.factory->getVersionName(&reply); }},
    {"nativeOemWatchdogSetFunc", [] { IFacIntStr reply{}; g.factory->setWatchdog(t, &reply); }},
    {"nativeOemJtagtosdSetFunc", [] { IFacIntStr reply{}; g.factory->setJtagtosd(t, &reply); }},
    {"nativeReadNvValue", [] { IFacIntStr reply{}; g.factory->readNv(1, &reply); }},
    {"nativeWriteNvValue", [] { g.factory->writeNv(1, t, &ret); }},
    {"nativeSetKvInfoToOem", [] { g.factory->writeNv(1, t, &ret); }},
    {"nativeGetKvInfoFromOem", [] { IFacIntStr reply{}; g.factory->readNv(1, &reply); }},
    {"nativeGetCapacitanceTestResult", [] { tp::ITPIntString reply{}; g.touch->zantor_tp_capacitance_test(1, &reply); }},
    {"sendCmdToFingerprintHalNative", [] { g.session->sendCmdToHal(1, &ret); }},
    {"nativeSetFlashLight", [] { g.camera->setFlashLight(1, 1, &ret); }},
    {"nativeGetOisAgingResult", [] { g.camera->getOisAgingResult(&ret); }},
    {"nativeSetSensorSelfTest", [] { g.sensors->setSensorSelfTest(1, 1, &ret); }},
    {"nativeGetSensorSelfTestResult", [] { g.sensors->getSensorSelfTestResult(1, &ret); }},
    {"nativeGetSensorPara", [] {
        sensors::ZtSensorString result{};
        std::vector<int32_t> values;
        g.sensors->handleSensorPara(1, 1, 1, 1, &result, &values, &ret);
    }},
    {"nativeDisplayTest", [] { qxdisplay::DisplayOutInfo info{}; g.display->displayTest(kPanelTest, 0, &info); }},
    {"nativeDisplayGeneralTest", [] {
        qxdisplay::displayfactory::DisplayFactoryOutInfo info{};
        g.displayFactory->displayGeneralTest(kPanelTest, 18, &info);
    }},
    {"nativeStartHertzTest", [] { std::string parameters; g.chip->startHertzTest(&parameters); }},
    {"nativeStopHertzTest", [] { g.chip->stopHertzTest(&ret); }},
    {"nativeGetHertzTestResult", [] { g.chip->getHertzTestResult(&ret); }},
    {"nativeSetLedBrightness", [] { g.light->setLightsBrightness(1, 1, &ret); }},
    {"nativeSetEndTimeOfAgeing", [] { g.display->mft_set_end_time_of_ageing(&ret); }},
    {"nativeSetPowerState", [] { g.power->setPowerState(kPackage, t, t, &ret); }},
    {"nativeGetPowerState", [] { power::PowerOutInfo info{}; g.power->getPowerState(kPackage, t, &info, &ret); }},
    {"nativeSetCommand", [] { IFacIntStr reply{}; g.factory->setCommand(t, t, 2048, &reply); }},
    {"nativeSetWifiCommand", [] { qxfactoryinterface::IFacBoolStr reply{}; g.factory->setWifiCommand(t, t, 1024, &reply); }},
    {"nativeSocVoltageOffsetById", [] { IFacIntStr reply{}; g.factory->socVoltageOffsetById(1, &reply); }},
    {"nativeSetLedAlwaysOnStatus", [] { g.light->set_led_alwayson_status(1, 1, &ret); }},
    {"nativePowerTest", [] { g.power->setPowerState(kPackage, t, kPowerTest, &ret); }},
    {"nativeLockOrReleaseBigCpu", [] { g.factory->lockBigCpu(1, &ret); }},
    {"nativeSendBigDataOperation", [] { g.factory->sendBigDataOperation(kOperation, &ret); }},
    {"nativeSendBigDataValue", [] { g.factory->sendBigData(kValue, &ret); }},
    {"nativeSetLightSleep", [] { g.factory->setLightSleep(1, &ret); }},
    {"nativeGetControlFlag", [] { IFacIntStr reply{}; g.factory->getControlFlag(1, 1024, &reply); }},
    {"nativeSetControlFlag", [] { g.factory->setControlFlag(1, t, static_cast<int32_t>(t.size()), &ret); }},
    {"nativeSetTestCycle", [] { g.factory->writeOemInfo(143, kItemLength, kCycle, &ret); }},
    {"nativeSetTestItemName", [] {
        g.factory->writeOemSubInfo(204, 10, kItemLength, kName, &ret);
        g.factory->writeOemSubInfo(204, 11, kItemLength, kName, &ret);
    }},
    {"nativeSetModemLogState", [] { g.radio->setModemLogState(1, &ret); }},
    {"nativeGetManufactureMode", [] { g.factory->getManufactureMode(&ret); }},
    {"nativeGetVerifySignatureResult", [] { g.factory->writeNv(11, kHex, &ret); }},
    {"nativeGetScreenFpsConfigByScenes", [] { qxdisplay::DisplayOutInfo info{}; g.display->getDisplayFpsConfig(1, &info); }},
    {"nativeSetScreenFps", [] { g.display->setDisplayFps(1, &ret); }},
    {"nativeSetSimPowerState", [] { ztsimradio::ZtSimPowerInfo info{}; g.sim->setSimPowerState(1, &info); }},
    {"nativeChipTtTestCp", [] { std::string result; g.satellite->chipTtTestCp(t, &result); }},
    {"nativeChipTtRssiTest", [] { std::string result; g.satellite->chipTtRssiTest(t, &result); }},
    {"nativeChipTtTestPa", [] { std::string result; g.satellite->chipTtTestPa(t, &result); }},
    {"nativeChipTtTestPdet", [] { std::string result; g.satellite->chipTtTestPdet(t, &result); }},
};
// clang-format on

class Deaf : public android::IBinder::DeathRecipient {
    void binderDied(const android::wp<android::IBinder>&) override {}
};

/** One service as a client would look it up that has nothing else to do; true when it is there. */
template <typename Interface>
bool LookUp(const char* instance, const sp<Deaf>& recipient, sp<Interface>* proxy) {
    const String16 name = Interface::descriptor + String16("/") + String16(instance);
    const auto manager = android::defaultServiceManager();
    if (!manager->isDeclared(name)) return false;
    *proxy = Interface::asInterface(manager->waitForService(name));
    if (*proxy == nullptr) return false;
    if (recipient != nullptr) Interface::asBinder(*proxy)->linkToDeath(recipient);
    return true;
}

bool LookUpSession(const ndk::ScopedAIBinder_DeathRecipient* recipient) {
    const std::string name = std::string(native_aidl::IFingerprint::descriptor) + "/default";
    if (!AServiceManager_isDeclared(name.c_str())) return false;
    const auto fingerprint = native_aidl::IFingerprint::fromBinder(
            ndk::SpAIBinder(AServiceManager_waitForService(name.c_str())));
    if (fingerprint == nullptr) return false;
    fingerprint->createSession(-1, -1000, nullptr, &g.session);
    if (g.session == nullptr) return false;
    if (recipient != nullptr) {
        AIBinder_linkToDeath(g.session->asBinder().get(), recipient->get(), nullptr);
    }
    return true;
}

int LookUpAll(const sp<Deaf>& deaf, const ndk::ScopedAIBinder_DeathRecipient* ndkDeaf) {
    return LookUp("qxfactoryinterface_hal", deaf, &g.factory) +
           LookUp("default", deaf, &g.display) + LookUp("default", deaf, &g.touch) +
           LookUp("default", deaf, &g.sensors) + LookUp("default", deaf, &g.power) +
           LookUp("default", deaf, &g.light) + LookUp("default", deaf, &g.camera) +
           LookUp("default", deaf, &g.radio) + LookUp("default", deaf, &g.displayFactory) +
           LookUpSession(ndkDeaf) + LookUp("ztchipsrv_hertz", deaf, &g.chip) +
           LookUp("slot1", deaf, &g.sim) + LookUp("ztchipsrv_sat", deaf, &g.satellite);
}

}  // namespace

const BareCalls& ConnectAidl() {
    LookUpAll(nullptr, nullptr);
    return kCalls;
}

void LetGoOfAidl() {
    g = {};
}

int LookUpAidl() {
    static const auto* deaf = new sp<Deaf>(new Deaf);
    static const auto* ndkDeaf =
            new ndk::ScopedAIBinder_DeathRecipient(AIBinder_DeathRecipient_new([](void*) {}));
    return LookUpAll(*deaf, ndkDeaf);
}

}  // namespace bench
