// Measures what the library adds to a call: each method on each backend through Java, and, for a
// method of each shape, the floor and the bare proxy. The built library, a real virtual machine,
// the simulated device; one thread. Figures are medians over processes.

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <cmath>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <thread>

#include "bench.h"

namespace bench {

namespace {

using nlohmann::json;

constexpr double kGoal = 1.03;  // times the floor
// Where the libraries lie in memory is worth up to 0.03: a ratio is of many processes, and of more
// while its interval is wide. So narrow, two runs differ by less than 0.02.
constexpr double kHalfWidth = 0.0075;
constexpr int kProcesses = 25, kMoreProcesses = 150, kLoads = 21;
constexpr int kProcessesOfAll = 9;  // for the methods that have no floor

struct Options {
    bool quick;  // everything once
    std::string filter, jsonFile;
};

/** The 95 % confidence interval of the median, by order statistics: whatever the distribution. */
struct Interval {
    double low = NAN, high = NAN;  // too few values give none

    explicit Interval(std::vector<double> values) {
        const size_t count = values.size();
        std::sort(values.begin(), values.end());
        // How probable it is that fewer than so many of the values are below the median.
        double term = std::pow(0.5, static_cast<double>(count)), probability = 0;
        for (size_t below = 0; (probability += term) <= 0.025; below++) {
            low = values[below];
            high = values[count - 1 - below];
            term *= static_cast<double>(count - below) / static_cast<double>(below + 1);
        }
    }
};

/** What the processes print: the values of each figure, by its place in the result. */
class Figures {
  public:
    /** Runs one process; `what` as in RunOne. */
    void Collect(const char* what, Backend backend, const std::string& filter = "") {
        setenv("KALVORN_BENCH_FILTER", filter.c_str(), 1);
        const std::string command =
                std::string("\"$KALVORN_BENCH\" ") + what + " " + NameOf(backend);
        FILE* output = popen(command.c_str(), "r");
        Demand(output != nullptr, "no process");
        char place[128], value[128];
        while (fscanf(output, "%127s %127[^\n]", place, value) == 2) {
            mValues[place].emplace_back(value);
        }
        Demand(feof(output) != 0, "a process printed what is no figure");
        Demand(pclose(output) == 0, "a process that measures failed");
    }

    /** The method with the widest interval, or empty where all are narrow enough. */
    std::string FindWidest(Backend backend) const {
        const std::string start = std::string("/calls/") + NameOf(backend) + "/";
        std::string widest;
        double width = 2 * kHalfWidth;
        for (const auto& [place, values] : mValues) {
            if (place.rfind(start, 0) != 0 || !IsRatio(place)) continue;
            const Interval interval(Numbers(values));
            if (interval.high - interval.low <= width) continue;
            width = interval.high - interval.low;
            widest = place.substr(start.size(), place.rfind('/') - start.size());
        }
        return widest;
    }

    /**
     * Medians; of a ratio its interval besides, and how many processes it is of. Of a load and a
     * death the least, since their time is not one thread's: what else the machine does is in all
     * others.
     */
    json Result() const {
        json result;
        for (const auto& [place, values] : mValues) {
            json& figure = result[json::json_pointer(place)];
            if (EndsWith(place, "/fault")) {
                figure = values.front();
                continue;
            }
            const std::vector<double> numbers = Numbers(values);
            if (place.rfind("/loads/", 0) == 0) {
                figure = *std::min_element(numbers.begin(), numbers.end());
                continue;
            }
            figure = Median(numbers);
            if (!IsRatio(place)) continue;
            const Interval interval(numbers);
            figure = {{"median", figure},
                      {"low", interval.low},
                      {"high", interval.high},
                      {"processes", numbers.size()}};
        }
        return result;
    }

  private:
    static bool EndsWith(const std::string& text, const std::string& end) {
        return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
    }
    static bool IsRatio(const std::string& place) { return EndsWith(place, "/timesFloor"); }
    static std::vector<double> Numbers(const std::vector<std::string>& values) {
        std::vector<double> numbers(values.size());
        std::transform(values.begin(), values.end(), numbers.begin(),
                       [](const std::string& value) { return std::stod(value); });
        return numbers;
    }

