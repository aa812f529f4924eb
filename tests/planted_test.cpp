// Faults that the harness or -Xcheck:jni sees: a run with one of these has to fail.

#include <gtest/gtest-spi.h>

#include "harness.h"

namespace {

class PlantedTest : public LibraryTest {};

void Leak(int references) {
    for (int i = 0; i < references; i++) java::String("leaked");
}

// Too few for the virtual machine's warning: the test's frame has room for them.
TEST_F(PlantedTest, LeakedReferences) {
    const java::LibraryCall call("a leak");
    Leak(17);
}

// For its warning alone.
TEST_F(PlantedTest, PendingException) {
    JNIEnv* env = java::Env();
    env->ThrowNew(env->FindClass("java/lang/RuntimeException"), "pending");
    java::String("asked for meanwhile");
    env->ExceptionClear();
}

TEST_F(LibraryTest, CountsTheReferencesThatACallLeavesBehind) {
    JNIEnv* env = java::Env();
    Load();
    {
        const java::LibraryCall call("a call at the limit");
        Leak(15);
        for (int i = 0; i < 20; i++) env->DeleteLocalRef(env->FindClass("java/lang/Object"));
        env->PushLocalFrame(32);
        Leak(20);
        env->PopLocalFrame(java::String("the sixteenth"));
    }
    EXPECT_NONFATAL_FAILURE(
            {
                const java::LibraryCall call("a leak");
                env->PushLocalFrame(32);
                Leak(16);
                env->PopLocalFrame(java::String("the first"));
                Leak(16);
                java::Call("nativeGetTestResult", {7});  // leaves one of its own
            },
            "local references left behind by a leak");
}

}  // namespace
