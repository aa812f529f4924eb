// The process exits while services die and come back, notices and registrations connect them, and
// calls are under way: a process for each exit. Whoever still runs then meets what exit leaves.
// Some here; KALVORN_STORM=1 in the environment plays several hundred.
#include <android/log.h>
#include <binder_host.h>
#include <hidl/hidl_host.h>
#include <jni.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <random>
#include <thread>

#include "aidl/services.h"
#include "hidl/services.h"
#include "simulator/device.h"

using kalvorn::device::Device;

namespace {

const struct {
    const char* profile;
    const char* grouping;
} kDevices[] = {{"aidl", "one"}, {"aidl", "device"}, {"hidl", "one"}, {"mixed", "each"}};

/** Without a virtual machine the library connects, and is then refused. */
void Load() {
    JNIInvokeInterface functions{};
    functions.GetEnv = [](JavaVM*, void**, jint) -> jint { return JNI_ERR; };
    JavaVM vm{&functions};
    JNI_OnLoad(&vm, nullptr);
}

void DieForEver(unsigned seed) {
    std::minstd_rand random(seed);
    const auto pause = [&] {
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 200));
    };
    const char* const dying[] = {"factory", "light", "fingerprint", "display"};
    for (;;) {
        const char* const service = dying[random() % std::size(dying)];
        Device::Get().KillProcess(service);
        pause();
        Device::Get().RestartProcess(service);
        pause();
    }
}

/** What a call does with its service, without Java. */
void CallForEver() {
    for (;;) {
        if (const auto factory = native_aidl::HeldFactory()) {
            int32_t result;
            factory->lockBigCpu(1, &result);
        }
        native_hidl::HeldFactory();
    }
}

[[noreturn]] void ExitInAStorm(int number) {
    __android_log_set_logger([](const __android_logger_data*, const char*) {});
    const auto& [profile, grouping] = kDevices[number % std::size(kDevices)];
    Device::Get().RecordCalls(false);
    Device::Get().StartProfile(profile);
    Device::Get().GroupProcesses(grouping);
    Load();
    std::thread(DieForEver, number + 1).detach();
    std::thread(CallForEver).detach();
    std::minstd_rand random(number + 1);
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 20000));
    exit(0);
}

/** Null when the process ended well. */
const char* FaultOf(int number) {
    const pid_t child = fork();
    if (child == 0) ExitInAStorm(number);
    int status;
    waitpid(child, &status, 0);
    if (WIFSIGNALED(status)) return strsignal(WTERMSIG(status));
    return WEXITSTATUS(status) == 0 ? nullptr : "another status than 0";
}

}  // namespace

int main() {
    const int exits = getenv("KALVORN_STORM") != nullptr ? 400 : 24;
    int faults = 0;
    for (int i = 0; i < exits; i++) {
        const char* const fault = FaultOf(i);
        if (fault == nullptr) continue;
        faults++;
        printf("exit %d, device %s: %s\n", i, kDevices[i % std::size(kDevices)].profile, fault);
    }
    printf("%d exits in a storm of deaths, %d of them faulty\n", exits, faults);
    return faults == 0 ? 0 : 1;
}
