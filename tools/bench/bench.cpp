// Measures what the library adds to a call: each method on each backend through Java, the same call
// on the bare proxy, and, for a method of each shape, the floor. The built library, a real virtual
// machine, the simulated device; one thread.

#include <android/log.h>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <thread>

#include "allocations.h"
#include "bare_calls.h"
#include "load.h"
#include "machine.h"

namespace bench {

namespace {

constexpr double kGoal = 1.03;  // times the floor

/** Nanoseconds of the thread's processor time, and requests to the heap, a call. */
struct Figure {
    double ns = NAN;
    double allocations = NAN;
    bool there = false;
};

struct Row {
    std::string method;
    Backend backend;
    Figure java, javaWithLog, proxy, floor;
    std::string fault;  // why its figures are not to be compared

    double Added() const { return java.ns - proxy.ns; }
    /** Those without figures are at the top. */
    bool operator<(const Row& other) const { return SortedBy() > other.SortedBy(); }
    double SortedBy() const { return fault.empty() ? Added() : INFINITY; }
    double TimesFloor() const { return java.ns / floor.ns; }
};

/** What the library does more than a floor on purpose, and the requests to the heap in that. */
struct OnPurpose {
    double allocations;
    const char* why;
};

OnPurpose FindOnPurpose(const Row& row) {
    if (row.method == "nativeSendBigDataOperation") {
        return {0, "looks class and fields up each time"};
    }
    if (row.method == "nativeSetTestItemName" && row.backend == Backend::kHidl) {
        return {10, "asks for revision 1.1 each time"};
    }
    return {0, "the choice and its line, the reference"};
}

struct Options {
    bool quick = false;  // everything once
    std::string filter, json;
};

/** Runs the call so many times. */
using Run = std::function<void(int64_t times)>;

class JavaCalls {
  public:
    explicit JavaCalls(JNIEnv* env) : mEnv(env), mClass(Find(env)) {
        mRepeat = mEnv->GetStaticMethodID(mClass, "repeat",
                                          "(Lcom/quorvin/kalvornii/bench/Calls$Call;I)V");
    }

    /** Empty when there is no such method; `of` is "ofLibrary" or "ofFloor". */
    Run Of(const char* of, const std::string& method) const {
        jmethodID find = mEnv->GetStaticMethodID(
                mClass, of, "(Ljava/lang/String;)Lcom/quorvin/kalvornii/bench/Calls$Call;");
        jobject call =
                mEnv->CallStaticObjectMethod(mClass, find, mEnv->NewStringUTF(method.c_str()));
        Demand(!mEnv->ExceptionCheck(), "Calls.java has no arguments for a method");
        if (call == nullptr) return nullptr;
        call = mEnv->NewGlobalRef(call);
        return [this, call](int64_t times) {
            mEnv->CallStaticVoidMethod(mClass, mRepeat, call, static_cast<jint>(times));
            Demand(!mEnv->ExceptionCheck(), "a call threw");
        };
    }

  private:
    static jclass Find(JNIEnv* env) {
        jclass clazz = env->FindClass("com/quorvin/kalvornii/bench/Calls");
        if (clazz == nullptr) env->ExceptionDescribe();
        Demand(clazz != nullptr, "the class of the calls does not load");
        return static_cast<jclass>(env->NewGlobalRef(clazz));
    }

    JNIEnv* const mEnv;
    const jclass mClass;
    jmethodID mRepeat;
};

Run Repeat(void (*call)()) {
    return [call](int64_t times) {
        for (int64_t i = 0; i < times; i++) call();
    };
}

/** Puts the median of a benchmark's repetitions where it belongs. */
class Collector : public benchmark::BenchmarkReporter {
  public:
    std::map<std::string, Figure*> figures;

    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<benchmark::BenchmarkReporter::Run>& runs) override {
        std::vector<double> times;
        for (const auto& run : runs) {
            if (run.run_type == benchmark::BenchmarkReporter::Run::RT_Iteration) {
                times.push_back(run.GetAdjustedCPUTime());
            }
        }
        if (times.empty()) return;  // the aggregates come apart
        figures.at(runs[0].run_name.function_name)->ns = Median(times);
    }
};

/** All benchmarks of one backend. */
class Pass {
  public:
    Pass(const Options& options, Backend backend) : mOptions(options), mProgress(NameOf(backend)) {}

