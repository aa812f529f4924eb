#include <fcntl.h>
#include <unistd.h>

#include "common/bounds_checked.h"
#include "common/failure.h"
#include "common/log.h"
#include "jni/local_methods.h"

using namespace kalvorn;

namespace {

#define MISC_PARTITION "/dev/block/bootdevice/by-name/misc"

// The command field of the bootloader message, and zeroes for all of its other fields.
struct MiscRecoveryRecord {
    char bytes[512] = {};
};

}  // namespace

jint native_local::WriteMiscToRecovery(JNIEnv*, jobject) {
    MiscRecoveryRecord record;
    memset_s(record.bytes, sizeof(record.bytes), 0, sizeof(record.bytes));
    strcpy_s(record.bytes, sizeof(record.bytes), "boot-recovery");

    // Without effect, for nothing is created; a variable, for bionic rejects a constant here.
    mode_t mode = 0755;
    const int fd = open(MISC_PARTITION, O_WRONLY, mode);
    if (fd == -1) {
        KV_LOGE("cannot open file note : " MISC_PARTITION "\n");
        return kLocalFailure;
    }
    const ssize_t written = write(fd, record.bytes, sizeof(record.bytes));
    const bool whole = written == static_cast<ssize_t>(sizeof(record.bytes));
    // intended: success is logged at error priority too
    KV_LOGE("%s", whole ? "Write misc to recovery ok." : "Write misc to recovery fail.");
    close(fd);
    return whole ? 0 : kLocalFailure;
}
