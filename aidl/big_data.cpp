#include "common/big_data.h"

#include "aidl/services.h"
#include "common/failure.h"

using vendor::zantor::hardware::qxfactoryinterface::FmdCmdData;
using vendor::zantor::hardware::qxfactoryinterface::FmdEvent;
using vendor::zantor::hardware::qxfactoryinterface::FmdMsg;

int native_aidl::KvSendFmdOperation(JNIEnv* env, jobject, jobject operation) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    int32_t result = 0;
    BigDataOperation record;
    if (!ReadBigData(env, operation, &record)) return kServiceAbsent;
    KV_LOGI("Version: %d; commandId: %d; operation: %d; bsn: %s; station: %s; cycle: %d",
            record.version, record.commandId, record.operation, record.bsn, record.station,
            record.cycle);
    FmdCmdData data{};  // its reserved texts stay empty
    data.version = record.version;
    data.commandId = record.commandId;
    data.operation = record.operation;
    data.cycle = record.cycle;
    data.station = record.station;
    data.bsn = record.bsn;
    factory->sendBigDataOperation(data, &result);
    KV_LOGI("SendBigDataOperation, result: %d", result);
    return result;
}

int native_aidl::KvSendFmdData(JNIEnv* env, jobject, jobject value) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    int32_t result = 0;
    BigDataValue record;
    if (!ReadBigData(env, value, &record)) return kServiceAbsent;
    KV_LOGI("version: %d; dataSource: %d; numEvents: %d; errorCode: %d; itemId: %d; bsn: %s; "
            "station: %s; cycle: %d",
            record.version, record.dataSource, 1, record.errorCode, record.itemId, record.bsn,
            record.station, record.cycle);
    KV_LOGI("deviceName: %s; testName: %s; value: %s; minThreshold: %s; maxThreshold: %s; "
            "result: %s; time: %s; firmware: %s; description: %s",
            record.deviceName, record.testName, record.value, record.minThreshold,
            record.maxThreshold, record.result, record.time, record.firmware, record.description);
    FmdMsg message{};
    message.version = record.version;
    message.dataSource = record.dataSource;
    message.numEvents = 1;
    message.events.resize(1);
    FmdEvent& event = message.events[0];  // its reserved texts stay empty
    event.errorCode = record.errorCode;
    event.itemId = record.itemId;
    event.cycle = record.cycle;
    event.result = record.result;
    event.station = record.station;
    event.bsn = record.bsn;
    event.time = record.time;
    event.deviceName = record.deviceName;
    event.testName = record.testName;
    event.value = record.value;
    event.minThreshold = record.minThreshold;
    event.maxThreshold = record.maxThreshold;
    event.firmware = record.firmware;
    event.description = record.description;
    factory->sendBigData(message, &result);
    KV_LOGI("SendBigData, result: %d", result);
    return result;
}
