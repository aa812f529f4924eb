#include "load.h"

#include <android/log.h>
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <map>
#include <sstream>
#include <vector>

#include "bare_calls.h"
#include "machine.h"

namespace bench {

namespace {

using kalvorn::device::Device;

using Clock = std::chrono::steady_clock;

double Microseconds(Clock::time_point from, Clock::time_point to) {
    return std::chrono::duration<double, std::micro>(to - from).count();
}

template <typename Action>
double Microseconds(Action action) {
    const auto start = Clock::now();
    action();
    return Microseconds(start, Clock::now());
}

// The connectors begin at the first line that this thread logs, and end at the last.
thread_local Clock::time_point t_firstLine, t_lastLine;

void LogTimes() {
    __android_log_set_logger([](const __android_logger_data*, const char*) {
        t_lastLine = Clock::now();
        if (t_firstLine == Clock::time_point()) t_firstLine = t_lastLine;
    });
}

struct Load {
    double connectors, registration;
};

template <typename Action>
Load Measure(Action load) {
    t_firstLine = {};
    load();
    return {Microseconds(t_firstLine, t_lastLine), Microseconds(t_lastLine, Clock::now())};
}

/** The sum of this field over the mappings of the file, in KiB. */
double SumOfMappings(const char* file, const std::string& field) {
    std::ifstream smaps("/proc/self/smaps");
    double sum = 0;
    bool isOfFile = false;
    for (std::string line; std::getline(smaps, line);) {
        if (line.find(" kB") == std::string::npos) {
            if (line.find('-') < line.find(' ')) isOfFile = line.find(file) != std::string::npos;
        } else if (isOfFile && line.compare(0, field.size(), field) == 0) {
            sum += strtod(line.c_str() + field.size(), nullptr);
        }
    }
    return sum;
}

double ResidentKib() {
    std::ifstream statm("/proc/self/statm");
    long total = 0, resident = 0;
    statm >> total >> resident;
    return static_cast<double>(resident * sysconf(_SC_PAGESIZE)) / 1024;
}

void LookUp(Backend backend) {
    const auto& services = Device::Services();
    const auto expected =
            std::count_if(services.begin(), services.end(), [backend](const std::string& service) {
                return Device::Get().IsRunning(backend, service);
            });
    Demand((backend == Backend::kAidl ? LookUpAidl() : LookUpHidl()) == expected,
           "aidl_calls.cpp or hidl_calls.cpp does not look every service up");
}

void DieAndRestart() {
    Device::Get().KillProcess("factory");
    Device::Get().RestartProcess("factory");
    Demand(Device::Settle(), "the services do not come back");
}

void Print(const LoadFigures& figures) {
    for (const auto& [name, figure] : figures) printf("%s %f\n", name.c_str(), figure);
}

void LoadLibrary(JNIEnv* env, Backend backend) {
    const double residentBefore = ResidentKib();
    const double map =
            Microseconds([] { dlopen(KALVORN_LIBRARY_PATH "/lib_kalvorn.so", RTLD_NOW); });
    Load first{};
    const double load = Microseconds([&first, env] {
        first = Measure([env] {
            Demand(env->FindClass("com/quorvin/kalvornii/KvNativeInterface") != nullptr,
                   "KvNativeInterface does not load");
        });
    });
    const double resident = ResidentKib() - residentBefore;
    const double touched = SumOfMappings("/lib_kalvorn.so", "Rss:");
    const double written = SumOfMappings("/lib_kalvorn.so", "Private_Dirty:");
    const Library library("_kalvorn");
    library.Unload();
    const Load again = Measure([&library] { library.Load(); });
    const double death = Microseconds(DieAndRestart);
    Demand(Device::Get().DeathLinks(backend, "factory") == 1, "the library did not reconnect");
    Print({{"mapUs", map},
           {"loadLibraryUs", load},
           {"connectorsUs", first.connectors},
           {"registrationUs", first.registration},
           {"connectorsAgainUs", again.connectors},
           {"registrationAgainUs", again.registration},
           {"deathUs", death},
           {"touchedKiB", touched},
           {"writtenKiB", written},
           {"residentKiB", resident}});
}

void LookUpBare(Backend backend) {
    const double lookUps = Microseconds([backend] { LookUp(backend); });
    const double lookUpsAgain = Microseconds([backend] { LookUp(backend); });
    const double death = Microseconds([backend] {
        DieAndRestart();
        LookUp(backend);
    });
    Print({{"connectorsBareUs", lookUps},
           {"connectorsAgainBareUs", lookUpsAgain},
           {"deathBareUs", death}});
}

/** Adds what so many processes print. */
void Collect(Backend backend, const char* what, int processes,
             std::map<std::string, std::vector<double>>* figures) {
    char program[4096] = "";
    Demand(readlink("/proc/self/exe", program, sizeof(program) - 1) > 0, "/proc is missing");
    setenv("KALVORN_BENCH", program, 1);  // whatever its path is made of
    const std::string command =
            std::string("\"$KALVORN_BENCH\" --one-load ") + NameOf(backend) + " " + what;
    Progress progress(std::string("load ") + NameOf(backend) + " " + what, processes);
    for (int i = 0; i < processes; i++) {
        FILE* output = popen(command.c_str(), "r");
        Demand(output != nullptr, "no process");
        char line[64] = "";
        while (fgets(line, sizeof(line), output) != nullptr) {
            std::istringstream words(line);
            std::string name;
            double figure = 0;
            words >> name >> figure;
            (*figures)[name].push_back(figure);
        }
        Demand(pclose(output) == 0, "a process that loads failed");
        progress.Step();
    }
}

}  // namespace

int RunOneLoad(const std::string& backendName, const std::string& what) {
    const Backend backend = backendName == "aidl" ? Backend::kAidl : Backend::kHidl;
    JNIEnv* env = StartVm();
    LogToNowhere();
    LogTimes();
    StartDevice(backend);
    if (what == "library") {
        LoadLibrary(env, backend);
    } else {
        LookUpBare(backend);
    }
    fflush(stdout);
    _exit(0);  // the virtual machine's own end is of no interest
}

LoadFigures MeasureLoad(Backend backend, int processes) {
    std::map<std::string, std::vector<double>> all;
    Collect(backend, "library", processes, &all);
    Collect(backend, "bare", processes, &all);
    LoadFigures medians;
    for (const LoadFigure& figure : kLoadFigures) {
        const std::vector<double>& found = all[figure.name];
        Demand(found.size() == static_cast<size_t>(processes), "figures of the load are missing");
        medians[figure.name] = Median(found);
    }
    return medians;
}

}  // namespace bench
