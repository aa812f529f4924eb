#include "hidl/services.h"

#include <string.h>

using namespace kalvorn;

namespace native_hidl {

sp<IQxFactoryInterface> HeldFactory() {
    return Held(g_qxFactoryInterface, "g_qxFactoryInterface is null");
}

std::function<void(int32_t, const hidl_string&)> StoreIn(int32_t* code, hidl_string* text) {
    return [code, text](int32_t resultCode, const hidl_string& resultText) {
        *code = resultCode;
        *text = resultText;
    };
}

hidl_string Borrow(const char* chars) {
    hidl_string text;
    BorrowInto(chars, &text);
    return text;
}

void BorrowInto(const char* chars, hidl_string* text) {
    text->setToExternal(chars, strlen(chars));
}

}  // namespace native_hidl
