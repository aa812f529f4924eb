#include "harness.h"

namespace {

class PeripheralsTest : public OperationTest {};

// clang-format off
TEST_F(PeripheralsTest, TouchPanel) {
    Run(OnBoth({
            {"touch", "nativeGetCapacitanceTestResult", {5},
             {{"zantor_tp_capacitance_test", {-3, "short"}}},
             {"touch.zantor_tp_capacitance_test(5)"},
             "E GetCapacitanceTestResult",
             {"I zantor_tp_capacitance_test result = -3\n",
              "I zantor_tp_capacitance_test capacitanceTestResult = short\n"},
             {"E zantor_tp_capacitance_test ret = -3\n",
              "E zantor_tp_capacitance_test  capacitanceTestResult = short\n"}, "-3"},
    }));
}

// The flash light takes bytes: signed ones over AIDL, unsigned ones over HIDL.
TEST_F(PeripheralsTest, Camera) {
    Run(OnBoth({
            {"camera", "nativeGetOisAgingResult", {}, {{"getOisAgingResult", {4}}},
             {"camera.getOisAgingResult()"},
             "E GetOisAgingResult", {"I ois aging values = 4\n"}, {"E ois aging value = 4\n"}, "4"},
    }));
    Run({
            {kAidl, "camera", "nativeSetFlashLight", {256, -1}, {{"setFlashLight", {300000}}},
             {"camera.setFlashLight(0, -1)"},
             {"E SetFlashLightByAidl", "I set flash light values = 300000\n"}, "300000"},
            {kAidl, "camera", "nativeSetFlashLight", {127, 128}, {{"setFlashLight", {-7}}},
             {"camera.setFlashLight(127, -128)"},
             {"E SetFlashLightByAidl", "I set flash light values = -7\n"}, "-7"},
            {kHidl, "camera", "nativeSetFlashLight", {256, -1}, {{"setFlashLight", {300000}}},
             {"camera.setFlashLight(0, 255)"},
             {"E SetFlashLightByHidl", "E set flash light value = 300000\n"}, "300000"},
            {kHidl, "camera", "nativeSetFlashLight", {127, 128}, {{"setFlashLight", {-7}}},
             {"camera.setFlashLight(127, 128)"},
             {"E SetFlashLightByHidl", "E set flash light value = -7\n"}, "-7"},
    });
}

TEST_F(PeripheralsTest, SensorSelfTests) {
    Run(OnBoth({
            {"sensors", "nativeSetSensorSelfTest", {11, 22}, {{"setSensorSelfTest", {-6}}},
             {"sensors.setSensorSelfTest(11, 22)"},
             "I SetSensorSelfTest", {"I Set sensor self test value = -6\n"},
             {"D set sensor self test value = -6\n"}, "-6"},
            {"sensors", "nativeGetSensorSelfTestResult", {11}, {{"getSensorSelfTestResult", {9}}},
             {"sensors.getSensorSelfTestResult(11)"},
             "I GetSensorSelfTestResult", {"I Get sensor self test value = 9\n"},
             {"D get sensor self test value = 9\n"}, "9"},
    }));
}

// The text comes back whatever the code.
TEST_F(PeripheralsTest, SensorParameters) {
    Run(OnBoth({
            {"sensors", "nativeGetSensorPara", {1, -2, 3, 4},
             {{"handleSensorPara", {-8, "0.5,0.7"}}}, {"sensors.handleSensorPara(1, -2, 3, 4)"},
             "I GetSensorPara",
             {"I handleSensorPara ret = -8, testResultArray = 0.5,0.7, sensor id = 1, "
              "main cmd = -2, sub cmd = 3, length =4"},
             {"D handleSensorPara ret = -8, testResultArray = 0.5,0.7, sensor id = 1, "
              "main cmd = -2, sub cmd = 3, length = 4"},
             "\"0.5,0.7\""},
    }));
}

TEST_F(PeripheralsTest, Lights) {
    Run(OnBoth({
            // Over HIDL the line is written before there is a result.
            {"light", "nativeSetLedBrightness", {3, 70}, {{"setLightsBrightness", {5}}},
             {"light.setLightsBrightness(3, 70)"},
             "I SetLedBrightness", {"I set lights brightness values = 5\n"},
             {"E set lights brightness value = 0\n"}, "5"},
            {"light", "nativeSetLedAlwaysOnStatus", {2, 1}, {{"set_led_alwayson_status", {-4}}},
             {"light.set_led_alwayson_status(2, 1)"},
             "I KvSetLedAlwaysonStatus", {"I Set_led_alwayson_status value = -4\n"},
             {"E set_led_alwayson_status ret = -4\n"}, "-4"},
    }));
}

TEST_F(PeripheralsTest, Sim) {
    Run({
            {kAidl, "sim", "nativeSetSimPowerState", {2}, {{"setSimPowerState", {-12}}},
             {"sim.setSimPowerState(2)"},
             {"I SetSimPowerStateByAidl", "I SetSimPowerState, state:2, resultCode:-12\n"}, "-12"},
    });
}

// Two of the four ask for the service first, and log on opposite sides of the answer.
TEST_F(PeripheralsTest, SatelliteChip) {
    Run({
            {kAidl, "satellite", "nativeChipTtTestCp", {"cold"}, {{"chipTtTestCp", {0, "locked"}}},
             {"satellite.chipTtTestCp(\"cold\")"},
             {"I ChipTtTestCpByAidl", "I ChipTtTestCp, testScene:cold, result:locked\n"},
             "\"locked\""},
            {kAidl, "satellite", "nativeChipTtRssiTest", {"band1"},
             {{"chipTtRssiTest", {0, "-101"}}}, {"satellite.chipTtRssiTest(\"band1\")"},
             {}, "\"-101\""},
            {kAidl, "satellite", "nativeChipTtTestPa", {"high"}, {{"chipTtTestPa", {0, "23 dBm"}}},
             {"satellite.chipTtTestPa(\"high\")"},
             {"I ChipTtTestPaByAidl", "I ChipTtTestPa, testScene:high, result:23 dBm\n"},
             "\"23 dBm\""},
            {kAidl, "satellite", "nativeChipTtTestPdet", {"low"},
             {{"chipTtTestPdet", {0, "0.8 V"}}}, {"satellite.chipTtTestPdet(\"low\")"},
             {"I ChipTtTestPdetByAidl", "I ChipTtTestPdet, testScene:low, result:0.8 V\n"},
             "\"0.8 V\""},
            {kAidl, "", "nativeChipTtTestCp", {"cold"}, {}, {}, {}, "\"INVALID_SERVICE\""},
            {kAidl, "", "nativeChipTtRssiTest", {"band1"}, {}, {},
             {"I ChipTtRssiTestByHidl invalidService"}, "\"INVALID_SERVICE\""},
    });
}

// clang-format on

}  // namespace
