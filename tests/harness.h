#pragma once

#include <gtest/gtest.h>
#include <jni.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "simulator/device.h"

/** A Java virtual machine in this process, started on first use with -Xcheck:jni. */
namespace java {

JavaVM* Vm();

/** Of the calling thread, which is attached when it is not yet. */
JNIEnv* Env();

/** Frees the local references that the calling thread makes within its scope. */
class LocalFrame {
  public:
    LocalFrame() { Env()->PushLocalFrame(64); }
    ~LocalFrame() { Env()->PopLocalFrame(nullptr); }
    LocalFrame(const LocalFrame&) = delete;
    LocalFrame& operator=(const LocalFrame&) = delete;
};

using Bytes = std::vector<int8_t>;

/** An object of a big-data class with these fields; a text of null is a null String. */
struct Object {
    const char* className;
    std::map<std::string, std::variant<int, const char*>> fields;
};

/** A Java argument: an int, a String, null, a byte[] or an object. */
using Arg = std::variant<int, const char*, std::nullptr_t, Bytes, Object>;

/** The name and descriptor of each native method of KvNativeInterface, a line each, in order. */
const std::string& DeclaredNatives();

jstring String(const char* modifiedUtf8);
jobject NewObject(const Object& object);

/**
 * Within its scope the library is called on this thread. The test fails when more local references
 * are left behind than the 16 that a call has room for; few virtual machines warn of them.
 */
class LibraryCall {
  public:
    explicit LibraryCall(std::string name);
    ~LibraryCall();
    LibraryCall(const LibraryCall&) = delete;
    LibraryCall& operator=(const LibraryCall&) = delete;

  private:
    const std::string mName;
    const JNINativeInterface* mFunctions;
    std::vector<int> mReferences;
};

/**
 * Calls a native method on the application's KvNativeInterface object. The result as text: 5,
 * "text" in quotes, null, or {1, 2}. An exception fails the test.
 */
std::string Call(const std::string& method, const std::vector<Arg>& args);

/** The same rendering, for what a backend operation returned. */
std::string Show(jint value);
std::string Show(jstring text);
std::string Show(jintArray array);

/** The application's KvNativeInterface object. */
jobject Application();

/** A static String field of KvNativeInterface, rendered; and its value to begin with. */
std::string StaticField(const char* name);
void SetStaticField(const char* name, const char* text);

/** How often the library took and gave back what has to be given back, since CountJniUse began. */
struct JniUse {
    int textsTaken, textsReleased;
    int bytesTaken, bytesReleased, bytesAborted;  // the aborted ones count as released too
    int intsTaken, intsReleased, intsCommitted;
};

/**
 * Counts from here on, on this thread, in the native methods that Call() calls and in a
 * LibraryCall; Call()'s own arguments and results are not counted.
 */
struct CountJniUse {
    CountJniUse();
    const JniUse& use() const;
};

/** What the virtual machine can refuse. */
enum class Jni { kNothing, kCopy, kText, kIntArray, kIntElements, kClass, kField };

/**
 * Counts, and lets the library's next such request (a copy is a text's or a byte array's
 * characters) give OutOfMemoryError instead, or the one after so many that it grants. It fails the
 * test when there was none, and when the library makes a request while an exception is pending.
 */
class RefuseNext : public CountJniUse {
  public:
    explicit RefuseNext(Jni request, int granted = 0);
    ~RefuseNext();
    RefuseNext(const RefuseNext&) = delete;
    RefuseNext& operator=(const RefuseNext&) = delete;
};

}  // namespace java

using kalvorn::device::Answer;
using kalvorn::device::Backend;
using kalvorn::device::Device;
using kalvorn::device::Fault;

constexpr Backend kAidl = Backend::kAidl;
constexpr Backend kHidl = Backend::kHidl;

/** The library's log lines since the last time: the priority's letter, a blank, the text. */
std::vector<std::string> TakeLog();
/** The last of them; "none" when there is none. */
std::string TakeLastLine();
int LinesLogged();
/** Does this without a trace in the log. */
void Unnoticed(const std::function<void()>& action);
/** Called, unnoticed, after each line on the thread that logs it, until the test ends. */
void OnLine(std::function<void(const std::string& line)> observer);

/**
 * The library's entry points: of the sources linked into kalvorn_tests, or of the built library
 * that kalvorn_library_tests loads. The log is left for TakeLog().
 */
jint Load();
void Unload();

/** Every test begins with an empty device, an unloaded library and an empty log. */
class LibraryTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    Device& device = Device::Get();
    const java::LocalFrame frame;

    /** An empty device with one service, and the library loaded on it; the log is emptied. */
    void LoadWith(Backend backend, const std::string& service);
    void LoadWithProfile(const std::string& profile);
};

/** One call on a device that has one service over one backend (or none, for service ""). */
struct Case {
    Backend backend;
    const char* service;
    const char* method;
    std::vector<java::Arg> args;
    /** What the service's methods answer, instead of their usual answers. */
    std::vector<std::pair<const char*, Answer>> script;
    /** What the service was asked, without the backend. */
    std::vector<std::string> calls;
    std::vector<std::string> log;
    std::string result;
};

class OperationTest : public LibraryTest {
  protected:
    void Run(const std::vector<Case>& cases);
};
