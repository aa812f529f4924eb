#include "common/failure.h"
#include "common/java_values.h"
#include "common/qrcode_info.h"
#include "common/service_constants.h"
#include "hidl/services.h"

using namespace kalvorn;

// intended: "Kv" here, "KV" over AIDL, and the line comes before the service is looked at.
int native_hidl::KvSetTestCycle(JNIEnv*, jobject, int stationId, int cycle) {
    KV_LOGD("KvSetTestCycle, stationID = %d cycle = %d\n", stationId, cycle);
    const auto fi = CastTo<IQxFactoryInterfaceV1_1>(g_qxFactoryInterface);
    if (fi == nullptr) {
        KV_LOGD("KvSetTestCycle, fi is null, IQxFactoryV1_1 not support!");
        return kServiceAbsent;
    }
    char qrcodeInfo[kItemLength];
    if (ComposeQrCodeInfo(stationId, cycle, &qrcodeInfo)) {
        KV_LOGD("KvSetTestCycle, qrcodeInfo = %s\n", qrcodeInfo);
    }
    const int32_t result = fi->writeOemInfo(kQrCodeInfo, kItemLength, Borrow(qrcodeInfo));
    KV_LOGD("KvSetTestCycle, result = %d\n", result);
    return result;
}

jintArray native_hidl::KvSetTestItemName(JNIEnv* env, jobject, jstring mainItemName,
                                         jstring subItemName) {
    JavaText mainName, subName;
    if (!mainName.Read(env, mainItemName, "mainItemName") ||
        !subName.Read(env, subItemName, "subItemName")) {
        return NewPair(env, kServiceAbsent);
    }
    KV_LOGD("KvSetTestItemName, mainItemName = %s, subItemName = %s\n", mainName.c_str(),
            subName.c_str());
    jintArray array = nullptr;
    jint* results = NewPairElements(env, &array);
    if (results == nullptr) return nullptr;
    results[0] = results[1] = -1;
    const auto fi = CastTo<IQxFactoryInterfaceV1_1>(g_qxFactoryInterface);
    if (fi == nullptr) {
        KV_LOGD("KvSetTestItemName, fi is null, IQxFactoryV1_1 not support!");
        results[0] = results[1] = kServiceAbsent;
        // intended: nothing is released here; the commit only shows Java the elements
        env->ReleaseIntArrayElements(array, results, JNI_COMMIT);
        mainName.Keep();
        subName.Keep();
        return array;
    }
    results[0] = fi->writeOemSubInfo(kTestItem, kMainName, kItemLength, Borrow(mainName.c_str()));
    KV_LOGD("KvSetTestItemName, main result = %d\n", results[0]);
    results[1] = fi->writeOemSubInfo(kTestItem, kSubName, kItemLength, Borrow(subName.c_str()));
    KV_LOGD("KvSetTestItemName, sub result = %d\n", results[1]);
    mainName.Release();
    subName.Release();
    env->ReleaseIntArrayElements(array, results, 0);
    return array;
}

// The end of ageing is marked by the display service, not by the factory service.
int native_hidl::SetEndTimeOfAgeing(JNIEnv*, jobject) {
    const auto display = Held(g_displayService, "g_displayService is null");
    if (display == nullptr) return kServiceAbsent;
    const int32_t result = display->mft_set_end_time_of_ageing();
    KV_LOGE("mft_set_end_time_of_ageing result is: %d", result);
    return result;
}

int native_hidl::GetManufactureMode(JNIEnv*, jobject) {
    const auto fi = CastTo<IQxFactoryInterfaceV1_1>(g_qxFactoryInterface);
    if (fi == nullptr) {
        KV_LOGE("GetManufactureMode, fi is null, IQxFactoryV1_1 not support!");
        return kServiceAbsent;
    }
    const int32_t mode = fi->getManufactureMode();
    KV_LOGD("GetManufactureMode, ret = %d", mode);
    return mode;
}
