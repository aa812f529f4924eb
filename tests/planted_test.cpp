// Faults that only -Xcheck:jni sees: a run with one of these has to fail for its warning alone.

#include "harness.h"

namespace {

class PlantedTest : public LibraryTest {};

TEST_F(PlantedTest, LeakedReferences) {
    for (int i = 0; i < 200; i++) java::String("leaked");
}

TEST_F(PlantedTest, PendingException) {
    JNIEnv* env = java::Env();
    env->ThrowNew(env->FindClass("java/lang/RuntimeException"), "pending");
    java::String("asked for meanwhile");
    env->ExceptionClear();
}

}  // namespace
