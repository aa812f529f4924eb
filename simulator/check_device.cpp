// Reads files of devices, and tells what is wrong in them: for commands that refuse a device before
// they start anything with it.
#include <cstdio>
#include <stdexcept>

#include "simulator/device_file.h"

int main(int count, char** paths) {
    try {
        for (int i = 1; i < count; i++) kalvorn::device::ReadDeviceFile(paths[i]);
    } catch (const std::runtime_error& error) {
        fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}
