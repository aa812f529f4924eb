#pragma once

#include <hidl/HidlSupport.h>
#include <utils/Errors.h>
#include <utils/StrongPointer.h>

#include <utility>

namespace android::hardware {

/** How a call went on its way to the service and back; a transport error is a failed call. */
class Status final {
  public:
    static Status fromStatusT(status_t error) {
        Status status;
        status.mError = error;
        return status;
    }

    bool isOk() const { return mError == OK; }
    status_t transactionError() const { return mError; }

  private:
    status_t mError = OK;
};

template <typename T>
class Return;

namespace details {

template <typename T, typename U>
Return<U> StatusOf(const Return<T>& other);

/**
 * The part of a Return that watches its use: it ends the process when a failed call goes out of
 * scope, or is assigned over, before anybody asked how it went. A moved-from one is not watched.
 */
class return_status {
  public:
    return_status() = default;
    return_status(Status status) : mStatus(status) {}
    return_status(return_status&& other) noexcept;
    return_status& operator=(return_status&& other) noexcept;
    ~return_status() { demandSeen(); }

    /** Asking is enough to mark a failure as seen. */
    bool isOk() const;
    bool isDeadObject() const;

  protected:
    /** Ends the process when the call failed, for there is no value to read then. */
    void demandOk() const;

  private:
    template <typename T, typename U>
    friend Return<U> StatusOf(const Return<T>& other);

    void demandSeen() const;

    Status mStatus;
    mutable bool mSeen = false;
};

}  // namespace details

/** The answer of a call, read by conversion; reading the answer of a failed call is fatal. */
template <typename T>
class Return : public details::return_status {
  public:
    Return(T value) : mValue(std::move(value)) {}
    Return(Status status) : return_status(status) {}

    operator T() const {
        demandOk();
        return mValue;
    }

  private:
    T mValue{};
};

template <typename T>
class Return<sp<T>> : public details::return_status {
  public:
    template <typename U>
    Return(U* value) : mValue(value) {}
    template <typename U>
    Return(const sp<U>& value) : mValue(value) {}
    Return(std::nullptr_t) {}
    Return(Status status) : return_status(status) {}

    template <typename U>
    operator sp<U>() const {
        demandOk();
        return mValue;
    }

  private:
    sp<T> mValue;
};

template <>
class Return<void> : public details::return_status {
  public:
    Return() = default;
    Return(Status status) : return_status(status) {}
};

inline Return<void> Void() {
    return {};
}

namespace details {

/** The same outcome as the status of another kind of call. */
template <typename T, typename U>
Return<U> StatusOf(const Return<T>& other) {
    return other.mStatus;
}

}  // namespace details

}  // namespace android::hardware
