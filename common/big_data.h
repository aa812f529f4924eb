#pragma once

#include <jni.h>

namespace kalvorn {

// The two Java big-data objects, read field by field. The texts are the JNI's own buffers and are
// never released (intended); a text therefore outlives the call it is sent in.

struct BigDataOperation {
    jint version;
    jint commandId;
    jint operation;
    jint cycle;
    const char* bsn;
    const char* station;
};

struct BigDataValue {
    jint version;
    jint dataSource;
    jint errorCode;
    jint itemId;
    jint cycle;
    const char* deviceName;
    const char* station;
    const char* testName;
    const char* bsn;
    const char* value;
    const char* minThreshold;
    const char* maxThreshold;
    const char* result;
    const char* time;
    const char* firmware;
    const char* description;
};

/**
 * Reads a BigDataOperation or BigDataValue. False, after one line and with nothing thrown, when the
 * object or one of its strings is null ("<name> is null"), or its class lacks a field; the record
 * is not to be used then.
 */
bool ReadBigData(JNIEnv* env, jobject operation, BigDataOperation* record);
bool ReadBigData(JNIEnv* env, jobject value, BigDataValue* record);

/**
 * Fill a backend's record, whose other fields stay as they are. Each text goes through
 * `toText`, which makes the record's kind of string of it.
 */
template <typename CmdData, typename ToText>
void FillCommand(const BigDataOperation& operation, ToText toText, CmdData* data) {
    data->version = operation.version;
    data->commandId = operation.commandId;
    data->operation = operation.operation;
    data->cycle = operation.cycle;
    data->station = toText(operation.station);
    data->bsn = toText(operation.bsn);
}

template <typename Event, typename ToText>
void FillEvent(const BigDataValue& value, ToText toText, Event* event) {
    event->errorCode = value.errorCode;
    event->itemId = value.itemId;
    event->cycle = value.cycle;
    event->result = toText(value.result);
    event->station = toText(value.station);
    event->bsn = toText(value.bsn);
    event->time = toText(value.time);
    event->deviceName = toText(value.deviceName);
    event->testName = toText(value.testName);
    event->value = toText(value.value);
    event->minThreshold = toText(value.minThreshold);
    event->maxThreshold = toText(value.maxThreshold);
    event->firmware = toText(value.firmware);
    event->description = toText(value.description);
}

}  // namespace kalvorn
