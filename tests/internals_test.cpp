// What can be tested only where the library's sources are linked into the program.

#include <set>

#include "aidl/kalvorn_aidl_manager.h"
#include "hidl/kalvorn_hidl_manager.h"
#include "jni/dispatch.h"
#include "jni/local_methods.h"
#include "samples.h"

namespace {

class InternalsTest : public LibraryTest {};

// The dispatch of this one logs nothing between its query and the operation.
TEST_F(InternalsTest, SignalTestWithoutItsServiceBehindTheDispatch) {
    EXPECT_EQ("\"INVALID_SERVICE\"",
              java::Show(native_aidl::ChipTtRssiTest(java::Env(), nullptr, nullptr)));
    EXPECT_EQ(Lines{"E ChipSrvSat is null"}, TakeLog());
}

// intended: without its service the item names and the array's elements are kept.
TEST_F(InternalsTest, ItemNamesOfNoServiceAreKept) {
    for (auto* operation : {native_aidl::KvSetTestItemName, native_hidl::KvSetTestItemName}) {
        const java::CountJniUse count;
        const java::LibraryCall call("KvSetTestItemName");
        operation(java::Env(), nullptr, java::String("m"), java::String("s"));
        EXPECT_EQ(2, count.use().textsTaken - count.use().textsReleased);
        EXPECT_EQ(1, count.use().intsTaken);
        EXPECT_EQ(1, count.use().intsCommitted);
        EXPECT_EQ(0, count.use().intsReleased);
    }
}

TEST_F(InternalsTest, TheTableIsThatOfTheJavaClass) {
    std::set<std::string> rows;
    for (jint i = 0; i < kMethodCount; i++) {
        rows.insert(std::string(kMethods[i].name) + kMethods[i].signature);
    }
    std::string listed;
    for (const std::string& row : rows) listed += row + "\n";
    EXPECT_EQ(static_cast<size_t>(kMethodCount), rows.size())
            << "a row stands twice in jni/methods.inc";
    EXPECT_EQ(listed, java::DeclaredNatives())
            << "jni/methods.inc (first) has to have a row for each native method of "
               "KvNativeInterface.java (second), of the same signature.";
}

TEST_F(InternalsTest, McuCommandsNoteTheVirtualMachine) {
    Load();
    for (const java::Arg& data : {java::Arg(java::Bytes(5)), java::Arg(nullptr)}) {
        native_local::g_javaVm = nullptr;
        EXPECT_EQ("0", java::Call("nativeSendCommandMcu", {1, 2, data}));
        EXPECT_EQ(java::Vm(), native_local::g_javaVm);
    }
}

// As the virtual machine calls it, by a known reference.
TEST_F(InternalsTest, UnregisterCallbackTakesItsObjectForTheServiceId) {
    native_local::UnregisterCallback(java::Env(), 4660, -7);
    EXPECT_EQ(Lines{"I UnregisterCallback, result: -7 , serviceId: 4660"}, TakeLog());
}

}  // namespace
