#include "harness.h"

namespace {

class PeripheralsTest : public OperationTest {};

// clang-format off

// The flash light takes bytes: signed ones over AIDL, unsigned ones over HIDL.
TEST_F(PeripheralsTest, FlashLightAtTheLimits) {
    Run({
            {kAidl, "camera", "nativeSetFlashLight", {127, 128}, {{"setFlashLight", {-7}}},
             {"camera.setFlashLight(127, -128)"},
             {"E SetFlashLightByAidl", "I set flash light values = -7\n"}, "-7"},
            {kHidl, "camera", "nativeSetFlashLight", {127, 128}, {{"setFlashLight", {-7}}},
             {"camera.setFlashLight(127, 128)"},
             {"E SetFlashLightByHidl", "E set flash light value = -7\n"}, "-7"},
    });
}

TEST_F(PeripheralsTest, FingerprintCommandsWithoutData) {
    Run({
            {kAidl, "fingerprint", "sendCmdToFingerprintHalNative", {1200012, nullptr},
             {{"sendCmdToHal", {-400004}}}, {"fingerprint.sendCmdToHal(1200012)"},
             {"I SendCmdToFingerprintHalByAidl", "I cmd = 1200012"},
             "-400004"},
            {kHidl, "fingerprint", "sendCmdToFingerprintHalNative", {1200012, nullptr},
             {{"sendCmdToHal", {-400004}}}, {"fingerprint.sendCmdToHal(1200012)"},
             {"I SendCmdToFingerprintHalByHidl", "E cmd = 1200012"},
             "-400004"},
            {kAidl, "fingerprint", "sendCmdToFingerprintHalNative", {12, java::Bytes{}}, {},
             {"fingerprint.sendCmdToHal(12)"},
             {"I SendCmdToFingerprintHalByAidl", "I cmd = 12",
              "I SendCmdToFingerprintHal rawDataLength: 0", "I SetCmdToFingerprintHal before",
              "I SetCmdToFingerprintHal ret = 0"},
             "0"},
    });
}

TEST_F(PeripheralsTest, EmptySignaturesAreNotWritten) {
    const std::string line = "E parameter is invalid, numLen: 0, strLen: 0";
    Run({
            {kAidl, "factory", "nativeGetVerifySignatureResult", {java::Bytes{}}, {}, {},
             {"I GetVerifySignatureResultByAidl", line, "E convertBinToString is failed"}, "-1"},
            {kHidl, "factory", "nativeGetVerifySignatureResult", {java::Bytes{}}, {}, {},
             {"I GetVerifySignatureResultByHidl", line, "E convertBinToString fail"}, "-1"},
    });
}

// clang-format on

}  // namespace
