#pragma once

#include <jni.h>

#include "common/native_method.h"

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
bool ReadBigData(JNIEnv* env, JavaBigDataOperation* operation, BigDataOperation* record);
bool ReadBigData(JNIEnv* env, JavaBigDataValue* value, BigDataValue* record);

/**
 * Fill a backend's record, whose other fields stay as they are; `set(text, &field)` puts a text
 * into the record's kind of string.
 */
template <typename CmdData, typename Set>
void FillCommand(const BigDataOperation& operation, Set set, CmdData* data) {
    data->version = operation.version;
    data->commandId = operation.commandId;
    data->operation = operation.operation;
    data->cycle = operation.cycle;
    set(operation.station, &data->station);
    set(operation.bsn, &data->bsn);
}

template <typename Event, typename Set>
void FillEvent(const BigDataValue& value, Set set, Event* event) {
    event->errorCode = value.errorCode;
    event->itemId = value.itemId;
    event->cycle = value.cycle;
    set(value.result, &event->result);
    set(value.station, &event->station);
    set(value.bsn, &event->bsn);
    set(value.time, &event->time);
    set(value.deviceName, &event->deviceName);
    set(value.testName, &event->testName);
    set(value.value, &event->value);
    set(value.minThreshold, &event->minThreshold);
    set(value.maxThreshold, &event->maxThreshold);
    set(value.firmware, &event->firmware);
    set(value.description, &event->description);
}

}  // namespace kalvorn
