#include <android/log.h>
#include <fcntl.h>
#include <jni.h>
#include <stdio.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "bench.h"

namespace bench {

namespace {

/** Runs the call so many times; empty where there is no such call. */
using Run = std::function<void(int times)>;

class JavaCalls {
  public:
    explicit JavaCalls(JNIEnv* env)
        : mEnv(env), mClass(env->FindClass("com/quorvin/kalvornii/bench/Calls")) {
        if (mClass == nullptr) env->ExceptionDescribe();
        Demand(mClass != nullptr, "the class of the calls does not load");
        mRepeat = env->GetStaticMethodID(mClass, "repeat",
                                         "(Lcom/quorvin/kalvornii/bench/Calls$Call;I)V");
    }

    /** `of` is "ofLibrary" or "ofFloor". */
    Run Of(const char* of, const char* method) const {
        jmethodID find = mEnv->GetStaticMethodID(
                mClass, of, "(Ljava/lang/String;)Lcom/quorvin/kalvornii/bench/Calls$Call;");
        jobject call = mEnv->CallStaticObjectMethod(mClass, find, mEnv->NewStringUTF(method));
        Demand(!mEnv->ExceptionCheck(), "Calls.java has no arguments for a method");
        if (call == nullptr) return nullptr;
        return [this, call](int times) {
            mEnv->CallStaticVoidMethod(mClass, mRepeat, call, times);
            Demand(!mEnv->ExceptionCheck(), "a call threw");
        };
    }

  private:
    JNIEnv* const mEnv;
    const jclass mClass;
    jmethodID mRepeat;
};

/** One method's calls: of the library, of its floor, of the bare proxy. */
struct Row {
    const char* method;
    Run java, floor, proxy;
};

/** What one call asks of the services, and what it logs. */
struct Trace {
    std::vector<std::string> calls;
    std::string lines;
};

Trace TraceOf(const Run& run) {
    static std::string lines;
    lines.clear();
    __android_log_set_logger([](const __android_logger_data* data, const char* message) {
        lines += std::to_string(data->priority) + " " + message + "\n";
    });
    auto& device = kalvorn::device::Device::Get();
    device.RecordCalls(true);
    run(1);
    device.RecordCalls(false);
    LogToNowhere();
    return {device.TakeCalls(), lines};
}

/** Only what does the same is compared. */
const char* FaultOf(const Row& row) {
    const Trace trace = TraceOf(row.java);
    if (trace.calls.empty()) return "ASKS NO SERVICE";
    if (row.floor == nullptr) return nullptr;
    if (row.proxy == nullptr) return "HAS NO PROXY IN tools/bench/bare.cpp";
    if (TraceOf(row.proxy).calls != trace.calls) return "ITS PROXY IS ASKED OTHERWISE";
    const Trace floor = TraceOf(row.floor);
    if (floor.calls != trace.calls) return "ITS FLOOR ASKS OTHERWISE";
    return floor.lines == trace.lines ? nullptr : "ITS FLOOR LOGS OTHERWISE";
}

// Of the thread: what else the machine does meanwhile costs it little.
double Now() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return 1e9 * static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec);
}

/** Nanoseconds a call. */
double Turn(const Run& run, int times) {
    const double start = Now();
    run(times);
    return (Now() - start) / times;
}

