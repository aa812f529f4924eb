#pragma once

#include <utils/RefBase.h>
#include <utils/StrongPointer.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>

/** The value types of HIDL, laid out as the wire format demands: pointers take eight bytes. */
namespace android::hidl::base::V1_0 {
struct IBase;
}  // namespace android::hidl::base::V1_0

namespace android::hardware {

namespace details {

/** Marks the generated interface classes. */
struct i_tag {};

/** A pointer that takes eight aligned bytes on 32-bit machines as well. */
template <typename T>
class hidl_pointer {
  public:
    hidl_pointer() : hidl_pointer(nullptr) {}
    hidl_pointer(T* pointer) : mAllBits(0) { mPointer = pointer; }
    operator T*() const { return mPointer; }

  private:
    union {
        alignas(8) uint64_t mAllBits;
        T* mPointer;
    };
};

template <typename>
constexpr std::array<int, 0> hidl_enum_values{};

// Declared for what is generated to show values, which nobody calls.
std::string toHexString(uint64_t value);

}  // namespace details

template <typename T>
std::string toString(const T& value);

template <typename Enum, typename = std::enable_if_t<std::is_enum_v<Enum>>>
using hidl_bitfield = std::underlying_type_t<Enum>;

/** Told of a service's death on a HIDL thread; death links hold it weakly. */
class hidl_death_recipient : public virtual RefBase {
  public:
    virtual void serviceDied(uint64_t cookie, const wp<hidl::base::V1_0::IBase>& who) = 0;
};

/**
 * A zero-terminated text that owns its characters unless setToExternal() lent them. A copy always
 * owns; a move hands on what there was. Null counts as empty.
 */
class hidl_string {
  public:
    hidl_string() = default;
    hidl_string(const char* text);
    hidl_string(const char* text, size_t length);
    hidl_string(const std::string& text);
    hidl_string(const hidl_string& other);
    hidl_string(hidl_string&& other) noexcept;
    ~hidl_string();

    hidl_string& operator=(const hidl_string& other);
    hidl_string& operator=(hidl_string&& other) noexcept;
    hidl_string& operator=(const char* text);
    hidl_string& operator=(const std::string& text);

    /** Borrows `length` characters; ends the process unless a zero byte follows them. */
    void setToExternal(const char* text, size_t length);

    operator std::string() const { return {c_str(), size()}; }
    const char* c_str() const { return mBuffer; }
    size_t size() const { return mSize; }
    bool empty() const { return mSize == 0; }

  private:
    void swap(hidl_string& other) noexcept;

    details::hidl_pointer<const char> mBuffer{""};
    uint32_t mSize = 0;
    bool mOwnsBuffer = false;
};

bool operator==(const hidl_string& lhs, const hidl_string& rhs);
inline bool operator!=(const hidl_string& lhs, const hidl_string& rhs) {
    return !(lhs == rhs);
}

/** An array of any length that owns its elements. */
template <typename T>
class hidl_vec {
  public:
    hidl_vec() = default;
    hidl_vec(std::initializer_list<T> list) : hidl_vec(list.begin(), list.size()) {}
    hidl_vec(const hidl_vec& other) : hidl_vec(other.data(), other.size()) {}
    hidl_vec(hidl_vec&& other) noexcept { swap(other); }
    ~hidl_vec() { delete[] data(); }

    hidl_vec& operator=(hidl_vec other) noexcept {
        swap(other);
        return *this;
    }

    /** Keeps the elements that still fit; new ones are value-initialised. */
    void resize(size_t size) {
        hidl_vec resized;
        resized.allocate(size);
        std::move(begin(), begin() + std::min(size, this->size()), resized.begin());
        swap(resized);
    }

    T* data() { return mBuffer; }
    const T* data() const { return mBuffer; }
    size_t size() const { return mSize; }
    T& operator[](size_t index) { return data()[index]; }
    const T& operator[](size_t index) const { return data()[index]; }
    T* begin() { return data(); }
    T* end() { return data() + mSize; }
    const T* begin() const { return data(); }
    const T* end() const { return data() + mSize; }

  private:
    hidl_vec(const T* from, size_t size) {
        allocate(size);
        std::copy_n(from, size, begin());
    }
    void allocate(size_t size) {
        mBuffer = new T[size]();
        mSize = static_cast<uint32_t>(size);
    }
    void swap(hidl_vec& other) noexcept {
        std::swap(mBuffer, other.mBuffer);
        std::swap(mSize, other.mSize);
    }

    details::hidl_pointer<T> mBuffer;
    uint32_t mSize = 0;
};

template <typename T>
bool operator==(const hidl_vec<T>& lhs, const hidl_vec<T>& rhs) {
    return std::equal(lhs.begin(), lhs.end(), rhs.begin(), rhs.end());
}
template <typename T>
bool operator!=(const hidl_vec<T>& lhs, const hidl_vec<T>& rhs) {
    return !(lhs == rhs);
}

}  // namespace android::hardware
