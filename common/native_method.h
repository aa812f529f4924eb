#pragma once

#include <jni.h>

namespace kalvorn {

/** The Java interface's big-data objects: types of their own, so that none passes for another. */
class JavaBigDataOperation : public _jobject {};
class JavaBigDataValue : public _jobject {};

template <typename Signature>
struct NativeMethodOf;
template <typename Result, typename... Parameters>
struct NativeMethodOf<Result(Parameters...)> {
    using Type = Result(JNIEnv* env, jobject obj, Parameters...);
};

/** The function behind a Java method: of int(jstring text), int(JNIEnv*, jobject, jstring). */
template <typename Signature>
using NativeMethod = typename NativeMethodOf<Signature>::Type;

}  // namespace kalvorn
