// What can be tested only where the library's sources are linked into the program.

#include <set>

#include "aidl/kalvorn_aidl_manager.h"
#include "every_method.h"
#include "hidl/kalvorn_hidl_manager.h"
#include "jni/dispatch.h"
#include "jni/local_methods.h"

namespace {

class InternalsTest : public LibraryTest {};

/** A backend's operation, callable with a row's arguments without the dispatch in front of it. */
using Operation = std::function<std::string(const Args&)>;

template <typename T>
T FromJava(const java::Arg& arg) {
    if constexpr (std::is_integral_v<T>) {
        return static_cast<T>(std::get<int>(arg));
    } else if (const auto* text = std::get_if<const char*>(&arg)) {
        return static_cast<T>(static_cast<jobject>(java::String(*text)));
    } else {
        return nullptr;
    }
}

template <typename R, typename... A, size_t... I>
Operation Bind(R (*operation)(JNIEnv*, jobject, A...), std::index_sequence<I...>) {
    return [operation]([[maybe_unused]] const Args& args) {
        const java::LocalFrame frame;
        return java::Show(operation(java::Env(), nullptr, FromJava<A>(args[I])...));
    };
}
template <typename R, typename... A>
Operation Op(R (*operation)(JNIEnv*, jobject, A...)) {
    return Bind(operation, std::index_sequence_for<A...>{});
}

// Java meets a null AIDL service only when it is released between query and call.
TEST_F(InternalsTest, WithoutItsServiceBehindTheDispatch) {
    const std::map<std::string, Operation> operations{
#define TWO_BACKENDS(javaName, name, query, priority, signature) {#javaName, Op(native_aidl::name)},
#define AIDL_ONLY(javaName, name, signature) {#javaName, Op(native_aidl::name)},
#define LOCAL(javaName, name, signature)
#define DEVIATING(javaName, name, signature)
#include "jni/methods.inc"
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.method);
        ASSERT_EQ(1u, operations.count(row.method)) << "asks no service by jni/methods.inc";
        const Operation& operation = operations.at(row.method);
        EXPECT_EQ(row.absent, operation(row.args));
        EXPECT_EQ(Split(row.aidlAbsentLine), TakeLog());
        if (row.method == std::string("nativeSetTestItemName")) continue;  // reads its texts first
        Args nulls = row.args;
        for (java::Arg& arg : nulls) {
            if (!std::holds_alternative<int>(arg)) arg = nullptr;
        }
        EXPECT_EQ(row.absent, operation(nulls));
        EXPECT_EQ(Split(row.aidlAbsentLine), TakeLog());
    }
}

// intended: without its service the item names and the array's elements are kept.
TEST_F(InternalsTest, ItemNamesOfNoServiceAreKept) {
    for (auto* operation : {native_aidl::KvSetTestItemName, native_hidl::KvSetTestItemName}) {
        const java::CountJniUse count;
        operation(java::Env(), nullptr, java::String("m"), java::String("s"));
        EXPECT_EQ(2, count.use().textsTaken - count.use().textsReleased);
        EXPECT_EQ(1, count.use().intsTaken);
        EXPECT_EQ(1, count.use().intsCommitted);
        EXPECT_EQ(0, count.use().intsReleased);
    }
}

TEST_F(InternalsTest, TheTableIsThatOfTheJavaClass) {
    std::set<std::string> rows;
    for (const JNINativeMethod& row : kMethods) rows.insert(std::string(row.name) + row.signature);
    std::string listed;
    for (const std::string& row : rows) listed += row + "\n";
    EXPECT_EQ(std::size(kMethods), rows.size()) << "a row stands twice in jni/methods.inc";
    EXPECT_EQ(listed, java::DeclaredNatives())
            << "jni/methods.inc (first) has to have a row for each native method of "
               "KvNativeInterface.java (second), of the same signature.";
}

TEST_F(InternalsTest, McuCommandsNoteTheVirtualMachine) {
    Load();
    for (const java::Arg& data : {java::Arg(java::Bytes(5)), java::Arg(nullptr)}) {
        g_javaVm = nullptr;
        EXPECT_EQ("0", java::Call("nativeSendCommandMcu", {1, 2, data}));
        EXPECT_EQ(java::Vm(), g_javaVm);
    }
}

// As the virtual machine calls it, by a known reference.
TEST_F(InternalsTest, UnregisterCallbackTakesItsObjectForTheServiceId) {
    UnregisterCallback(java::Env(), 4660, -7);
    EXPECT_EQ(Lines{"I UnregisterCallback, result: -7 , serviceId: 4660"}, TakeLog());
}

}  // namespace
