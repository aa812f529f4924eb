#include "harness.h"

#include <android/log.h>
#include <string.h>

#include <mutex>
#include <numeric>
#include <sstream>

namespace {

std::mutex g_logLock;
std::vector<std::string> g_log;
std::function<void(const std::string&)> g_onLine;
thread_local bool t_unnoticed = false;

void CaptureLog(const __android_logger_data* data, const char* message) {
    if (strcmp(data->tag, "KalvornNative") != 0) {
        __android_log_stderr_logger(data, message);
        return;
    }
    if (t_unnoticed) return;
    const std::string line = std::string(1, "??VDIWEF"[data->priority]) + " " + message;
    std::function<void(const std::string&)> observer;
    {
        const std::lock_guard lock(g_logLock);
        g_log.push_back(line);
        observer = g_onLine;
    }
    if (observer) Unnoticed([&] { observer(line); });
}

// The virtual machine's own, whatever a test puts in their place.
const JNINativeInterface* g_functions;
// Those, but what the library asks for is counted, and can be refused. The virtual machine's own go
// on with what later JNI versions add, which nothing here calls.
JNINativeInterface g_watching;
// How many the thread's call of the library holds, by frame.
thread_local std::vector<int> t_references{0};

/** Does what the function does, which returns a new local reference. */
template <auto kFunction, typename Reference, typename... Args>
Reference Counted(JNIEnv* env, Args... args) {
    // What the virtual machine makes itself for it, as when it loads a class, it frees as well.
    const JNINativeInterface* functions = std::exchange(env->functions, g_functions);
    Reference made = (g_functions->*kFunction)(env, args...);
    env->functions = functions;
    if (made != nullptr) t_references.back()++;
    return made;
}

template <auto... kFunctions>
void CountMadeBy() {
    ((g_watching.*kFunctions = Counted<kFunctions>), ...);
}

void CountReferences() {
    using Jni = JNINativeInterface;
    // A variadic one is inlined in C++ and calls the one with a V.
    CountMadeBy<&Jni::NewLocalRef, &Jni::FindClass, &Jni::DefineClass, &Jni::GetObjectClass,
                &Jni::GetSuperclass, &Jni::AllocObject, &Jni::NewObjectV, &Jni::NewObjectA,
                &Jni::CallObjectMethodV, &Jni::CallObjectMethodA, &Jni::CallStaticObjectMethodV,
                &Jni::CallStaticObjectMethodA, &Jni::CallNonvirtualObjectMethodV,
                &Jni::CallNonvirtualObjectMethodA, &Jni::GetObjectField, &Jni::GetStaticObjectField,
                &Jni::GetObjectArrayElement, &Jni::NewString, &Jni::NewStringUTF,
                &Jni::NewObjectArray, &Jni::NewBooleanArray, &Jni::NewByteArray, &Jni::NewCharArray,
                &Jni::NewShortArray, &Jni::NewIntArray, &Jni::NewLongArray, &Jni::NewFloatArray,
                &Jni::NewDoubleArray, &Jni::NewDirectByteBuffer, &Jni::ExceptionOccurred,
                &Jni::ToReflectedMethod, &Jni::ToReflectedField>();
    g_watching.DeleteLocalRef = [](JNIEnv* env, jobject reference) {
        if (reference != nullptr) t_references.back()--;
        g_functions->DeleteLocalRef(env, reference);
    };
    g_watching.PushLocalFrame = [](JNIEnv* env, jint capacity) {
        const jint refused = g_functions->PushLocalFrame(env, capacity);
        if (refused == JNI_OK) t_references.push_back(0);
        return refused;
    };
    g_watching.PopLocalFrame = [](JNIEnv* env, jobject result) {
        if (t_references.size() > 1) t_references.pop_back();
        return Counted<&Jni::PopLocalFrame, jobject>(env, result);
    };
}

thread_local java::JniUse t_use;
thread_local java::Jni t_refused = java::Jni::kNothing;
thread_local int t_granted;

/** Whether this request is the one to refuse; then its exception is pending. */
bool Refuses(JNIEnv* env, java::Jni request) {
    EXPECT_FALSE(env->ExceptionCheck()) << "a request with an exception pending";
    if (t_refused != request || t_granted-- > 0) return false;
    t_refused = java::Jni::kNothing;
    jclass error = g_functions->FindClass(env, "java/lang/OutOfMemoryError");
    g_functions->ThrowNew(env, error, "refused");
    g_functions->DeleteLocalRef(env, error);
    return true;
}

void CountTexts() {
    g_watching.GetStringUTFChars = [](JNIEnv* env, jstring text, jboolean* isCopy) -> const char* {
        if (Refuses(env, java::Jni::kCopy)) return nullptr;
        t_use.textsTaken++;
        return g_functions->GetStringUTFChars(env, text, isCopy);
    };
    g_watching.ReleaseStringUTFChars = [](JNIEnv* env, jstring text, const char* chars) {
        t_use.textsReleased++;
        g_functions->ReleaseStringUTFChars(env, text, chars);
    };
    g_watching.NewStringUTF = [](JNIEnv* env, const char* text) -> jstring {
        if (Refuses(env, java::Jni::kText)) return nullptr;
        return Counted<&JNINativeInterface::NewStringUTF, jstring>(env, text);
    };
}

void CountArrays() {
    g_watching.GetByteArrayElements = [](JNIEnv* env, jbyteArray array,
                                         jboolean* isCopy) -> jbyte* {
        if (Refuses(env, java::Jni::kCopy)) return nullptr;
        t_use.bytesTaken++;
        return g_functions->GetByteArrayElements(env, array, isCopy);
    };
    g_watching.ReleaseByteArrayElements = [](JNIEnv* env, jbyteArray array, jbyte* elements,
                                             jint mode) {
        if (mode != JNI_COMMIT) t_use.bytesReleased++;
        if (mode == JNI_ABORT) t_use.bytesAborted++;
        g_functions->ReleaseByteArrayElements(env, array, elements, mode);
    };
    g_watching.NewIntArray = [](JNIEnv* env, jsize length) -> jintArray {
        if (Refuses(env, java::Jni::kIntArray)) return nullptr;
        return Counted<&JNINativeInterface::NewIntArray, jintArray>(env, length);
    };
    g_watching.GetIntArrayElements = [](JNIEnv* env, jintArray array, jboolean* isCopy) -> jint* {
        if (Refuses(env, java::Jni::kIntElements)) return nullptr;
        t_use.intsTaken++;
        return g_functions->GetIntArrayElements(env, array, isCopy);
    };
    g_watching.ReleaseIntArrayElements = [](JNIEnv* env, jintArray array, jint* elements,
                                            jint mode) {
        (mode == JNI_COMMIT ? t_use.intsCommitted : t_use.intsReleased)++;
        g_functions->ReleaseIntArrayElements(env, array, elements, mode);
    };
}

void CountLookups() {
    g_watching.FindClass = [](JNIEnv* env, const char* name) -> jclass {
        if (Refuses(env, java::Jni::kClass)) return nullptr;
        return Counted<&JNINativeInterface::FindClass, jclass>(env, name);
    };
    g_watching.GetFieldID = [](JNIEnv* env, jclass clazz, const char* name, const char* type) {
        return Refuses(env, java::Jni::kField) ? nullptr
                                               : g_functions->GetFieldID(env, clazz, name, type);
    };
    g_watching.GetStaticFieldID = [](JNIEnv* env, jclass clazz, const char* name,
                                     const char* type) {
        return Refuses(env, java::Jni::kField)
                       ? nullptr
                       : g_functions->GetStaticFieldID(env, clazz, name, type);
    };
}

JavaVM* StartVm() {
    // keep_rules_test.sh gives other classes of the application.
    const char* otherClassPath = getenv("KALVORN_TEST_CLASS_PATH");
    static std::string classPath =
            "-Djava.class.path=" +
            std::string(otherClassPath == nullptr ? KALVORN_CLASS_PATH : otherClassPath);
    static char check[] = "-Xcheck:jni";
    static char heap[] = "-Xmx256m";
    static char libraryPath[] = "-Djava.library.path=" KALVORN_LIBRARY_PATH;
    JavaVMOption options[] = {
            {classPath.data(), nullptr}, {check, nullptr}, {heap, nullptr}, {libraryPath, nullptr}};
    JavaVMInitArgs args{JNI_VERSION_1_6, 4, options, JNI_FALSE};
    JavaVM* vm = nullptr;
    JNIEnv* env = nullptr;
    if (JNI_CreateJavaVM(&vm, &env, &args) != JNI_OK) abort();
    g_functions = env->functions;
    g_watching = *g_functions;
    CountReferences();
    CountTexts();
    CountArrays();
    CountLookups();
    return vm;
}

/** Of one of the application's native methods, as the Java class declares it. */
std::string SignatureOf(const std::string& method) {
    std::istringstream lines(java::DeclaredNatives());
    for (std::string line; std::getline(lines, line);) {
        const size_t end = line.find('(');
        if (line.substr(0, end) == method) return line.substr(end);
    }
    abort();
}

jclass KvNativeInterface() {
    static const auto clazz = static_cast<jclass>(java::Env()->NewGlobalRef(
            java::Env()->FindClass("com/quorvin/kalvornii/KvNativeInterface")));
    return clazz;
}

jvalue ToJava(const java::Arg& arg) {
    JNIEnv* env = java::Env();
    jvalue value{};
    if (const int* number = std::get_if<int>(&arg)) value.i = *number;
    if (const auto* text = std::get_if<const char*>(&arg)) value.l = java::String(*text);
    if (const auto* object = std::get_if<java::Object>(&arg)) value.l = java::NewObject(*object);
    if (const auto* bytes = std::get_if<java::Bytes>(&arg)) {
        const auto length = static_cast<jsize>(bytes->size());
        jbyteArray array = env->NewByteArray(length);
        env->SetByteArrayRegion(array, 0, length, bytes->data());
        value.l = array;
    }
    return value;
}

}  // namespace