    void Add(Row* row, const char* kind, Figure* figure, const Run& run, int repetitions,
             void (*log)()) {
        log();
        run(mOptions.quick ? 1 : 3000);  // compiles what is Java
        figure->there = true;
        figure->allocations = CountAllocations(run);
        const std::string name = row->method + "/" + NameOf(row->backend) + "/" + kind;
        mCollector.figures[name] = figure;
        Progress* progress = &mProgress;
        benchmark::RegisterBenchmark(name.c_str(),
                                     [run, log, progress](benchmark::State& state) {
                                         log();
                                         const auto times = state.max_iterations;
                                         while (state.KeepRunningBatch(times)) run(times);
                                         progress->Step();
                                     })
                ->Iterations(IterationsOf(run))
                ->Repetitions(mOptions.quick ? 1 : repetitions);
        mProgress.Expect(mOptions.quick ? 1 : repetitions);
    }

    void Run() {
        benchmark::RunSpecifiedBenchmarks(&mCollector);
        benchmark::ClearRegisteredBenchmarks();
    }

  private:
    /** Exact: what happens once in a while, as when the virtual machine tidies up, is no call's. */
    static double CountAllocations(const bench::Run& run) {
        constexpr int kCalls = 32;
        long least = -1;
        for (int i = 0; i < 5; i++) {
            const long before = Allocations();
            run(kCalls);
            const long made = Allocations() - before;
            if (least < 0 || made < least) least = made;
        }
        return static_cast<double>(least) / kCalls;
    }

    /** So many as take ten milliseconds. */
    int64_t IterationsOf(const bench::Run& run) const {
        if (mOptions.quick) return 1;
        constexpr int kCalls = 500;
        const auto start = std::chrono::steady_clock::now();
        run(kCalls);
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        return std::max<int64_t>(50, static_cast<int64_t>(0.01 * kCalls / time.count()));
    }

