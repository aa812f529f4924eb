#include "hidl/services.h"

#include <string.h>

#include <new>

namespace native_hidl {

void Hold(const sp<IBase>& global, const char* nullText, sp<IBase>* service) {
    new (service) sp<IBase>(held::Copy(global));  // in the place of a null one
    if (*service == nullptr) KV_LOGE("%s", nullText);
}

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
