#pragma once

#include <jni.h>

#include <string>
#include <vector>

namespace kalvorn {

/** The one Java class that the library serves. */
constexpr const char* kKvNativeInterface = "com/quorvin/kalvornii/KvNativeInterface";

/**
 * Modified UTF-8 of a Java string, to be given back with ReleaseStringUTFChars. A null string, and
 * one for which there is no memory (its exception is cleared), logs "<name> is null" and yields
 * null: the operation then calls no service and returns what it returns when its service is absent.
 */
const char* GetText(JNIEnv* env, jstring text, const char* name);

/**
 * A Java string's modified UTF-8 for the length of an operation, released with the object.
 *
 *     JavaText scene, para;
 *     if (!scene.Read(env, testScene, "testScene") || !para.Read(env, paraText, "para")) {
 *         return kServiceAbsent;
 *     }
 */
class JavaText {
  public:
    JavaText() = default;
    ~JavaText() { Release(); }
    JavaText(const JavaText&) = delete;
    JavaText& operator=(const JavaText&) = delete;

    /** Reads the string as GetText does; false when it is null. Once per object. */
    bool Read(JNIEnv* env, jstring text, const char* name);

    /** Releases the characters early; c_str() is null from then on. */
    void Release();

    /** Never releases the characters: for the operations that keep them on purpose. */
    void Keep() { mChars = nullptr; }

    const char* c_str() const { return mChars; }

  private:
    JNIEnv* mEnv;  // of the characters, when there are any
    jstring mText;
    const char* mChars = nullptr;
};

/**
 * A new Java string of a service's text, which ends at its first zero byte and may be any bytes:
 * what Java cannot take is replaced as in ToModifiedUtf8. Without memory for it: null, after one
 * line, and nothing is thrown.
 */
jstring NewText(JNIEnv* env, const char* text);
inline jstring NewText(JNIEnv* env, const std::string& text) {
    return NewText(env, text.c_str());
}

/** What a text operation answers without its service: the new Java string "INVALID_SERVICE". */
jstring InvalidService(JNIEnv* env);

/** A new Java array of two elements of this value; without memory for it as NewText. */
jintArray NewPair(JNIEnv* env, jint value);

/** The elements of a new Java array of two, to be released; without memory for them as NewText. */
jint* NewPairElements(JNIEnv* env, jintArray* array);

/**
 * Stores a new Java string of the text in a static String field of KvNativeInterface. When that
 * cannot be done the field stays as it was, after one line, and nothing is thrown.
 */
void SetStaticText(JNIEnv* env, const char* field, const char* text);

/**
 * Copies a Java byte array. False, after the line "<name> is null", when there is no array, and
 * false without a line when its elements cannot be had.
 */
bool CopyBytes(JNIEnv* env, jbyteArray array, const char* name, std::vector<char>* bytes);

}  // namespace kalvorn
