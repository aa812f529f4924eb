#pragma once

#include <jni.h>
#include <stddef.h>

#include <string_view>

// Compares a JNI method descriptor with the C++ function it is registered for, at compile time. The
// platform's own nativehelper/jni_macros.h takes neither unsigned int nor a function that ignores
// its arguments, and brings a static initialiser with its <iostream>.
namespace descriptor {

template <typename T>
struct Type;
template <>
struct Type<jint> {
    static constexpr std::string_view text = "I";
};
template <>
struct Type<unsigned int> : Type<jint> {};
template <>
struct Type<jstring> {
    static constexpr std::string_view text = "Ljava/lang/String;";
};
template <>
struct Type<jbyteArray> {
    static constexpr std::string_view text = "[B";
};
template <>
struct Type<jintArray> {
    static constexpr std::string_view text = "[I";
};

/** Takes one type off the front of the descriptor; false when another type stands there. */
template <typename T>
constexpr bool Take(std::string_view* descriptor) {
    constexpr std::string_view text = Type<T>::text;
    if (descriptor->substr(0, text.size()) != text) return false;
    descriptor->remove_prefix(text.size());
    return true;
}

/** A plain jobject fits every class. */
template <>
constexpr bool Take<jobject>(std::string_view* descriptor) {
    const size_t end = descriptor->find(';');
    if (descriptor->empty() || descriptor->front() != 'L' || end == std::string_view::npos) {
        return false;
    }
    descriptor->remove_prefix(end + 1);
    return true;
}

constexpr bool TakeMark(std::string_view* descriptor, char mark) {
    if (descriptor->empty() || descriptor->front() != mark) return false;
    descriptor->remove_prefix(1);
    return true;
}

/** True when the descriptor is exactly that of the function's Java method. */
template <typename Result, typename... Args>
constexpr bool Fits(Result (*)(JNIEnv*, jobject, Args...), std::string_view descriptor) {
    return TakeMark(&descriptor, '(') && (Take<Args>(&descriptor) && ...) &&
           TakeMark(&descriptor, ')') && Take<Result>(&descriptor) && descriptor.empty();
}

/** A function that ignores what the virtual machine passes fits a method without arguments. */
template <typename Result>
constexpr bool Fits(Result (*)(), std::string_view descriptor) {
    return TakeMark(&descriptor, '(') && TakeMark(&descriptor, ')') && Take<Result>(&descriptor) &&
           descriptor.empty();
}

}  // namespace descriptor
