#include "common/big_data.h"

#include "common/java_values.h"
#include "common/log.h"

namespace kalvorn {

namespace {

constexpr const char* kOperationClass = "com/quorvin/kalvornii/BigDataOperation";
constexpr const char* kValueClass = "com/quorvin/kalvornii/BigDataValue";
constexpr const char* kInt = "I";
constexpr const char* kString = "Ljava/lang/String;";

// No JNI function may be called with an exception pending: after one that failed, none is looked
// up.
jfieldID FieldId(JNIEnv* env, jclass clazz, const char* name, const char* type) {
    return env->ExceptionCheck() ? nullptr : env->GetFieldID(clazz, name, type);
}

// Whether the class and all of its fields so far were found.
bool Found(JNIEnv* env, const char* className) {
    if (!env->ExceptionCheck()) return true;
    env->ExceptionClear();
    KV_LOGE("cannot find the fields of %s", className);
    return false;
}

jstring StringAt(JNIEnv* env, jobject object, jfieldID field) {
    return static_cast<jstring>(env->GetObjectField(object, field));
}

}  // namespace

bool ReadBigData(JNIEnv* env, jobject operation, BigDataOperation* record) {
    if (operation == nullptr) {
        KV_LOGE("operation is null");
        return false;
    }
    jclass clazz = env->FindClass(kOperationClass);
    jfieldID version = FieldId(env, clazz, "version", kInt);
    jfieldID commandId = FieldId(env, clazz, "commandId", kInt);
    jfieldID operationId = FieldId(env, clazz, "operation", kInt);
    jfieldID bsn = FieldId(env, clazz, "bsn", kString);
    jfieldID station = FieldId(env, clazz, "station", kString);
    jfieldID cycle = FieldId(env, clazz, "cycle", kInt);
    if (!Found(env, kOperationClass)) return false;

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
    jclass clazz = env->FindClass(kValueClass);
    jfieldID version = FieldId(env, clazz, "version", kInt);
    jfieldID dataSource = FieldId(env, clazz, "dataSource", kInt);
    if (!Found(env, kValueClass)) return false;
    record->version = env->GetIntField(value, version);
    record->dataSource = env->GetIntField(value, dataSource);

    jfieldID errorCode = FieldId(env, clazz, "errorCode", kInt);
    jfieldID itemId = FieldId(env, clazz, "itemId", kInt);
    jfieldID cycle = FieldId(env, clazz, "cycle", kInt);
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
    for (auto& text : texts) text.field = FieldId(env, clazz, text.name, kString);
    if (!Found(env, kValueClass)) return false;

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

}  // namespace kalvorn
