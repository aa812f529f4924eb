#include <string.h>

#include <vector>

#include "aidl/services.h"
#include "common/failure.h"
#include "common/java_values.h"
#include "common/qrcode_info.h"
#include "common/service_constants.h"

using namespace kalvorn;

namespace {

// The characters without their terminator.
std::vector<uint8_t> Bytes(const char* text) {
    return std::vector<uint8_t>(text, text + strlen(text));
}

}  // namespace

int native_aidl::KvSetTestCycle(JNIEnv*, jobject, int stationId, int cycle) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    KV_LOGI("KVSetTestCycle, stationID = %d cycle = %d\n", stationId, cycle);
    int32_t result = 0;
    char qrcodeInfo[kItemLength];
    if (ComposeQrCodeInfo(stationId, cycle, &qrcodeInfo)) {
        KV_LOGI("KVSetTestCycle, qrcodeInfo = %s\n", qrcodeInfo);
    }
    factory->writeOemInfo(kQrCodeInfo, kItemLength, Bytes(qrcodeInfo), &result);
    KV_LOGI("KVSetTestCycle, result = %d\n", result);
    return result;
}

jintArray native_aidl::KvSetTestItemName(JNIEnv* env, jobject, jstring mainItemName,
                                         jstring subItemName) {
    JavaText mainName, subName;
    if (!mainName.Read(env, mainItemName, "mainItemName") ||
        !subName.Read(env, subItemName, "subItemName")) {
        return NewPair(env, kServiceAbsent);
    }
    KV_LOGI("KvSetTestItemName, mainItemName = %s, subItemName = %s\n", mainName.c_str(),
            subName.c_str());
    jintArray array = nullptr;
    jint* results = NewPairElements(env, &array);
    if (results == nullptr) return nullptr;
    results[0] = results[1] = -1;
    const auto factory = HeldFactory();
    if (factory == nullptr) {
        results[0] = results[1] = kServiceAbsent;
        // intended: nothing is released here; the commit only shows Java the elements
        env->ReleaseIntArrayElements(array, results, JNI_COMMIT);
        mainName.Keep();
        subName.Keep();
        return array;
    }
    // intended: lower-case in the results' lines, unlike HIDL
    factory->writeOemSubInfo(kTestItem, kMainName, kItemLength, Bytes(mainName.c_str()),
                             &results[0]);
    KV_LOGI("kvSetTestItemName, main result = %d\n", results[0]);
    factory->writeOemSubInfo(kTestItem, kSubName, kItemLength, Bytes(subName.c_str()), &results[1]);
    KV_LOGI("kvSetTestItemName, sub result = %d\n", results[1]);
    mainName.Release();
    subName.Release();
    env->ReleaseIntArrayElements(array, results, 0);
    return array;
}

// The end of ageing is marked by the display service, not by the factory service.
int native_aidl::SetEndTimeOfAgeing(JNIEnv*, jobject) {
    const auto display = Held(g_aidlDisplayService, "aidlDisplayService is null");
    if (display == nullptr) return kServiceAbsent;
    int32_t result = 0;
    display->mft_set_end_time_of_ageing(&result);
    KV_LOGI("mft_set_end_time_of_ageing res is: %d", result);
    return result;
}

int native_aidl::GetManufactureMode(JNIEnv*, jobject) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    int32_t mode = -1;
    factory->getManufactureMode(&mode);
    KV_LOGI("GetManufactureMode, res = %d", mode);
    return mode;
}
