#include "common/java_values.h"

#include "common/bounds_checked.h"
#include "common/log.h"

namespace {

constexpr unsigned char kFourByteLead = 0xf0;
constexpr unsigned char kLastFourByteLead = 0xf4;

bool IsContinuation(unsigned char byte) {
    return (byte & 0xc0) == 0x80;
}

// Anything else that begins like one, in a text of another encoding, is left as it is.
bool IsFourByteCharacter(const unsigned char* p) {
    return p[0] >= kFourByteLead && p[0] <= kLastFourByteLead && IsContinuation(p[1]) &&
           IsContinuation(p[2]) && IsContinuation(p[3]);
}

bool HasFourByteCharacter(const char* text) {
    for (; *text != '\0'; text++) {
        if (static_cast<unsigned char>(*text) >= kFourByteLead) return true;
    }
    return false;
}

void AppendThreeBytes(std::string* out, unsigned int unit) {
    out->push_back(static_cast<char>(0xe0 | (unit >> 12)));
    out->push_back(static_cast<char>(0x80 | ((unit >> 6) & 0x3f)));
    out->push_back(static_cast<char>(0x80 | (unit & 0x3f)));
}

std::string ToModifiedUtf8(const char* text) {
    std::string out;
    for (auto p = reinterpret_cast<const unsigned char*>(text); *p != 0;) {
        if (!IsFourByteCharacter(p)) {
            out.push_back(static_cast<char>(*p++));
            continue;
        }
        const unsigned int character = ((p[0] & 0x07u) << 18) | ((p[1] & 0x3fu) << 12) |
                                       ((p[2] & 0x3fu) << 6) | (p[3] & 0x3fu);
        const unsigned int offset = character - 0x10000;
        AppendThreeBytes(&out, 0xd800 | ((offset >> 10) & 0x3ff));
        AppendThreeBytes(&out, 0xdc00 | (offset & 0x3ff));
        p += 4;
    }
    return out;
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
    env_ = env;
    text_ = text;
    chars_ = GetText(env, text, name);
    return chars_ != nullptr;
}

void JavaText::Release() {
    if (chars_ == nullptr) return;
    env_->ReleaseStringUTFChars(text_, chars_);
    chars_ = nullptr;
}

jstring NewText(JNIEnv* env, const char* text) {
    if (!HasFourByteCharacter(text)) return env->NewStringUTF(text);
    return env->NewStringUTF(ToModifiedUtf8(text).c_str());
}

jintArray NewPair(JNIEnv* env, jint value) {
    const jint values[] = {value, value};
    jintArray array = env->NewIntArray(2);
    if (array != nullptr) env->SetIntArrayRegion(array, 0, 2, values);
    return array;
}

void SetStaticText(JNIEnv* env, const char* field, const char* text) {
    jclass clazz = env->FindClass(kKvNativeInterface);
    jfieldID id = env->GetStaticFieldID(clazz, field, "Ljava/lang/String;");
    env->SetStaticObjectField(clazz, id, NewText(env, text));
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
    bytes->assign(length, 0);
    if (length != 0) memcpy_s(bytes->data(), length, elements, length);
    env->ReleaseByteArrayElements(array, elements, 0);
    return true;
}
