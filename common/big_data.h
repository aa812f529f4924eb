#pragma once

#include <jni.h>

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