/** So many calls as take 60 microseconds. */
int TimesOf(const Run& run, bool quick) {
    if (quick) return 1;
    run(1000);  // and Java compiles what it calls
    return std::max(1, static_cast<int>(60'000 / Turn(run, 200)));
}

/** Of at least one. */
double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void Print(Backend backend, const Row& row, const char* figure, const std::vector<double>& values) {
    printf("/calls/%s/%s/%s %f\n", NameOf(backend), row.method, figure, Median(values));
}

/**
 * The library's calls beside the floor's and the proxy's. The same call takes twice as long while
 * the other thread of its core is busy, which on most machines comes and goes by the millisecond:
 * they take turns of far less, and each turn is compared with its neighbour, after it or before it.
 */
class Pairs {
  public:
    Pairs(const Row& row, bool quick)
        : mRow(row), mTimes(TimesOf(row.java, quick)), mProxyTimes(TimesOf(row.proxy, quick)) {
        TimesOf(row.floor, quick);
    }

    void Measure(int pairs) {
        for (int i = 0; i < pairs; i++) {
            if (i % 2 == 0) mJava.push_back(Turn(mRow.java, mTimes));
            mFloor.push_back(Turn(mRow.floor, mTimes));
            if (i % 2 != 0) mJava.push_back(Turn(mRow.java, mTimes));
            mProxy.push_back(Turn(mRow.proxy, mProxyTimes));
            mRatios.push_back(mJava.back() / mFloor.back());
        }
    }

    void PrintMedians(Backend backend) const {
        Print(backend, mRow, "java", mJava);
        Print(backend, mRow, "floor", mFloor);
        Print(backend, mRow, "proxy", mProxy);
        Print(backend, mRow, "timesFloor", mRatios);
    }

  private:
    const Row& mRow;
    const int mTimes, mProxyTimes;
    std::vector<double> mJava, mFloor, mProxy, mRatios;
};

/** What slows the machine for a while must not be one method's alone: all take part in each round.
 */
void MeasurePairs(Backend backend, const std::vector<Row>& rows, bool quick) {
    std::vector<Pairs> all;
    for (const Row& row : rows) {
        if (row.floor != nullptr) all.emplace_back(row, quick);
    }
    if (all.empty()) return;
    // As long for one method as for all.
    const int rounds = quick ? 1 : 105 / static_cast<int>(all.size()), pairs = quick ? 1 : 20;
    for (int i = 0; i < rounds; i++) {
        for (Pairs& ofRow : all) ofRow.Measure(pairs);
    }
    for (const Pairs& ofRow : all) ofRow.PrintMedians(backend);
}

void MeasureAlone(Backend backend, const Row& row, const char* figure, bool quick) {
    const int times = TimesOf(row.java, quick), turns = quick ? 1 : 31;
    std::vector<double> found(turns);
    for (double& nanoseconds : found) nanoseconds = Turn(row.java, times);
    Print(backend, row, figure, found);
}

/** Tells the faults of those that it leaves out. */
std::vector<Row> RowsOf(Backend backend, const JavaCalls& calls, const Choice& choice) {
    const BareCalls bare = ConnectProxies(backend);
    std::vector<Row> rows;
    for (const Method& method : kMethods) {
        if (!method.IsOn(backend) || !strcasestr(method.name, choice.filter.c_str())) continue;
        Row row{method.name, calls.Of("ofLibrary", method.name), calls.Of("ofFloor", method.name),
                nullptr};
        const auto found = bare.find(method.name);
        if (found != bare.end()) {
            row.proxy = [call = found->second](int times) {
                for (int i = 0; i < times; i++) call();
            };
        }
        const char* fault = FaultOf(row);
        if (fault != nullptr) {
            printf("/calls/%s/%s/fault %s\n", NameOf(backend), row.method, fault);
        } else if (row.floor != nullptr || !choice.shapesOnly) {
            rows.push_back(row);
        }
    }
    return rows;
}

}  // namespace

void MeasureCalls(Backend backend, const Choice& choice) {
    LogToNowhere();
    StartDevice(backend);
    const JavaCalls calls(StartVm());
    const std::vector<Row> rows = RowsOf(backend, calls, choice);
    if (!choice.quick && !rows.empty()) rows[0].java(100'000);  // compiles the loop itself
    MeasurePairs(backend, rows, choice.quick);
    if (choice.shapesOnly) return;
    for (const Row& row : rows) {
        if (row.floor == nullptr) MeasureAlone(backend, row, "java", choice.quick);
    }
    dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
    __android_log_set_logger(__android_log_stderr_logger);
    for (const Row& row : rows) MeasureAlone(backend, row, "javaWithLog", choice.quick);
}

}  // namespace bench
