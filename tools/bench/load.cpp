#include <android/log.h>
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>

#include "bench.h"

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

void Print(Backend backend, const char* figure, double value) {
    printf("/loads/%s/%s %f\n", NameOf(backend), figure, value);
}

/** Start of the connectors, which is the first line that this thread logs, and end, the last. */
thread_local Clock::time_point t_firstLine, t_lastLine;

/** The sum of this field over the library's mappings, in KiB. */
double SumOfMappings(const std::string& field) {
    std::ifstream smaps("/proc/self/smaps");
    double sum = 0;
    bool isOfLibrary = false;
    for (std::string line; std::getline(smaps, line);) {
        if (line.find(" kB") == std::string::npos) {
            isOfLibrary = line.find("/lib_kalvorn.so") != std::string::npos ||
                          (isOfLibrary && line.compare(0, 7, "VmFlags") == 0);
        } else if (isOfLibrary && line.compare(0, field.size(), field) == 0) {
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

void DieAndRestart() {
    Device::Get().KillProcess("factory");
    Device::Get().RestartProcess("factory");
    Demand(Device::Settle(), "the services do not come back");
}

void LookUp(Backend backend) {
    const auto& services = Device::Services();
    const auto expected = std::count_if(services.begin(), services.end(), [backend](auto& service) {
        return Device::Get().IsRunning(backend, service);
    });
    Demand(LookUpAll(backend) == static_cast<size_t>(expected),
           "bare.cpp does not look every service up");
}

}  // namespace

void MeasureLoad(Backend backend) {
    LogToNowhere();
    JNIEnv* env = StartVm();
    StartDevice(backend);
    const double residentBefore = ResidentKib();
    void* library = nullptr;
    Print(backend, "mapUs", Microseconds([&library] {
              library = dlopen(KALVORN_LIBRARY_PATH "/lib_kalvorn.so", RTLD_NOW);
          }));
    Demand(library != nullptr, "the library does not load");
    __android_log_set_logger([](const __android_logger_data*, const char*) {
        t_lastLine = Clock::now();
        if (t_firstLine == Clock::time_point()) t_firstLine = t_lastLine;
    });
    const auto start = Clock::now();
    Demand(env->FindClass("com/quorvin/kalvornii/KvNativeInterface") != nullptr,
           "KvNativeInterface does not load");
    const auto end = Clock::now();
    Print(backend, "loadLibraryUs", Microseconds(start, end));
    Print(backend, "connectorsUs", Microseconds(t_firstLine, t_lastLine));
    Print(backend, "registrationUs", Microseconds(t_lastLine, end));
    Print(backend, "residentKiB", ResidentKib() - residentBefore);
    Print(backend, "touchedKiB", SumOfMappings("Rss:"));
    Print(backend, "writtenKiB", SumOfMappings("Private_Dirty:"));
    Print(backend, "deathUs", Microseconds(DieAndRestart));
    Demand(Device::Get().DeathLinks(backend, "factory") == 1, "the library did not reconnect");
}

void MeasureLookUps(Backend backend) {
    LogToNowhere();
    StartDevice(backend);
    Print(backend, "connectorsBareUs", Microseconds([backend] { LookUp(backend); }));
    Print(backend, "deathBareUs", Microseconds([backend] {
              DieAndRestart();
              LookUp(backend);
          }));
}

}  // namespace bench
