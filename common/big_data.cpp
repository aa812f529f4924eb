#include "common/big_data.h"

#include <iterator>

#include "common/java_values.h"
#include "common/log.h"

namespace kalvorn {

namespace {

constexpr const char* kInt = "I";
constexpr const char* kString = "Ljava/lang/String;";

// A class and the ids of its fields. No JNI function may be called with an exception pending: after
// a look-up that failed there is none.
class Fields {
  public:
    Fields(JNIEnv* env, const char* className)
        : mEnv(env), mName(className), mClass(env->FindClass(className)) {}

    jfieldID Id(const char* name, const char* type) {
        jfieldID id = mClass == nullptr ? nullptr : mEnv->GetFieldID(mClass, name, type);
        if (id == nullptr) mClass = nullptr;
        return id;
    }

    /** Whether the class and all of its fields so far were found; if not, after one line. */
    bool Found() const {
        if (mClass != nullptr) return true;
        mEnv->ExceptionClear();
        KV_LOGE("cannot find the fields of %s", mName);
        return false;
    }

  private:
    JNIEnv* const mEnv;
    const char* const mName;
    jclass mClass;
};

jstring StringAt(JNIEnv* env, jobject object, jfieldID field) {
    return static_cast<jstring>(env->GetObjectField(object, field));
}

// The texts of a BigDataValue, in the order in which they are read.
constexpr struct {
    const char* name;
    const char* BigDataValue::*chars;
} kTexts[] = {
        {"deviceName", &BigDataValue::deviceName},
        {"station", &BigDataValue::station},
        {"testName", &BigDataValue::testName},
        {"bsn", &BigDataValue::bsn},
        {"value", &BigDataValue::value},
        {"minThreshold", &BigDataValue::minThreshold},
        {"maxThreshold", &BigDataValue::maxThreshold},
        {"result", &BigDataValue::result},
        {"time", &BigDataValue::time},
        {"firmware", &BigDataValue::firmware},
        {"description", &BigDataValue::description},
};

}  // namespace

bool ReadBigData(JNIEnv* env, JavaBigDataOperation* operation, BigDataOperation* record) {
    if (operation == nullptr) {
        KV_LOGE("operation is null");
        return false;
    }
    Fields fields(env, "com/quorvin/kalvornii/BigDataOperation");
    jfieldID version = fields.Id("version", kInt);
    jfieldID commandId = fields.Id("commandId", kInt);
    jfieldID operationId = fields.Id("operation", kInt);
    jfieldID bsn = fields.Id("bsn", kString);
    jfieldID station = fields.Id("station", kString);
    jfieldID cycle = fields.Id("cycle", kInt);
    if (!fields.Found()) return false;

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

bool ReadBigData(JNIEnv* env, JavaBigDataValue* value, BigDataValue* record) {
    if (value == nullptr) {
        KV_LOGE("value is null");
        return false;
    }
    Fields fields(env, "com/quorvin/kalvornii/BigDataValue");
    jfieldID version = fields.Id("version", kInt);
    jfieldID dataSource = fields.Id("dataSource", kInt);
    if (!fields.Found()) return false;
    record->version = env->GetIntField(value, version);
    record->dataSource = env->GetIntField(value, dataSource);

    jfieldID errorCode = fields.Id("errorCode", kInt);
    jfieldID itemId = fields.Id("itemId", kInt);
    jfieldID cycle = fields.Id("cycle", kInt);
    // All ids, then all objects, then all texts.
    jfieldID ids[std::size(kTexts)];
    for (size_t i = 0; i < std::size(kTexts); i++) ids[i] = fields.Id(kTexts[i].name, kString);
    if (!fields.Found()) return false;

    record->errorCode = env->GetIntField(value, errorCode);
    record->itemId = env->GetIntField(value, itemId);
    record->cycle = env->GetIntField(value, cycle);
    jstring texts[std::size(kTexts)];
    for (size_t i = 0; i < std::size(kTexts); i++) texts[i] = StringAt(env, value, ids[i]);
    for (size_t i = 0; i < std::size(kTexts); i++) {
        const char* chars = GetText(env, texts[i], kTexts[i].name);
        if (chars == nullptr) return false;
        record->*kTexts[i].chars = chars;
    }
    return true;
}

}  // namespace kalvorn