namespace java {

JavaVM* Vm() {
    static JavaVM* vm = StartVm();
    return vm;
}

JNIEnv* Env() {
    JNIEnv* env = nullptr;
    JavaVM* vm = Vm();
    if (vm->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_6) != JNI_OK) {
        vm->AttachCurrentThreadAsDaemon(&env, nullptr);
    }
    return env;
}

namespace {

std::string ListNatives() {
    const LocalFrame frame;
    JNIEnv* env = Env();
    jclass clazz = env->FindClass("NativeMethods");
    jmethodID list = env->GetStaticMethodID(clazz, "list", "()Ljava/lang/String;");
    jobject listed = env->CallStaticObjectMethod(clazz, list);
    EXPECT_FALSE(env->ExceptionCheck());
    const std::string shown = Show(static_cast<jstring>(listed));
    return shown.substr(1, shown.size() - 2);
}

}  // namespace

const std::string& DeclaredNatives() {
    static const std::string natives = ListNatives();
    return natives;
}

jstring String(const char* modifiedUtf8) {
    return Env()->NewStringUTF(modifiedUtf8);
}

jobject NewObject(const Object& object) {
    JNIEnv* env = Env();
    jclass clazz = env->FindClass(object.className);
    jobject result = env->NewObject(clazz, env->GetMethodID(clazz, "<init>", "()V"));
    for (const auto& [name, value] : object.fields) {
        if (const int* number = std::get_if<int>(&value)) {
            env->SetIntField(result, env->GetFieldID(clazz, name.c_str(), "I"), *number);
        } else {
            const char* text = std::get<const char*>(value);
            env->SetObjectField(result, env->GetFieldID(clazz, name.c_str(), "Ljava/lang/String;"),
                                text == nullptr ? nullptr : String(text));
        }
    }
    return result;
}

