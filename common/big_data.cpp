#include "common/big_data.h"

#include "common/java_values.h"
#include "common/log.h"

namespace {

constexpr const char* kInt = "I";
constexpr const char* kString = "Ljava/lang/String;";

jstring StringAt(JNIEnv* env, jobject object, jfieldID field) {
    return static_cast<jstring>(env->GetObjectField(object, field));
}

}  // namespace

bool ReadBigData(JNIEnv* env, jobject operation, BigDataOperation* record) {
    if (operation == nullptr) {
        KV_LOGE("operation is null");
        return false;
    }
    jclass clazz = env->FindClass("com/quorvin/kalvornii/BigDataOperation");
    jfieldID version = env->GetFieldID(clazz, "version", kInt);
    jfieldID commandId = env->GetFieldID(clazz, "commandId", kInt);
    jfieldID operationId = env->GetFieldID(clazz, "operation", kInt);
    jfieldID bsn = env->GetFieldID(clazz, "bsn", kString);
    jfieldID station = env->GetFieldID(clazz, "station", kString);
    jfieldID cycle = env->GetFieldID(clazz, "cycle", kInt);

    record->version = env->GetIntField(operation, version);
    record->commandId = env->GetIntField(operation, commandId);
    record->operation = env->GetIntField(operation, operationId);
    jstring bsnText = StringAt(env, operation, bsn);
    jstring stationText = StringAt(env, operation, station);
    record->cycle = env->GetIntField(operation, cycle);

    record->station = GetText(env, stationText, "station");
    if (record->station == nullptr) return false;
    record->bsn = GetText(env, bsnText, "bsn");
    return record->bsn != nullptr;
}

bool ReadBigData(JNIEnv* env, jobject value, BigDataValue* record) {
    if (value == nullptr) {
        KV_LOGE("value is null");
        return false;
    }
    jclass clazz = env->FindClass("com/quorvin/kalvornii/BigDataValue");
    jfieldID version = env->GetFieldID(clazz, "version", kInt);
    jfieldID dataSource = env->GetFieldID(clazz, "dataSource", kInt);
    record->version = env->GetIntField(value, version);
    record->dataSource = env->GetIntField(value, dataSource);

    jfieldID errorCode = env->GetFieldID(clazz, "errorCode", kInt);
    jfieldID itemId = env->GetFieldID(clazz, "itemId", kInt);
    jfieldID cycle = env->GetFieldID(clazz, "cycle", kInt);
    struct {
        const char* name;
        const char** chars;
        jfieldID field;
        jstring text;
    } texts[] = {
            {"deviceName", &record->deviceName, nullptr, nullptr},
            {"station", &record->station, nullptr, nullptr},
            {"testName", &record->testName, nullptr, nullptr},
            {"bsn", &record->bsn, nullptr, nullptr},
            {"value", &record->value, nullptr, nullptr},
            {"minThreshold", &record->minThreshold, nullptr, nullptr},
            {"maxThreshold", &record->maxThreshold, nullptr, nullptr},
            {"result", &record->result, nullptr, nullptr},
            {"time", &record->time, nullptr, nullptr},
            {"firmware", &record->firmware, nullptr, nullptr},
            {"description", &record->description, nullptr, nullptr},
    };
    // All ids, then all objects, then all texts, each in this order.
    for (auto& text : texts) text.field = env->GetFieldID(clazz, text.name, kString);

    record->errorCode = env->GetIntField(value, errorCode);
    record->itemId = env->GetIntField(value, itemId);
    record->cycle = env->GetIntField(value, cycle);
    for (auto& text : texts) text.text = StringAt(env, value, text.field);
    for (auto& text : texts) {
        *text.chars = GetText(env, text.text, text.name);
        if (*text.chars == nullptr) return false;
    }
    return true;
}
