#include "common/big_data.h"

#include <string>
#include <vector>

#include "aidl/services.h"
#include "common/failure.h"

using namespace kalvorn;

using vendor::zantor::hardware::qxfactoryinterface::FmdCmdData;
using vendor::zantor::hardware::qxfactoryinterface::FmdEvent;
using vendor::zantor::hardware::qxfactoryinterface::FmdMsg;

namespace {

void Set(const char* text, std::string* field) {
    *field = text;
}

}  // namespace

int native_aidl::KvSendFmdOperation(JNIEnv* env, jobject, JavaBigDataOperation* operation) {
    const auto factory = HeldFactory();
    if (factory == nullptr) return kServiceAbsent;
    int32_t result = 0;
    BigDataOperation record;
    if (!ReadBigData(env, operation, &record)) return kServiceAbsent;
    KV_LOGI("Version: %d; commandId: %d; operation: %d; bsn: %s; station: %s; cycle: %d",
            record.version, record.commandId, record.operation, record.bsn, record.station,
            record.cycle);
    FmdCmdData data{};  // its reserved texts stay empty
    FillCommand(record, Set, &data);
    factory->sendBigDataOperation(data, &result);
    KV_LOGI("SendBigDataOperation, result: %d", result);
    return result;
}

int native_aidl::KvSendFmdData(JNIEnv* env, jobject, JavaBigDataValue* value) {
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
    message.events = std::vector<FmdEvent>(1);
    FillEvent(record, Set, &message.events[0]);  // its reserved texts stay empty
    factory->sendBigData(message, &result);
    KV_LOGI("SendBigData, result: %d", result);
    return result;
}