std::string Show(jint value) {
    return std::to_string(value);
}

std::string Show(jstring text) {
    if (text == nullptr) return "null";
    const char* chars = Env()->GetStringUTFChars(text, nullptr);
    std::string shown = '"' + std::string(chars) + '"';
    Env()->ReleaseStringUTFChars(text, chars);
    return shown;
}

std::string Show(jintArray array) {
    if (array == nullptr) return "null";
    std::vector<jint> values(static_cast<size_t>(Env()->GetArrayLength(array)));
    Env()->GetIntArrayRegion(array, 0, static_cast<jsize>(values.size()), values.data());
    std::string shown;
    for (const jint value : values) shown += (shown.empty() ? "{" : ", ") + Show(value);
    return shown + "}";
}

jobject Application() {
    static jobject application = Env()->NewGlobalRef(Env()->NewObject(
            KvNativeInterface(), Env()->GetMethodID(KvNativeInterface(), "<init>", "()V")));
    return application;
}

LibraryCall::LibraryCall(std::string name)
    : mName(std::move(name)),
      mFunctions(Env()->functions),
      mReferences(std::exchange(t_references, {0})) {
    Env()->functions = &g_watching;
}

LibraryCall::~LibraryCall() {
    constexpr int kGuaranteed = 16;
    EXPECT_LE(std::accumulate(t_references.begin(), t_references.end(), 0), kGuaranteed)
            << "local references left behind by " << mName;
    t_references = std::move(mReferences);
    Env()->functions = mFunctions;
}

