#include "common/held.h"

namespace kalvorn::held::internal {

std::atomic<int> g_readers;

bool Fill(Word* global, const android::RefBase* object, Word pointer) {
    object->incStrong(global);
    if (Replace(global, 0, pointer)) return true;
    object->decStrong(global);
    return false;
}

}  // namespace kalvorn::held::internal
