#include <dlfcn.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <unistd.h>

#include "harness.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;

// What takes the misc partition's place, for the calling thread while a test wants it; and how the
// partition was opened.
thread_local const char* g_misc = nullptr;
thread_local std::vector<int> g_openFlags;
thread_local std::vector<size_t> g_writes;
thread_local int g_openedFd = -1;

/** The function of this name that another library has. */
void* NextOf(const char* name) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the constant is made so
    return dlsym(RTLD_NEXT, name);
}

class LocalMethodsTest : public OperationTest {};

}  // namespace

// The library's partition is a path in its code, so the way to it is bent here.
extern "C" int open(const char* path, int flags, ...) {
    static const auto next = reinterpret_cast<decltype(&open)>(NextOf("open"));
    mode_t mode = 0;
    if ((flags & (O_CREAT | __O_TMPFILE)) != 0) {
        va_list rest;
        va_start(rest, flags);
        // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): started above
        mode = va_arg(rest, mode_t);
        va_end(rest);
    }
    if (g_misc == nullptr || strcmp(path, "/dev/block/bootdevice/by-name/misc") != 0) {
        return next(path, flags, mode);
    }
    g_openFlags.push_back(flags);
    return g_openedFd = next(g_misc, flags, mode);
}

extern "C" ssize_t write(int fd, const void* bytes, size_t size) {
    static const auto next = reinterpret_cast<decltype(&write)>(NextOf("write"));
    if (g_misc != nullptr && fd == g_openedFd) g_writes.push_back(size);
    return next(fd, bytes, size);
}

// The modes with which the vendor's library was opened.
std::vector<int> g_bindings;

extern "C" void* dlopen(const char* path, int mode) {
    static const auto next = reinterpret_cast<decltype(&dlopen)>(NextOf("dlopen"));
    if (path != nullptr && strcmp(path, "libpixelworksFactoryTest.so") == 0) {
        g_bindings.push_back(mode);
    }
    return next(path, mode);
}

namespace {

TEST_F(LocalMethodsTest, SendCommandMcu) {
    Run({
            {kAidl,
             "",
             "nativeSendCommandMcu",
             {100001, -100002, java::Bytes(5)},
             {},
             {},
             {"I g_iextShb register resultRegister:100001 , -100002, 5"},
             "0"},
            {kAidl, "", "nativeSendCommandMcu", {1, 2, nullptr}, {}, {}, {"E data is null"}, "0"},
    });
}

TEST_F(LocalMethodsTest, UnregisterCallback) {
    LoadWithProfile("aidl");
    EXPECT_EQ("0", java::Call("nativeUnregisterCallback", {-100007, 909090909}));
    EXPECT_THAT(device.TakeCalls(), IsEmpty());
    const std::vector<std::string> log = TakeLog();
    EXPECT_THAT(log, ElementsAre(MatchesRegex(
                             "I UnregisterCallback, result: -100007 , serviceId: -?[0-9]+")));
    EXPECT_THAT(log, testing::Not(testing::Contains(HasSubstr("909090909"))));
}

class RecoveryTest : public LibraryTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    /** What the method returned and logged, while the file at a path is the partition. */
    std::string Write(const std::string& partition);
    std::string Content() const;

    std::string mPartition = testing::TempDir() + "kalvorn_misc_XXXXXX";
};

void RecoveryTest::SetUp() {
    LibraryTest::SetUp();
    const int fd = mkstemp(mPartition.data());
    ASSERT_NE(-1, fd);
    const std::string old(2048, 'o');
    ASSERT_EQ(2048, write(fd, old.data(), old.size()));
    close(fd);
    Load();
    TakeLog();
}

void RecoveryTest::TearDown() {
    unlink(mPartition.c_str());
    LibraryTest::TearDown();
}

std::string RecoveryTest::Write(const std::string& partition) {
    g_openFlags.clear();
    g_writes.clear();
    g_misc = partition.c_str();
    std::string seen = java::Call("nativeWriteMiscToRecovery", {});
    g_misc = nullptr;
    EXPECT_EQ(std::vector<int>{O_WRONLY}, g_openFlags);
    EXPECT_EQ(-1, fcntl(g_openedFd, F_GETFD)) << "left open";
    for (const std::string& line : TakeLog()) seen += "|" + line;
    return seen;
}

std::string RecoveryTest::Content() const {
    std::string content(4096, '?');
    FILE* file = fopen(mPartition.c_str(), "r");
    content.resize(fread(content.data(), 1, content.size(), file));
    fclose(file);
    return content;
}

TEST_F(RecoveryTest, RequestIsWrittenAndNothingBeyondIt) {
    EXPECT_EQ("0|E Write misc to recovery ok.", Write(mPartition));
    EXPECT_EQ("boot-recovery" + std::string(499, '\0') + std::string(2048 - 512, 'o'), Content());
    EXPECT_EQ(std::vector<size_t>{512}, g_writes) << "half a request must not stand there";
}

TEST_F(RecoveryTest, AnyFileDescriptorWillDo) {
    const int input = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    EXPECT_EQ("0|E Write misc to recovery ok.", Write(mPartition));
    EXPECT_EQ(STDIN_FILENO, g_openedFd);
    if (input != -1) {
        dup2(input, STDIN_FILENO);
        close(input);
    }
}

