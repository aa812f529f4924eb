#include "common/java_values.h"

#include "common/bounds_checked.h"
#include "common/failure.h"
#include "common/log.h"
#include "common/modified_utf8.h"

namespace kalvorn {

namespace {

// Null, with nothing pending, when there is no memory: nothing is thrown into Java.
jstring MakeText(JNIEnv* env, const char* text) {
    jstring made = env->NewStringUTF(IsModifiedUtf8(text) ? text : ToModifiedUtf8(text).c_str());
    if (made == nullptr) env->ExceptionClear();
    return made;
}

}  // namespace

const char* GetText(JNIEnv* env, jstring text, const char* name) {
    const char* chars = text == nullptr ? nullptr : env->GetStringUTFChars(text, nullptr);
    if (chars == nullptr) {
        env->ExceptionClear();  // out of memory is answered by the failure value, not by a throw
        KV_LOGE("%s is null", name);
    }
    return chars;
}

bool JavaText::Read(JNIEnv* env, jstring text, const char* name) {
    mEnv = env;
    mText = text;
    mChars = GetText(env, text, name);
    return mChars != nullptr;
}

void JavaText::Release() {
    if (mChars == nullptr) return;
    mEnv->ReleaseStringUTFChars(mText, mChars);
    mChars = nullptr;
}

jstring NewText(JNIEnv* env, const char* text) {
    jstring made = MakeText(env, text);
    if (made == nullptr) KV_LOGE("no memory for the Java text of \"%s\"", text);
    return made;
}

jstring InvalidService(JNIEnv* env) {
    return NewText(env, kInvalidService);
}

jintArray NewPair(JNIEnv* env, jint value) {
    jintArray array = nullptr;
    jint* elements = NewPairElements(env, &array);
    if (elements == nullptr) return nullptr;
    elements[0] = elements[1] = value;
    env->ReleaseIntArrayElements(array, elements, 0);
    return array;
}

jint* NewPairElements(JNIEnv* env, jintArray* array) {
    *array = env->NewIntArray(2);
    jint* elements = *array == nullptr ? nullptr : env->GetIntArrayElements(*array, nullptr);
    if (elements == nullptr) {
        env->ExceptionClear();
        KV_LOGE("no memory for the Java array of two results");
    }
    return elements;
}

void SetStaticText(JNIEnv* env, const char* field, const char* text) {
    jclass clazz = env->FindClass(kKvNativeInterface);
    jfieldID id = nullptr;
    // Each only after the one before succeeded: no JNI function is called with an exception
    // pending.
    if (clazz != nullptr) id = env->GetStaticFieldID(clazz, field, "Ljava/lang/String;");
    jstring value = id == nullptr ? nullptr : MakeText(env, text);
    if (value == nullptr) {
        env->ExceptionClear();
        KV_LOGE("cannot set %s to \"%s\"", field, text);
        return;
    }
    env->SetStaticObjectField(clazz, id, value);
}

bool CopyBytes(JNIEnv* env, jbyteArray array, const char* name, std::vector<char>* bytes) {
    if (array == nullptr) {
        KV_LOGE("%s is null", name);
        return false;
    }
    jbyte* elements = env->GetByteArrayElements(array, nullptr);
    if (elements == nullptr) {
        env->ExceptionClear();
        return false;
    }
    const auto length = static_cast<size_t>(env->GetArrayLength(array));
    *bytes = std::vector<char>(length);
    if (length != 0) memcpy_s(bytes->data(), length, elements, length);
    env->ReleaseByteArrayElements(array, elements, 0);
    return true;
}

}  // namespace kalvorn
