#include "harness.h"

namespace {

class FingerprintTest : public OperationTest {};

TEST_F(FingerprintTest, SendsTheCommandAlone) {
    const java::Bytes data{1, 2, 3};
    // clang-format off
    Run({
            {kAidl, "fingerprint", "sendCmdToFingerprintHalNative", {12, data},
             {{"sendCmdToHal", {7}}}, {"fingerprint.sendCmdToHal(12)"},
             {"I SendCmdToFingerprintHalByAidl", "I cmd = 12",
              "I SendCmdToFingerprintHal rawDataLength: 3", "I SetCmdToFingerprintHal before",
              "I SetCmdToFingerprintHal ret = 7"},
             "7"},
            {kHidl, "fingerprint", "sendCmdToFingerprintHalNative", {12, data},
             {{"sendCmdToHal", {7}}}, {"fingerprint.sendCmdToHal(12)"},
             {"I SendCmdToFingerprintHalByHidl", "E cmd = 12",
              "E SendCmdToFingerprintHal rawDataLength: 3", "E SetCmdToFingerprintHal before",
              "E SetCmdToFingerprintHal ret = 7"},
             "7"},
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
    // clang-format on
}

TEST_F(FingerprintTest, SignaturesBecomeHexText) {
    const java::Bytes signature{0x0a, -1};
    // clang-format off
    Run({
            {kAidl, "factory", "nativeGetVerifySignatureResult", {signature}, {{"writeNv", {3}}},
             {"factory.writeNv(11, \"0aff\")"},
             {"I GetVerifySignatureResultByAidl", "I getVerifySignatureResult, ret: 3"},
             "3"},
            {kHidl, "factory", "nativeGetVerifySignatureResult", {signature}, {{"writeNv", {3}}},
             {"factory.writeNv(11, \"0aff\")"},
             {"I GetVerifySignatureResultByHidl", "D GetVerifySignatureResult, ret: 3"},
             "3"},
            {kAidl, "factory", "nativeGetVerifySignatureResult", {java::Bytes{127}}, {},
             {"factory.writeNv(11, \"7f\")"},
             {"I GetVerifySignatureResultByAidl", "I getVerifySignatureResult, ret: 0"},
             "0"},
            {kHidl, "factory", "nativeGetVerifySignatureResult", {java::Bytes{127}}, {},
             {"factory.writeNv(11, \"7f\")"},
             {"I GetVerifySignatureResultByHidl", "D GetVerifySignatureResult, ret: 0"},
             "0"},
            {kAidl, "factory", "nativeGetVerifySignatureResult", {java::Bytes{}}, {}, {},
             {"I GetVerifySignatureResultByAidl", "E parameter is invalid, numLen: 0, strLen: 0",
              "E convertBinToString is failed"},
             "-1"},
            {kHidl, "factory", "nativeGetVerifySignatureResult", {java::Bytes{}}, {}, {},
             {"I GetVerifySignatureResultByHidl", "E parameter is invalid, numLen: 0, strLen: 0",
              "E convertBinToString fail"},
             "-1"},
    });
    // clang-format on
}

}  // namespace