TEST_F(RecoveryTest, MissingPartitionIsNotMade) {
    unlink(mPartition.c_str());
    EXPECT_EQ("-1|E cannot open file note : /dev/block/bootdevice/by-name/misc\n",
              Write(mPartition));
    EXPECT_EQ(-1, access(mPartition.c_str(), F_OK));
}

TEST_F(RecoveryTest, ShortWriteFails) {
    rlimit usual{};
    ASSERT_EQ(0, getrlimit(RLIMIT_FSIZE, &usual));
    const std::string record = "boot-recovery" + std::string(499, '\0');
    for (const size_t taken : {1u, 13u, 100u, 511u}) {
        const rlimit small{taken, usual.rlim_max};  // the signal that comes with it, the VM ignores
        ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &small));
        const std::string seen = Write(mPartition);
        ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &usual));
        EXPECT_EQ("-1|E Write misc to recovery fail.", seen) << taken;
        EXPECT_EQ(record.substr(0, taken) + std::string(2048 - taken, 'o'), Content());
    }
}

TEST_F(RecoveryTest, RefusedWriteFails) {
    EXPECT_EQ("-1|E Write misc to recovery fail.", Write("/dev/full"));
}

// The vendor's library stays open once it has been found, so that each of these needs a process of
// its own, with its own search path for libraries.
class InterpolationTest : public LibraryTest {
  protected:
    void SetUp() override {
        LibraryTest::SetUp();
        Load();
        TakeLog();
    }

    void ExpectFailure(const char* method, const std::vector<java::Arg>& args,
                       const std::string& start, const std::string& cause) {
        SCOPED_TRACE(method);
        EXPECT_EQ("-1", java::Call(method, args));
        EXPECT_THAT(TakeLog(), ElementsAre(testing::AllOf(testing::StartsWith(start + ": "),
                                                          HasSubstr(cause))));
    }

    /** Sets modes and has them reported, refused and recovered, on a library that has it all. */
    void ExpectInterpolation() {
        EXPECT_EQ("0", java::Call("nativeSetInperpolateFrameMode", {2, 90}));
        EXPECT_EQ("2090", java::Call("nativeGetInperpolateFrameCurMode", {}));
        EXPECT_EQ("0", java::Call("nativeGetInperpolateFrameTestResult", {}));
        EXPECT_EQ("-7", java::Call("nativeSetInperpolateFrameMode", {-7, 60}));
        EXPECT_EQ("2090", java::Call("nativeGetInperpolateFrameCurMode", {}));
        EXPECT_EQ("0", java::Call("nativeInperpolateFrameRecoverFreshRate", {}));
        EXPECT_EQ("0", java::Call("nativeGetInperpolateFrameCurMode", {}));
        EXPECT_EQ("-3", java::Call("nativeGetInperpolateFrameTestResult", {}));
        EXPECT_THAT(TakeLog(), IsEmpty());
    }
};

TEST_F(InterpolationTest, WithLibrary) {
    ExpectInterpolation();
    EXPECT_EQ(std::vector<int>{2}, g_bindings);
}

TEST_F(InterpolationTest, WithoutOneEntryPoint) {
    EXPECT_EQ("0", java::Call("nativeSetInperpolateFrameMode", {3, 60}));
    EXPECT_EQ("3060", java::Call("nativeGetInperpolateFrameCurMode", {}));
    EXPECT_EQ("0", java::Call("nativeGetInperpolateFrameTestResult", {}));
    EXPECT_THAT(TakeLog(), IsEmpty());
    ExpectFailure("nativeInperpolateFrameRecoverFreshRate", {}, "E failed to dlsym CheckResult",
                  "undefined symbol: recoverFreshRate");
    EXPECT_EQ("3060", java::Call("nativeGetInperpolateFrameCurMode", {}));
}

TEST_F(InterpolationTest, WithoutAnyEntryPoint) {
    ExpectFailure("nativeSetInperpolateFrameMode", {2, 90}, "E failed to dlsym setModeTest",
                  "undefined symbol: setModeTest");
    ExpectFailure("nativeGetInperpolateFrameCurMode", {}, "E failed to dlsym getCurrentMode",
                  "undefined symbol: getCurrentMode");
    ExpectFailure("nativeGetInperpolateFrameTestResult", {}, "E failed to dlsym CheckResult",
                  "undefined symbol: checkResult");
    ExpectFailure("nativeInperpolateFrameRecoverFreshRate", {}, "E failed to dlsym CheckResult",
                  "undefined symbol: recoverFreshRate");
}

TEST_F(InterpolationTest, WithoutLibraryUntilItComes) {
    const std::string start = "E failed to load libpixelworksFactoryTest.so";
    const std::string cause = "libpixelworksFactoryTest.so: cannot open shared object file";
    ExpectFailure("nativeSetInperpolateFrameMode", {2, 90}, start, cause);
    ExpectFailure("nativeGetInperpolateFrameCurMode", {}, start, cause);
    ExpectFailure("nativeGetInperpolateFrameTestResult", {}, start, cause);
    ExpectFailure("nativeInperpolateFrameRecoverFreshRate", {}, start, cause);
    // The loader finds a library by the name under which it has been loaded already.
    ASSERT_NE(nullptr, dlopen(KALVORN_INTERPOLATION "/libpixelworksFactoryTest.so", RTLD_NOW))
            << dlerror();
    ExpectInterpolation();
}

}  // namespace