std::string Call(const std::string& method, const std::vector<Arg>& args) {
    JNIEnv* env = Env();
    const JNINativeInterface* functions = std::exchange(env->functions, g_functions);
    env->PushLocalFrame(64);
    const std::string signature = SignatureOf(method);
    jmethodID id = env->GetMethodID(KvNativeInterface(), method.c_str(), signature.c_str());
    std::vector<jvalue> values;
    values.reserve(args.size());
    for (const Arg& arg : args) values.push_back(ToJava(arg));
    const bool isNumber = signature.substr(signature.find(')')) == ")I";
    jint number = 0;
    jobject object = nullptr;
    jobject application = Application();
    env->functions = functions;
    if (const LibraryCall call(method); isNumber) {
        number = g_functions->CallIntMethodA(env, application, id, values.data());
    } else {
        object = g_functions->CallObjectMethodA(env, application, id, values.data());
    }
    env->functions = g_functions;
    EXPECT_FALSE(env->ExceptionCheck()) << method;
    env->ExceptionClear();
    std::string result;
    if (isNumber) {
        result = Show(number);
    } else if (signature.back() == 'I') {
        result = Show(static_cast<jintArray>(object));
    } else {
        result = Show(static_cast<jstring>(object));
    }
    env->PopLocalFrame(nullptr);
    env->functions = functions;
    return result;
}

std::string StaticField(const char* name) {
    const LocalFrame frame;
    jfieldID id = Env()->GetStaticFieldID(KvNativeInterface(), name, "Ljava/lang/String;");
    std::string shown =
            Show(static_cast<jstring>(Env()->GetStaticObjectField(KvNativeInterface(), id)));
    return shown;
}

void SetStaticField(const char* name, const char* text) {
    const LocalFrame frame;
    jfieldID id = Env()->GetStaticFieldID(KvNativeInterface(), name, "Ljava/lang/String;");
    Env()->SetStaticObjectField(KvNativeInterface(), id, String(text));
}

CountJniUse::CountJniUse() {
    t_use = {};
}

const JniUse& CountJniUse::use() const {
    return t_use;
}

RefuseNext::RefuseNext(Jni request, int granted) {
    t_refused = request;
    t_granted = granted;
}

RefuseNext::~RefuseNext() {
    EXPECT_EQ(Jni::kNothing, t_refused) << "the library asked for nothing that could be refused";
    t_refused = Jni::kNothing;
}

}  // namespace java

std::vector<std::string> TakeLog() {
    const std::lock_guard lock(g_logLock);
    return std::exchange(g_log, {});
}

std::string TakeLastLine() {
    const std::vector<std::string> log = TakeLog();
    return log.empty() ? "none" : log.back();
}

int LinesLogged() {
    const std::lock_guard lock(g_logLock);
    return static_cast<int>(g_log.size());
}

void Unnoticed(const std::function<void()>& action) {
    t_unnoticed = true;
    action();
    t_unnoticed = false;
}

void OnLine(std::function<void(const std::string& line)> observer) {
    const std::lock_guard lock(g_logLock);
    g_onLine = std::move(observer);
}

void LibraryTest::SetUp() {
    __android_log_set_logger(CaptureLog);
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    device.Reset();
    java::DeclaredNatives();  // once, before a test takes anything away
    java::Application();      // the first one loads the library
    TakeLog();
}

void LibraryTest::TearDown() {
    OnLine(nullptr);
    Unload();
    device.Reset();
    EXPECT_EQ(0, Device::LiveServices()) << "somebody still holds a service";
}

void LibraryTest::LoadWith(Backend backend, const std::string& service) {
    Unload();
    device.Reset();
    if (!service.empty()) device.Start(backend, service);
    Load();
    Device::Settle();
    device.TakeCalls();
    TakeLog();
}

void LibraryTest::LoadWithProfile(const std::string& profile) {
    ASSERT_TRUE(device.StartProfile(profile));
    ASSERT_EQ(JNI_VERSION_1_4, Load());
    ASSERT_TRUE(Device::Settle());
    device.TakeCalls();
    TakeLog();
}

void OperationTest::Run(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        LoadWith(c.backend, c.service);
        for (const auto& [method, answer] : c.script) device.Script(method, answer);
        const std::string backend = c.backend == kAidl ? "aidl " : "hidl ";
        const std::string trace = backend + c.method + " -> " + c.result;
        SCOPED_TRACE(trace);
        EXPECT_EQ(c.result, java::Call(c.method, c.args));
        std::vector<std::string> calls;
        for (const std::string& call : c.calls) calls.push_back(backend + call);
        EXPECT_EQ(calls, device.TakeCalls());
        EXPECT_EQ(c.log, TakeLog());
    }
}