    std::map<std::string, std::vector<std::string>> mValues;
};

/** Says how far it is, when there is a terminal to see it. */
void Tell(const char* what, Backend backend, int process) {
    if (isatty(STDERR_FILENO)) fprintf(stderr, "\r\033[K%s %s %d", what, NameOf(backend), process);
}

json MeasureAll(const Options& options) {
    Figures figures;
    for (const Backend backend : kBackends) {
        const int loads = !options.filter.empty() ? 0 : options.quick ? 1 : kLoads;
        for (int i = 0; i < loads; i++) {
            Tell("load", backend, i);
            figures.Collect("load", backend);
            figures.Collect("look-ups", backend);
        }
        for (int i = 0; i < (options.quick ? 1 : kProcesses); i++) {
            Tell("calls", backend, i);
            const char* what = options.quick ? "once" : i < kProcessesOfAll ? "calls" : "shapes";
            figures.Collect(what, backend, options.filter);
        }
        for (int i = 0; i < (options.quick ? 0 : kMoreProcesses); i++) {
            const std::string wide = figures.FindWidest(backend);
            if (wide.empty()) break;
            Tell(wide.c_str(), backend, i);
            figures.Collect("shapes", backend, wide);
        }
    }
    if (isatty(STDERR_FILENO)) fprintf(stderr, "\r\033[K");
    return figures.Result();
}

/** What the library does more than a floor, on purpose. */
const char* FindOnPurpose(const std::string& method, Backend backend) {
    if (method == "nativeSendBigDataOperation") return "looks class and fields up each time";
    const bool asksRevision = method == "nativeSetTestItemName" && backend == Backend::kHidl;
    return asksRevision ? "asks for revision 1.1 each time" : "the choice, the reference";
}

std::string Judge(const json& ratio, const std::string& method, Backend backend) {
    if (!ratio["low"].is_number()) return "";
    if (ratio["low"] > kGoal) return std::string("above: ") + FindOnPurpose(method, backend);
    return ratio["high"] > kGoal ? "not decided" : "";
}

std::string Number(const json& figures, const char* name, int decimals = 0) {
    if (!figures.contains(name) || !figures[name].is_number()) return "-";
    char text[32];
    snprintf(text, sizeof(text), "%.*f", decimals, figures[name].get<double>());
    return text;
}

/** The method's figures on each backend that has it. */
using Print = void(const std::string& method, Backend backend, const json& figures);

void ForEach(const json& calls, Print print) {
    for (const auto& [method, ofAidl] : calls["aidl"].items()) {
        print(method, Backend::kAidl, ofAidl);
        if (calls.value("hidl", json()).contains(method)) {
            print(method, Backend::kHidl, calls["hidl"][method]);
        }
    }
}

void PrintCalls(const json& calls) {
    printf("A method of each shape, beside its floor and the bare proxy; nanoseconds a call.\n"
           "Goal: at most %.2f times the floor. Interval: of the median, at 95 %%.\n\n"
           "%-32s %-4s %7s %7s %7s %7s  %s\n",
           kGoal, "method", "over", "Java", "floor", "proxy", "x floor", "interval");
    ForEach(calls, [](const std::string& method, Backend backend, const json& figures) {
        if (!figures.contains("timesFloor")) return;
        const json& ratio = figures["timesFloor"];
        printf("%-32s %-4s %7s %7s %7s %7s  %s to %s  %s\n", method.c_str(), NameOf(backend),
               Number(figures, "java").c_str(), Number(figures, "floor").c_str(),
               Number(figures, "proxy").c_str(), Number(ratio, "median", 3).c_str(),
               Number(ratio, "low", 3).c_str(), Number(ratio, "high", 3).c_str(),
               Judge(ratio, method, backend).c_str());
    });
    printf("\nEach method, with the log going nowhere, and to where it goes by default.\n\n"
           "%-32s %-4s %7s %8s\n",
           "method", "over", "Java", "with log");
    ForEach(calls, [](const std::string& method, Backend backend, const json& figures) {
        printf("%-32s %-4s %7s %8s %s\n", method.c_str(), NameOf(backend),
               Number(figures, "java").c_str(), Number(figures, "javaWithLog").c_str(),
               figures.value("fault", "").c_str());
    });
}

void PrintLoads(const json& loads) {
    constexpr std::pair<const char*, const char*> kRows[] = {
            {"mapUs", "mapping and relocating the library"},
            {"loadLibraryUs", "System.loadLibrary and the class that calls it"},
            {"connectorsUs", "  its connectors, with 2 to 4 lines a service"},
            {"connectorsBareUs", "    their look-ups and death links done bare"},
            {"registrationUs", "  after them: registration of the methods"},
            {"connectorsAgainUs", "JNI_OnLoad once more: connectors"},
            {"connectorsAgainBareUs", "    look-ups and death links done bare"},
            {"registrationAgainUs", "  registration"},
            {"deathUs", "a death and its restart, until all is held again"},
            {"deathBareUs", "    the same, look-ups and links done bare"},
            {"touchedKiB", "the library's pages that were touched"},
            {"writtenKiB", "  of which written"},
            {"residentKiB", "resident memory more than before the load"}};
    printf("\nLoading, and a death with its restart: the least of %d processes; microseconds and "
           "KiB.\n\n%-52s %7s %7s\n",
           kLoads, "", "aidl", "hidl");
    for (const auto& [name, what] : kRows) {
        printf("%-52s %7s %7s\n", what, Number(loads["aidl"], name).c_str(),
               Number(loads["hidl"], name).c_str());
    }
}

std::string Machine() {
    std::ifstream cpuinfo("/proc/cpuinfo");
    for (std::string line; std::getline(cpuinfo, line);) {
        if (line.compare(0, 10, "model name") == 0) return line.substr(line.find(':') + 2);
    }
    return "unknown";
}

/** Returns the program's status: no figure is a fault, but calls that cannot be compared are. */
int Main(const Options& options) {
    json result = MeasureAll(options);
    Demand(result.contains("calls"), "no method has such a name");
    result["machine"] = Machine();
    result["cores"] = std::thread::hardware_concurrency();
    printf("%s, %u cores\n\n", Machine().c_str(), std::thread::hardware_concurrency());
    PrintCalls(result["calls"]);
    if (result.contains("loads")) PrintLoads(result["loads"]);
    if (!options.jsonFile.empty()) {
        std::ofstream file(options.jsonFile);
        file << result.dump(2) << std::endl;
        Demand(file.good(), "the JSON file cannot be written");
    }
    Demand(fflush(stdout) == 0 && ferror(stdout) == 0, "the table cannot be written");
    bool failed = false;
    for (const json& ofBackend : result["calls"]) {
        for (const json& figures : ofBackend) failed = failed || figures.contains("fault");
    }
    return failed ? 1 : 0;
}

/** One of the processes that measure. */
void RunOne(const std::string& what, Backend backend, const char* filter) {
    if (what == "load") {
        MeasureLoad(backend);
    } else if (what == "look-ups") {
        MeasureLookUps(backend);
    } else {
        MeasureCalls(backend, {what == "once", what == "shapes", filter == nullptr ? "" : filter});
    }
    fflush(stdout);
    _exit(0);  // the virtual machine's own end is of no interest
}

}  // namespace

}  // namespace bench

/**
 * "kalvorn_bench FILTER JSON_FILE", both possibly empty, measures and prints all; "kalvorn_bench
 * quick" does everything once. The processes that it starts are told what to measure, and the
 * backend.
 */
int main(int argc, char** argv) {
    using bench::Backend;
    const std::string first = argc > 1 ? argv[1] : "", second = argc > 2 ? argv[2] : "";
    if (second == "aidl" || second == "hidl") {
        const auto backend = second == "aidl" ? Backend::kAidl : Backend::kHidl;
        bench::RunOne(first, backend, getenv("KALVORN_BENCH_FILTER"));
    }
    char program[4096] = "";
    bench::Demand(readlink("/proc/self/exe", program, sizeof(program) - 1) > 0, "/proc is missing");
    setenv("KALVORN_BENCH", program, 1);  // whatever its path is made of
    const bool quick = argc == 2 && first == "quick";
    return bench::Main({quick, quick ? "" : first, second});
}
