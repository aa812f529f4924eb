#include "common/big_data.h"

#include "common/failure.h"
#include "hidl/services.h"

using vendor::zantor::hardware::qxfactoryinterface::V1_0::FmdCmdData;
using vendor::zantor::hardware::qxfactoryinterface::V1_0::FmdEvent;
using vendor::zantor::hardware::qxfactoryinterface::V1_0::FmdMsg;

// intended: neither operation logs its result, unlike AIDL.

int native_hidl::KvSendFmdOperation(JNIEnv* env, jobject, jobject operation) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    BigDataOperation record;
    if (!ReadBigData(env, operation, &record)) return kServiceAbsent;
    KV_LOGD("version: %d; commandId: %d; operation: %d; bsn: %s; station: %s; cycle: %d",
            record.version, record.commandId, record.operation, record.bsn, record.station,
            record.cycle);
    FmdCmdData data{};
    data.version = record.version;
    data.commandId = record.commandId;
    data.operation = record.operation;
    data.cycle = record.cycle;
    data.station = Borrow(record.station);
    data.bsn = Borrow(record.bsn);
    return factory->sendBigDataOperation(data);
}

int native_hidl::KvSendFmdData(JNIEnv* env, jobject, jobject value) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    BigDataValue record;
    if (!ReadBigData(env, value, &record)) return kServiceAbsent;
    KV_LOGD("version: %d; dataSource: %d; numEvents: %d; errorCode: %d; itemId: %d; bsn: %s; "
            "station: %s; cycle: %d",
            record.version, record.dataSource, 1, record.errorCode, record.itemId, record.bsn,
            record.station, record.cycle);
    KV_LOGD("deviceName: %s; testName: %s; value: %s; minThreshold: %s; maxThreshold: %s; "
            "result: %s; time: %s; firmware: %s; description: %s",
            record.deviceName, record.testName, record.value, record.minThreshold,
            record.maxThreshold, record.result, record.time, record.firmware, record.description);
    FmdEvent event{};
    event.errorCode = record.errorCode;
    event.itemId = record.itemId;
    event.cycle = record.cycle;
    event.result = Borrow(record.result);
    event.station = Borrow(record.station);
    event.bsn = Borrow(record.bsn);
    event.time = Borrow(record.time);
    event.deviceName = Borrow(record.deviceName);
    event.testName = Borrow(record.testName);
    event.value = Borrow(record.value);
    event.minThreshold = Borrow(record.minThreshold);
    event.maxThreshold = Borrow(record.maxThreshold);
    event.firmware = Borrow(record.firmware);
    event.description = Borrow(record.description);
    FmdMsg message{};
    message.version = record.version;
    message.dataSource = record.dataSource;
    message.numEvents = 1;
    message.events.resize(1);
    message.events[0] = event;
    return factory->sendBigData(message);
}
