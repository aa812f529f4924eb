/** Owning C++ wrappers for the objects of the NDK binder. */
#pragma once

#include <android/binder_ibinder.h>
#include <android/binder_parcel.h>
#include <android/binder_status.h>

#include <cstddef>
#include <utility>

namespace ndk {

/** One strong reference to an AIBinder. Made from a raw pointer, it takes that reference over. */
class SpAIBinder {
  public:
    SpAIBinder() = default;
    SpAIBinder(std::nullptr_t) {}
    explicit SpAIBinder(AIBinder* binder) : mBinder(binder) {}
    SpAIBinder(const SpAIBinder& other) : mBinder(other.mBinder) {
        if (mBinder != nullptr) AIBinder_incStrong(mBinder);
    }
    SpAIBinder(SpAIBinder&& other) noexcept : mBinder(std::exchange(other.mBinder, nullptr)) {}
    ~SpAIBinder() { set(nullptr); }

    SpAIBinder& operator=(SpAIBinder other) noexcept {
        std::swap(mBinder, other.mBinder);
        return *this;
    }

    /** Drops the present reference and takes over `binder`. */
    void set(AIBinder* binder) {
        AIBinder* old = std::exchange(mBinder, binder);
        if (old != nullptr) AIBinder_decStrong(old);
    }

    AIBinder* get() const { return mBinder; }

    /** For functions that return an owned reference; only on an empty object. */
    AIBinder** getR() { return &mBinder; }

    bool operator==(const SpAIBinder& other) const { return mBinder == other.mBinder; }
    bool operator!=(const SpAIBinder& other) const { return mBinder != other.mBinder; }

  private:
    AIBinder* mBinder = nullptr;
};

namespace impl {

/** Owns a value that `Destroy` releases; `Destroy` is called for DEFAULT as well. */
template <typename T, void (*Destroy)(T), T DEFAULT>
class ScopedAResource {
  public:
    explicit ScopedAResource(T value = DEFAULT) : mValue(value) {}
    ScopedAResource(ScopedAResource&& other) noexcept : mValue(other.release()) {}
    ~ScopedAResource() { Destroy(mValue); }

    ScopedAResource& operator=(ScopedAResource&& other) noexcept {
        set(other.release());
        return *this;
    }

    T get() const { return mValue; }
    T release() { return std::exchange(mValue, DEFAULT); }
    void set(T value) { Destroy(std::exchange(mValue, value)); }

    /** For functions that return an owned value; only on an empty object. */
    T* getR() { return &mValue; }

  private:
    T mValue;
};

}  // namespace impl

using ScopedAParcel = impl::ScopedAResource<AParcel*, AParcel_delete, nullptr>;
using ScopedAIBinder_DeathRecipient =
        impl::ScopedAResource<AIBinder_DeathRecipient*, AIBinder_DeathRecipient_delete, nullptr>;
using ScopedAIBinder_Weak = impl::ScopedAResource<AIBinder_Weak*, AIBinder_Weak_delete, nullptr>;

/** An owned status. Empty when default-made: only isOk() of a status that was set has a meaning. */
class ScopedAStatus : public impl::ScopedAResource<AStatus*, AStatus_delete, nullptr> {
  public:
    using ScopedAResource::ScopedAResource;

    bool isOk() const { return get() != nullptr && AStatus_isOk(get()); }
};

}  // namespace ndk
