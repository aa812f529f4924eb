#pragma once

#include <jni.h>

#include <array>
#include <string_view>

#include "common/native_method.h"

// JNI method descriptors, made of the C++ functions' types at compile time.
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
template <>
struct Type<kalvorn::JavaBigDataOperation*> {
    static constexpr std::string_view text = "Lcom/quorvin/kalvornii/BigDataOperation;";
};
template <>
struct Type<kalvorn::JavaBigDataValue*> {
    static constexpr std::string_view text = "Lcom/quorvin/kalvornii/BigDataValue;";
};

template <typename Result, typename... Parameters>
constexpr auto Join() {
    constexpr size_t size = (Type<Parameters>::text.size() + ... + Type<Result>::text.size());
    std::array<char, size + sizeof("()")> joined{};
    char* end = joined.data();
    for (std::string_view part : {std::string_view("("), Type<Parameters>::text...,
                                  std::string_view(")"), Type<Result>::text}) {
        for (char letter : part) *end++ = letter;
    }
    return joined;
}

/** Of<Function>::text is the descriptor of the Java method that the function implements. */
template <typename Function>
struct Of;
template <typename Result, typename... Parameters>
struct Of<Result(JNIEnv*, jobject, Parameters...)> {
    static constexpr auto text = Join<Result, Parameters...>();
};
/** A function that ignores what the virtual machine passes fits a method without arguments. */
template <typename Result>
struct Of<Result()> : Of<Result(JNIEnv*, jobject)> {};

}  // namespace descriptor
