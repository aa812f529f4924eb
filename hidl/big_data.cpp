#include "common/big_data.h"

#include "common/failure.h"
#include "hidl/services.h"

using namespace kalvorn;

using vendor::zantor::hardware::qxfactoryinterface::V1_0::FmdCmdData;
using vendor::zantor::hardware::qxfactoryinterface::V1_0::FmdMsg;

// intended: neither operation logs its result, unlike AIDL.

int native_hidl::KvSendFmdOperation(JNIEnv* env, jobject, JavaBigDataOperation* operation) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    BigDataOperation record;
    if (!ReadBigData(env, operation, &record)) return kServiceAbsent;
    KV_LOGD("version: %d; commandId: %d; operation: %d; bsn: %s; station: %s; cycle: %d",
            record.version, record.commandId, record.operation, record.bsn, record.station,
            record.cycle);
    FmdCmdData data{};
    FillCommand(record, BorrowInto, &data);
    return factory->sendBigDataOperation(data);
}

int native_hidl::KvSendFmdData(JNIEnv* env, jobject, JavaBigDataValue* value) {
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
    FmdMsg message{};
    message.version = record.version;
    message.dataSource = record.dataSource;
    message.numEvents = 1;
    message.events.resize(1);
    FillEvent(record, BorrowInto, &message.events[0]);
    return factory->sendBigData(message);
}