    const Options& mOptions;
    Progress mProgress;
    Collector mCollector;
};

std::vector<Row> RowsOf(Backend backend, const std::string& filter) {
    std::vector<Row> rows;
    for (const Method& method : kMethods) {
        if (!method.IsOn(backend) || strcasestr(method.name, filter.c_str()) == nullptr) continue;
        rows.push_back({});
        rows.back().method = method.name;
        rows.back().backend = backend;
    }
    return rows;
}

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
std::string FaultOf(const Run& java, const Run& proxy, const Run& floor) {
    if (java == nullptr || proxy == nullptr) return "HAS NO PROXY IN tools/bench/";
    const Trace trace = TraceOf(java);
    if (trace.calls.empty()) return "ASKS NO SERVICE";
    if (TraceOf(proxy).calls != trace.calls) return "ITS PROXY IS ASKED OTHERWISE";
    if (floor == nullptr) return "";
    const Trace floorTrace = TraceOf(floor);
    if (floorTrace.calls != trace.calls) return "ITS FLOOR ASKS OTHERWISE";
    return floorTrace.lines == trace.lines ? "" : "ITS FLOOR LOGS OTHERWISE";
}

/** Where a shape is judged by a ratio, the medians are of more repetitions. */
void Measure(const Options& options, const JavaCalls& java, const BareCalls& bare,
             std::vector<Row>* rows) {
    if (rows->empty()) return;
    Pass pass(options, rows->front().backend);
    for (Row& row : *rows) {
        const Run call = java.Of("ofLibrary", row.method);
        const Run floor = java.Of("ofFloor", row.method);
        const auto found = bare.find(row.method);
        const Run proxy = found == bare.end() ? nullptr : Repeat(found->second);
        row.fault = FaultOf(call, proxy, floor);
        if (!row.fault.empty()) continue;
        const int repetitions = floor == nullptr ? 9 : 61;
        if (floor != nullptr) pass.Add(&row, "floor", &row.floor, floor, repetitions, LogToNowhere);
        pass.Add(&row, "java", &row.java, call, repetitions, LogToNowhere);
        pass.Add(&row, "proxy", &row.proxy, proxy, 9, LogToNowhere);
        pass.Add(&row, "java with log", &row.javaWithLog, call, 9, LogByDefault);
    }
    pass.Run();
}

/** First with all services over AIDL, then, with both libraries loaded anew, over HIDL. */
std::vector<Row> MeasureCalls(JNIEnv* env, const Options& options) {
    Progress::FindTerminal();
    const int quiet = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(quiet, STDERR_FILENO);
    LogToNowhere();
    StartDevice(Backend::kAidl);
    const JavaCalls java(env);
    const Library library("_kalvorn"), floor("kalvorn_floor");

    std::vector<Row> rows = RowsOf(Backend::kAidl, options.filter);
    Measure(options, java, ConnectAidl(), &rows);
    LetGoOfAidl();
    LogToNowhere();
    library.Unload();
    floor.Unload();

    StartDevice(Backend::kHidl);
    library.Load();
    floor.Load();
    std::vector<Row> hidlRows = RowsOf(Backend::kHidl, options.filter);
    Measure(options, java, ConnectHidl(), &hidlRows);
    LetGoOfHidl();
    LogToNowhere();
    library.Unload();
    floor.Unload();
    rows.insert(rows.end(), hidlRows.begin(), hidlRows.end());
    return rows;
}

/** What is wrong with a row, or worth to be said. */
struct Verdict {
    std::string note;
    bool isFailure = false;
};

Verdict Judge(const Row& row) {
    if (!row.fault.empty()) return {row.fault, true};
    if (!row.floor.there) return {"no floor", false};
    const OnPurpose onPurpose = FindOnPurpose(row);
    if (row.java.allocations > row.floor.allocations + onPurpose.allocations) {
        return {"ALLOCATES MORE THAN ITS FLOOR", true};
    }
    if (row.TimesFloor() > kGoal) return {std::string("above 1.03: ") + onPurpose.why, false};
    return {"", false};
}

std::string Number(double value, int decimals) {
    if (std::isnan(value)) return "-";
    char text[32];
    snprintf(text, sizeof(text), "%.*f", decimals, value);
    return text;
}

void PrintTable(const std::vector<Row>& rows) {
    printf("Nanoseconds and requests to the heap a call; \"adds\" is Java less proxy.\n\n"
           "%-32s %-4s %7s %7s %7s %7s %7s %7s  %s\n",
           "method", "over", "adds", "java", "proxy", "floor", "x floor", "w/ log",
           "heap of java/proxy/floor");
    for (const Row& row : rows) {
        const std::string heap = Number(row.java.allocations, 0) + "/" +
                                 Number(row.proxy.allocations, 0) + "/" +
                                 Number(row.floor.allocations, 0);
        printf("%-32s %-4s %7s %7s %7s %7s %7s %7s  %-8s %s\n", row.method.c_str(),
               NameOf(row.backend), Number(row.Added(), 0).c_str(), Number(row.java.ns, 0).c_str(),
               Number(row.proxy.ns, 0).c_str(), Number(row.floor.ns, 0).c_str(),
               Number(row.TimesFloor(), 3).c_str(), Number(row.javaWithLog.ns, 0).c_str(),
               heap.c_str(), Judge(row).note.c_str());
    }
}

void PrintGoals(const std::vector<Row>& rows) {
    int floors = 0, met = 0;
    for (const Row& row : rows) {
        floors += row.floor.there;
        met += row.floor.there && row.TimesFloor() <= kGoal;
    }
    if (floors > 0) printf("\nAt most %.2f times the floor: %d of %d.\n", kGoal, met, floors);
}

void PrintLoads(LoadFigures aidl, LoadFigures hidl) {
    printf("\nLoading, and a death with its restart, each in a fresh process; microseconds and "
           "KiB.\n\n"
           "%-52s %7s %7s\n",
           "", "aidl", "hidl");
    for (const auto& [name, what] : kLoadFigures) {
        printf("%-52s %7.0f %7.0f\n", what, aidl[name], hidl[name]);
    }
}

std::string Machine() {
    std::ifstream cpuinfo("/proc/cpuinfo");
    for (std::string line; std::getline(cpuinfo, line);) {
        if (line.compare(0, 10, "model name") == 0) return line.substr(line.find(':') + 2);
    }
    return "unknown";
}

void WriteJson(const std::string& path, const std::vector<Row>& rows,
               const std::vector<LoadFigures>& loads) {
    FILE* file = fopen(path.c_str(), "w");
    Demand(file != nullptr, "the JSON file cannot be written");
    const auto number = [](double value) {
        return std::isnan(value) ? std::string("null") : Number(value, 4);
    };
    fprintf(file, "{\"machine\": \"%s\", \"cores\": %u, \"calls\": [", Machine().c_str(),
            std::thread::hardware_concurrency());
    const char* separator = "";
    for (const Row& row : rows) {
        fprintf(file, "%s\n  {\"method\": \"%s\", \"backend\": \"%s\", \"addedNs\": %s", separator,
                row.method.c_str(), NameOf(row.backend), number(row.Added()).c_str());
        for (const auto& [name, figure] : {std::pair("java", row.java),
                                           {"javaWithLog", row.javaWithLog},
                                           {"proxy", row.proxy},
                                           {"floor", row.floor}}) {
            fprintf(file, ", \"%sNs\": %s, \"%sAllocations\": %s", name, number(figure.ns).c_str(),
                    name, number(figure.allocations).c_str());
        }
        fprintf(file, ", \"timesFloor\": %s, \"goal\": %.2f, \"note\": \"%s\"}",
                number(row.TimesFloor()).c_str(), kGoal, Judge(row).note.c_str());
        separator = ",";
    }
    fprintf(file, "\n], \"loads\": [");
    separator = "";
    for (size_t i = 0; i < loads.size(); i++) {
        fprintf(file, "%s\n  {\"backend\": \"%s\"", separator, NameOf(kBackends[i]));
        for (const auto& [name, figure] : loads[i]) {
            fprintf(file, ", \"%s\": %.1f", name.c_str(), figure);
        }
        fprintf(file, "}");
        separator = ",";
    }
    fprintf(file, "\n]}\n");
    Demand(fclose(file) == 0, "the JSON file cannot be written");
}

int Main(const Options& options) {
    char program[] = "kalvorn_bench",
         interleaving[] = "--benchmark_enable_random_interleaving=true";
    char* arguments[] = {program, interleaving, nullptr};
    int count = 2;
    benchmark::Initialize(&count, arguments);

    const int processes = options.quick ? 1 : 21;
    std::vector<LoadFigures> loads;
    if (options.filter.empty()) {
        for (const Backend backend : kBackends) loads.push_back(MeasureLoad(backend, processes));
    }
    std::vector<Row> rows = MeasureCalls(StartVm(), options);
    Demand(!rows.empty(), "no method has such a name");
    std::stable_sort(rows.begin(), rows.end());
    printf("%s, %u cores\n", Machine().c_str(), std::thread::hardware_concurrency());
    PrintTable(rows);
    PrintGoals(rows);
    if (!loads.empty()) PrintLoads(loads[0], loads[1]);
    if (!options.json.empty()) WriteJson(options.json, rows, loads);
    const bool failed = std::any_of(rows.begin(), rows.end(),
                                    [](const Row& row) { return Judge(row).isFailure; });
    Demand(fflush(stdout) == 0 && ferror(stdout) == 0, "the table cannot be written");
    _exit(failed ? 1 : 0);  // the virtual machine's own end is of no interest
}

}  // namespace

}  // namespace bench

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.size() == 3 && words[0] == "--one-load") return bench::RunOneLoad(words[1], words[2]);
    bench::Options options;
    for (size_t i = 0; i < words.size(); i++) {
        const bool hasValue = i + 1 < words.size();
        if (words[i] == "--quick") {
            options.quick = true;
        } else if (words[i] == "--filter" && hasValue) {
            options.filter = words[++i];
        } else if (words[i] == "--json" && hasValue) {
            options.json = words[++i];
        } else {
            fprintf(stderr, "kalvorn_bench: not %s\n", words[i].c_str());
            return 2;
        }
    }
    return bench::Main(options);
}
