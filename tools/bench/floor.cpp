// The floor: for one method of each shape and backend the least that a native method can do. The
// same conversions, the same one service call and the same log lines, the dispatch's included; a
// reference of its own to the service, and nothing thrown into Java. What the library does besides
// is not here: it chooses a backend on every call, survives services that die meanwhile on other
// threads, and looks classes and later revisions up on every call on purpose.
//
// A library of its own, compiled and linked as the device code is; JNI_OnLoad connects it to
// whatever backend is there and registers its methods for that.

#include <binder/IServiceManager.h>
#include <jni.h>
#include <stdlib.h>
#include <string.h>
#include <vendor/zantor/hardware/qxfactoryinterface/1.1/IQxFactoryInterface.h>
#include <vendor/zantor/hardware/qxfactoryinterface/IQxFactoryInterface.h>
#include <vendor/zantor/hardware/sensors/1.2/ISensors.h>
#include <vendor/zantor/hardware/sensors/ISensors.h>

#include <string>
#include <type_traits>
#include <vector>

#include "common/bounds_checked.h"
#include "common/failure.h"
#include "common/log.h"
#include "common/service_constants.h"
#include "jni/descriptor.h"

using namespace kalvorn;
using android::sp;
using android::hardware::hidl_string;

namespace {

const char* ReadText(JNIEnv* env, jstring text, const char* name) {
    const char* chars = text == nullptr ? nullptr : env->GetStringUTFChars(text, nullptr);
    if (chars == nullptr) {
        env->ExceptionClear();
        KV_LOGE("%s is null", name);
    }
    return chars;
}

// A service may send any bytes. What is not ASCII nobody sends here, so how to mend it is left out.
jstring NewText(JNIEnv* env, const char* text) {
    for (const char* p = text; *p != 0; p++) {
        if (static_cast<signed char>(*p) < 0) abort();
    }
    jstring made = env->NewStringUTF(text);
    if (made == nullptr) {
        env->ExceptionClear();
        KV_LOGE("no memory for the Java text of \"%s\"", text);
    }
    return made;
}

jint* NewPair(JNIEnv* env, jintArray* array) {
    *array = env->NewIntArray(2);
    jint* elements = *array == nullptr ? nullptr : env->GetIntArrayElements(*array, nullptr);
    if (elements == nullptr) {
        env->ExceptionClear();
        KV_LOGE("no memory for the Java array of two results");
    }
    return elements;
}

/** The bytes of a Java array as hexadecimal text, by way of a bounds-checked copy; empty for none.
 */
std::string ReadHex(JNIEnv* env, jbyteArray array) {
    jbyte* elements = array == nullptr ? nullptr : env->GetByteArrayElements(array, nullptr);
    if (elements == nullptr) {
        env->ExceptionClear();
        return "";
    }
    const auto length = static_cast<size_t>(env->GetArrayLength(array));
    std::vector<jbyte> bytes(length);
    if (length != 0) memcpy_s(bytes.data(), length, elements, length);
    env->ReleaseByteArrayElements(array, elements, 0);
    std::string text(2 * bytes.size(), '\0');
    char* out = text.data();
    for (const jbyte byte : bytes) {
        *out++ = "0123456789abcdef"[static_cast<unsigned char>(byte) >> 4];
        *out++ = "0123456789abcdef"[byte & 0xf];
    }
    return text;
}

// Looked up once; the library does it on every call.
struct OperationFields {
    jfieldID version, commandId, operation, bsn, station, cycle;
} g_fields;

void Assign(std::string* to, const char* text) {
    *to = text;
}

void Assign(hidl_string* to, const char* text) {
    to->setToExternal(text, strlen(text));
}

// The texts are never released, as the library keeps them.
template <typename Record>
bool ReadOperation(JNIEnv* env, jobject object, Record* record) {
    if (object == nullptr) return false;
    record->version = env->GetIntField(object, g_fields.version);
    record->commandId = env->GetIntField(object, g_fields.commandId);
    record->operation = env->GetIntField(object, g_fields.operation);
    auto* bsn = static_cast<jstring>(env->GetObjectField(object, g_fields.bsn));
    auto* station = static_cast<jstring>(env->GetObjectField(object, g_fields.station));
    record->cycle = env->GetIntField(object, g_fields.cycle);
    const char* stationText = ReadText(env, station, "station");
    const char* bsnText = stationText == nullptr ? nullptr : ReadText(env, bsn, "bsn");
    if (bsnText == nullptr) return false;
    Assign(&record->station, stationText);
    Assign(&record->bsn, bsnText);
    return true;
}

namespace over_aidl {

using vendor::zantor::hardware::qxfactoryinterface::FmdCmdData;
using vendor::zantor::hardware::qxfactoryinterface::IFacIntStr;
using vendor::zantor::hardware::qxfactoryinterface::IQxFactoryInterface;
using vendor::zantor::hardware::sensors::ISensors;

sp<IQxFactoryInterface> g_factory;
sp<ISensors> g_sensors;

jint GetSensorSelfTestResult(JNIEnv*, jobject, jint sensorId) {
    KV_LOGI("GetSensorSelfTestResultByAidl");
    const sp<ISensors> sensors = g_sensors;
    if (sensors == nullptr) return kServiceAbsent;
    int32_t result = 0;
    sensors->getSensorSelfTestResult(sensorId, &result);
    KV_LOGI("Get sensor self test value = %d\n", result);
    return result;
}

jint WriteNv(JNIEnv* env, jobject, jstring value, jint nvId) {
    KV_LOGE("WriteNvByAidl");
    const sp<IQxFactoryInterface> factory = g_factory;
    if (factory == nullptr) return kServiceAbsent;
    const char* text = ReadText(env, value, "value");
    if (text == nullptr) return kServiceAbsent;
    int32_t result = 0;
    factory->writeNv(nvId, text, &result);
    KV_LOGI("writeNv values = %d, nvValues = %s", result, text);
    env->ReleaseStringUTFChars(value, text);
    return result;
}

jstring ReadNv(JNIEnv* env, jobject, jint nvId) {
    KV_LOGE("ReadNvByAidl");
    const sp<IQxFactoryInterface> factory = g_factory;
    if (factory == nullptr) return NewText(env, kInvalidService);
    IFacIntStr reply{};
    factory->readNv(nvId, &reply);
    KV_LOGI("ReadNv values = %d, result = %s", reply.resultCode, reply.text.c_str());
    if (reply.resultCode == -1) return nullptr;
    KV_LOGI("Nv read success");
    return NewText(env, reply.text.c_str());
}

jstring EmmcTest(JNIEnv* env, jobject, jstring testScene, jstring para, jstring status) {
    KV_LOGE("EmmcTestByAidl");
    const sp<IQxFactoryInterface> factory = g_factory;
    if (factory == nullptr) return NewText(env, kInvalidService);
    const char* sceneText = ReadText(env, testScene, "testScene");
    const char* paraText = ReadText(env, para, "para");
    const char* statusText = ReadText(env, status, "status");
    if (sceneText == nullptr || paraText == nullptr || statusText == nullptr) {
        return NewText(env, kInvalidService);
    }
    IFacIntStr reply{};
    factory->emmcTest(sceneText, paraText, statusText, &reply);
    KV_LOGI("emmc test result = %d, testScene = %s, para = %s, status = %s, out = %s\n",
            reply.resultCode, sceneText, paraText, statusText, reply.text.c_str());
    env->ReleaseStringUTFChars(testScene, sceneText);
    env->ReleaseStringUTFChars(para, paraText);
    env->ReleaseStringUTFChars(status, statusText);
    if (reply.resultCode != 0) return NewText(env, reply.text.c_str());
    KV_LOGI("emmcTest--> emmc test success\n");
    return NewText(env, "success");
}

jint GetVerifySignatureResult(JNIEnv* env, jobject, jbyteArray signature) {
    KV_LOGI("GetVerifySignatureResultByAidl");
    const sp<IQxFactoryInterface> factory = g_factory;
    if (factory == nullptr) return kServiceAbsent;
    const std::string text = ReadHex(env, signature);
    if (text.empty()) return kLocalFailure;
    int32_t ret = kServiceAbsent;
    factory->writeNv(SignatureNvId, text, &ret);
    KV_LOGI("getVerifySignatureResult, ret: %d", ret);
    return ret;
}

jint KvSendFmdOperation(JNIEnv* env, jobject, JavaBigDataOperation* operation) {
    KV_LOGI("KvSendFmdOperationByAidl");
    const sp<IQxFactoryInterface> factory = g_factory;
    if (factory == nullptr) return kServiceAbsent;
    FmdCmdData data{};
    if (!ReadOperation(env, operation, &data)) return kServiceAbsent;
    KV_LOGI("Version: %d; commandId: %d; operation: %d; bsn: %s; station: %s; cycle: %d",
            data.version, data.commandId, data.operation, data.bsn.c_str(), data.station.c_str(),
            data.cycle);
    int32_t result = 0;
    factory->sendBigDataOperation(data, &result);
    KV_LOGI("SendBigDataOperation, result: %d", result);
    return result;
}

jintArray KvSetTestItemName(JNIEnv* env, jobject, jstring mainItemName, jstring subItemName) {
    KV_LOGI("KvSetTestItemNameByAidl");
    const char* mainName = ReadText(env, mainItemName, "mainItemName");
    const char* subName = ReadText(env, subItemName, "subItemName");
    const sp<IQxFactoryInterface> factory = g_factory;
    if (mainName == nullptr || subName == nullptr || factory == nullptr) return nullptr;
    KV_LOGI("KvSetTestItemName, mainItemName = %s, subItemName = %s\n", mainName, subName);
    jintArray array = nullptr;
    jint* results = NewPair(env, &array);
    if (results == nullptr) return nullptr;
    results[0] = results[1] = -1;
    factory->writeOemSubInfo(kTestItem, kMainName, kItemLength,
                             std::vector<uint8_t>(mainName, mainName + strlen(mainName)),
                             &results[0]);
    KV_LOGI("kvSetTestItemName, main result = %d\n", results[0]);
    factory->writeOemSubInfo(kTestItem, kSubName, kItemLength,
                             std::vector<uint8_t>(subName, subName + strlen(subName)), &results[1]);
    KV_LOGI("kvSetTestItemName, sub result = %d\n", results[1]);
    env->ReleaseStringUTFChars(mainItemName, mainName);
    env->ReleaseStringUTFChars(subItemName, subName);
    env->ReleaseIntArrayElements(array, results, 0);
    return array;
}

/** False when there is none. */
bool Connect() {
    const auto service = [](const android::String16& descriptor, const char* instance) {
        return android::defaultServiceManager()->checkService(descriptor +
                                                              android::String16(instance));
    };
    g_factory = IQxFactoryInterface::asInterface(
            service(IQxFactoryInterface::descriptor, "/qxfactoryinterface_hal"));
    g_sensors = ISensors::asInterface(service(ISensors::descriptor, "/default"));
    return g_factory != nullptr;
}

}  // namespace over_aidl

namespace over_hidl {

using android::hardware::Return;
using vendor::zantor::hardware::qxfactoryinterface::V1_0::FmdCmdData;
using vendor::zantor::hardware::qxfactoryinterface::V1_1::IQxFactoryInterface;
using vendor::zantor::hardware::sensors::V1_2::ISensors;

sp<IQxFactoryInterface> g_factory;
sp<ISensors> g_sensors;

hidl_string Borrow(const char* chars) {
    hidl_string text;
    text.setToExternal(chars, strlen(chars));
    return text;
}

jint GetSensorSelfTestResult(JNIEnv*, jobject, jint sensorId) {
    KV_LOGI("GetSensorSelfTestResultByHidl");
    const sp<ISensors> sensors = g_sensors;
    if (sensors == nullptr) return kServiceAbsent;
    const int32_t result = sensors->getSensorSelfTestResult(sensorId);
    KV_LOGD("get sensor self test value = %d\n", result);
    return result;
}

jint WriteNv(JNIEnv* env, jobject, jstring value, jint nvId) {
    KV_LOGE("WriteNvByHidl");
    const sp<IQxFactoryInterface> factory = g_factory;
    if (factory == nullptr) return kServiceAbsent;
    const char* text = ReadText(env, value, "value");
    if (text == nullptr) return kServiceAbsent;
    const int32_t result = factory->writeNv(nvId, Borrow(text));
    KV_LOGE("WriteNv value = %d, nvValue = %s", result, text);
    KV_LOGE("nv write success");
    env->ReleaseStringUTFChars(value, text);
    return result;
}

jstring ReadNv(JNIEnv* env, jobject, jint nvId) {
    KV_LOGE("ReadNvByHidl");
    const sp<IQxFactoryInterface> factory = g_factory;
    if (factory == nullptr) return NewText(env, kInvalidService);
    int32_t code = 0;
    hidl_string value;
    const Return<void> status =
            factory->readNv(nvId, [&](int32_t resultCode, const hidl_string& text) {
                code = resultCode;
                value = text;
            });
    (void)status.isOk();
    KV_LOGE("ReadNv value = %d, result = %s", code, value.c_str());
    if (code == -1) return nullptr;
    KV_LOGD("nv read success");
    return NewText(env, value.c_str());
}

jstring EmmcTest(JNIEnv* env, jobject, jstring testScene, jstring para, jstring status) {
    KV_LOGE("EmmcTestByHidl");
    const sp<IQxFactoryInterface> factory = g_factory;
    if (factory == nullptr) return NewText(env, kInvalidService);
    const char* sceneText = ReadText(env, testScene, "testScene");
    const char* paraText = ReadText(env, para, "para");
    const char* statusText = ReadText(env, status, "status");
    if (sceneText == nullptr || paraText == nullptr || statusText == nullptr) {
        return NewText(env, kInvalidService);
    }
    int32_t code = 0;
    hidl_string out;
    const Return<void> outcome =
            factory->emmcTest(Borrow(sceneText), Borrow(paraText), Borrow(statusText),
                              [&](int32_t resultCode, const hidl_string& text) {
                                  code = resultCode;
                                  out = text;
                              });
    (void)outcome.isOk();
    KV_LOGE("emmc test value = %d, testScene = %s, para = %s, status = %s, out = %s\n", code,
            sceneText, paraText, statusText, out.c_str());
    env->ReleaseStringUTFChars(testScene, sceneText);
    env->ReleaseStringUTFChars(para, paraText);
    env->ReleaseStringUTFChars(status, statusText);
    if (code != 0) return NewText(env, out.c_str());
    KV_LOGE("EmmcTest--> emmc test success\n");
    return NewText(env, "success");
}

jint GetVerifySignatureResult(JNIEnv* env, jobject, jbyteArray signature) {
    KV_LOGI("GetVerifySignatureResultByHidl");
    const sp<IQxFactoryInterface> factory = g_factory;
    if (factory == nullptr) return kServiceAbsent;
    const std::string text = ReadHex(env, signature);
    if (text.empty()) return kLocalFailure;
    const int32_t ret = factory->writeNv(SignatureNvId, Borrow(text.c_str()));
    KV_LOGD("GetVerifySignatureResult, ret: %d", ret);
    return ret;
}

jint KvSendFmdOperation(JNIEnv* env, jobject, JavaBigDataOperation* operation) {
    KV_LOGI("KvSendFmdOperationByHidl");
    const sp<IQxFactoryInterface> factory = g_factory;
    if (factory == nullptr) return kServiceAbsent;
    FmdCmdData data{};
    if (!ReadOperation(env, operation, &data)) return kServiceAbsent;
    KV_LOGD("version: %d; commandId: %d; operation: %d; bsn: %s; station: %s; cycle: %d",
            data.version, data.commandId, data.operation, data.bsn.c_str(), data.station.c_str(),
            data.cycle);
    return factory->sendBigDataOperation(data);
}

jintArray KvSetTestItemName(JNIEnv* env, jobject, jstring mainItemName, jstring subItemName) {
    KV_LOGI("KvSetTestItemNameByHidl");
    const char* mainName = ReadText(env, mainItemName, "mainItemName");
    const char* subName = ReadText(env, subItemName, "subItemName");
    const sp<IQxFactoryInterface> factory = g_factory;
    if (mainName == nullptr || subName == nullptr || factory == nullptr) return nullptr;
    KV_LOGD("KvSetTestItemName, mainItemName = %s, subItemName = %s\n", mainName, subName);
    jintArray array = nullptr;
    jint* results = NewPair(env, &array);
    if (results == nullptr) return nullptr;
    results[0] = factory->writeOemSubInfo(kTestItem, kMainName, kItemLength, Borrow(mainName));
    KV_LOGD("KvSetTestItemName, main result = %d\n", results[0]);
    results[1] = factory->writeOemSubInfo(kTestItem, kSubName, kItemLength, Borrow(subName));
    KV_LOGD("KvSetTestItemName, sub result = %d\n", results[1]);
    env->ReleaseStringUTFChars(mainItemName, mainName);
    env->ReleaseStringUTFChars(subItemName, subName);
    env->ReleaseIntArrayElements(array, results, 0);
    return array;
}

bool Connect() {
    using IQxFactoryInterfaceV1_0 =
            vendor::zantor::hardware::qxfactoryinterface::V1_0::IQxFactoryInterface;
    g_factory = IQxFactoryInterface::castFrom(
            IQxFactoryInterfaceV1_0::getService("qxfactoryinterface_hal", /* getStub */ false));
    g_sensors = ISensors::getService("default", /* getStub */ false);
    return g_factory != nullptr;
}

}  // namespace over_hidl

void FindFields(JNIEnv* env) {
    jclass clazz = env->FindClass("com/quorvin/kalvornii/BigDataOperation");
    g_fields = {env->GetFieldID(clazz, "version", "I"),
                env->GetFieldID(clazz, "commandId", "I"),
                env->GetFieldID(clazz, "operation", "I"),
                env->GetFieldID(clazz, "bsn", "Ljava/lang/String;"),
                env->GetFieldID(clazz, "station", "Ljava/lang/String;"),
                env->GetFieldID(clazz, "cycle", "I")};
}

/** The function as a Java method. */
template <auto function>
JNINativeMethod Row(const char* javaName) {
    using Function = std::remove_pointer_t<decltype(function)>;
    return {javaName, descriptor::Of<Function>::text.data(), reinterpret_cast<void*>(function)};
}

// clang-format off
#define ROWS(backend) { \
    Row<backend::GetSensorSelfTestResult>("nativeGetSensorSelfTestResult"), \
    Row<backend::WriteNv>("nativeWriteNvValue"), \
    Row<backend::ReadNv>("nativeReadNvValue"), \
    Row<backend::EmmcTest>("nativeEmmcTest"), \
    Row<backend::GetVerifySignatureResult>("nativeGetVerifySignatureResult"), \
    Row<backend::KvSendFmdOperation>("nativeSendBigDataOperation"), \
    Row<backend::KvSetTestItemName>("nativeSetTestItemName")}
// clang-format on
const JNINativeMethod kAidlMethods[] = ROWS(over_aidl);
const JNINativeMethod kHidlMethods[] = ROWS(over_hidl);

}  // namespace

extern "C" JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM* vm, void*) {
    JNIEnv* env = nullptr;
    if (vm->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_4) != JNI_OK) return -1;
    FindFields(env);
    jclass clazz = env->FindClass("com/quorvin/kalvornii/bench/Floor");
    const bool isAidl = over_aidl::Connect();
    if (!isAidl && !over_hidl::Connect()) return -1;
    const jint failed = env->RegisterNatives(clazz, isAidl ? kAidlMethods : kHidlMethods, 7);
    return failed == 0 ? JNI_VERSION_1_4 : -1;
}

extern "C" JNIEXPORT void JNICALL JNI_OnUnload(JavaVM*, void*) {
    over_aidl::g_factory.clear();
    over_aidl::g_sensors.clear();
    over_hidl::g_factory.clear();
    over_hidl::g_sensors.clear();
}
