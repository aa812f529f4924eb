#include <android/log.h>
#include <hidl/HidlSupport.h>

#include <cstring>

namespace android::hardware {

namespace {

const char kLogTag[] = "HidlSupport";

uint32_t CheckedSize(size_t length) {
    if (length > UINT32_MAX) {
        __android_log_assert(nullptr, kLogTag, "a hidl_string cannot hold %zu bytes", length);
    }
    return static_cast<uint32_t>(length);
}

const char* OwnedCopy(const char* text, size_t length) {
    char* copy = new char[length + 1];
    std::memcpy(copy, text, length);
    copy[length] = '\0';
    return copy;
}

}  // namespace

hidl_string::hidl_string(const char* text) : hidl_string(text, text ? std::strlen(text) : 0) {}

hidl_string::hidl_string(const char* text, size_t length) {
    if (length == 0) return;
    mSize = CheckedSize(length);
    mBuffer = OwnedCopy(text, length);
    mOwnsBuffer = true;
}

hidl_string::hidl_string(const std::string& text) : hidl_string(text.data(), text.size()) {}

hidl_string::hidl_string(const hidl_string& other) : hidl_string(other.c_str(), other.size()) {}

hidl_string::hidl_string(hidl_string&& other) noexcept {
    swap(other);
}

hidl_string::~hidl_string() {
    if (mOwnsBuffer) delete[] c_str();
}

hidl_string& hidl_string::operator=(const hidl_string& other) {
    hidl_string(other).swap(*this);
    return *this;
}

hidl_string& hidl_string::operator=(hidl_string&& other) noexcept {
    hidl_string(std::move(other)).swap(*this);
    return *this;
}

hidl_string& hidl_string::operator=(const char* text) {
    return *this = hidl_string(text);
}

hidl_string& hidl_string::operator=(const std::string& text) {
    return *this = hidl_string(text);
}

void hidl_string::setToExternal(const char* text, size_t length) {
    hidl_string lent;
    lent.mSize = CheckedSize(length);
    lent.mBuffer = text;
    if (text[length] != '\0') {
        __android_log_assert(nullptr, kLogTag, "external text without a terminating zero");
    }
    swap(lent);
}

void hidl_string::swap(hidl_string& other) noexcept {
    std::swap(mBuffer, other.mBuffer);
    std::swap(mSize, other.mSize);
    std::swap(mOwnsBuffer, other.mOwnsBuffer);
}

bool operator==(const hidl_string& lhs, const hidl_string& rhs) {
    return lhs.size() == rhs.size() && std::memcmp(lhs.c_str(), rhs.c_str(), lhs.size()) == 0;
}

}  // namespace android::hardware
