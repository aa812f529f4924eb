/** The base classes of generated interfaces, stubs ("Bn") and proxies ("Bp"). */
#pragma once

#include <android/binder_auto_utils.h>
#include <android/binder_ibinder.h>

#include <memory>
#include <mutex>
#include <utility>

namespace ndk {

/** A base whose objects can hand out a shared_ptr to themselves. Create them with make(). */
class SharedRefBase {
  public:
    SharedRefBase() = default;
    SharedRefBase(const SharedRefBase&) = delete;
    SharedRefBase& operator=(const SharedRefBase&) = delete;
    virtual ~SharedRefBase() = default;

    /** The first call creates the owning pointer, so it must be kept. */
    std::shared_ptr<SharedRefBase> ref() {
        std::shared_ptr<SharedRefBase> self;
        std::call_once(mOwned, [&] {
            self.reset(this);
            mSelf = self;
        });
        return self != nullptr ? self : mSelf.lock();
    }

    template <typename CHILD>
    std::shared_ptr<CHILD> ref() {
        return std::static_pointer_cast<CHILD>(ref());
    }

    template <typename T, typename... Args>
    static std::shared_ptr<T> make(Args&&... args) {
        // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): ref() takes ownership
        return (new T(std::forward<Args>(args)...))->template ref<T>();
    }

  private:
    std::once_flag mOwned;
    std::weak_ptr<SharedRefBase> mSelf;
};

/** What every generated interface is. */
class ICInterface : public SharedRefBase {
  public:
    virtual SpAIBinder asBinder() = 0;
    virtual bool isRemote() = 0;

    /** The implementation behind a local binder; null for a remote one and for null. */
    static std::shared_ptr<ICInterface> asInterface(AIBinder* binder) {
        auto* self = static_cast<Implementation*>(AIBinder_getUserData(binder));
        return self != nullptr ? *self : nullptr;
    }

    /** A class whose objects are made from an ICInterface* and keep it alive. */
    static AIBinder_Class* defineClass(const char* interfaceDescriptor,
                                       AIBinder_Class_onTransact onTransact) {
        return AIBinder_Class_define(interfaceDescriptor, create, destroy, onTransact);
    }

  private:
    using Implementation = std::shared_ptr<ICInterface>;

    static void* create(void* args) {
        return new Implementation(static_cast<ICInterface*>(args)->ref<ICInterface>());
    }
    static void destroy(void* userData) { delete static_cast<Implementation*>(userData); }
};

/** The service side. The binder is made when first asked for and keeps the service alive. */
template <typename INTERFACE>
class BnCInterface : public INTERFACE {
  public:
    SpAIBinder asBinder() override {
        std::lock_guard<std::mutex> lock(mMutex);
        SpAIBinder binder(mWeakBinder.get() ? AIBinder_Weak_promote(mWeakBinder.get()) : nullptr);
        if (binder.get() == nullptr) {
            binder = createBinder();
            mWeakBinder.set(AIBinder_Weak_new(binder.get()));
        }
        return binder;
    }
    bool isRemote() override { return false; }

  protected:
    virtual SpAIBinder createBinder() = 0;

  private:
    std::mutex mMutex;
    ScopedAIBinder_Weak mWeakBinder;
};

/** The client side: holds a reference to the remote object. */
template <typename INTERFACE>
class BpCInterface : public INTERFACE {
  public:
    explicit BpCInterface(const SpAIBinder& binder) : mBinder(binder) {}

    SpAIBinder asBinder() override { return mBinder; }
    bool isRemote() override { return true; }

  private:
    const SpAIBinder mBinder;
};

}  // namespace ndk
