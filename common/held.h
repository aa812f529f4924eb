#pragma once

#include <stdint.h>
#include <unistd.h>
#include <utils/RefBase.h>
#include <utils/StrongPointer.h>

#include <atomic>
#include <memory>
#include <type_traits>

/**
 * The service globals, which Java threads read while notices that come together, each on a thread
 * of its own, empty and fill them. There is no lock: every step is one atomic operation on the
 * pointer that an android::sp consists of, for an sp has none of its own, and the globals are
 * touched through these functions alone.
 *
 *     connector   link; if (!Publish(&global, service)) unlink ...   another connector was first
 *                 is it still alive? if not: TakeBack(&global, service)
 *     teardown    sp service = Take(&global); unlink; retired.Add(service, &global)
 *     operation   sp service = Copy(global)
 *
 * A connector links before it publishes, so whoever takes a service has a link to undo; and it asks
 * afterwards whether the service lives, because the notice of a death in between found nothing to
 * take. Each look-up gives an object of its own, whose address therefore names one publication.
 */
namespace kalvorn::held {

/** Kept until the process is gone: at exit other threads still use it. */
#ifdef __clang__
#define KALVORN_NEVER_DESTROYED [[clang::no_destroy]]
#else
#define KALVORN_NEVER_DESTROYED
#endif

// For a moment after a death its name still gives the dead service, and a living one may answer as
// the dead do. So a connector that was given one of no use asks again, but not for ever.
constexpr useconds_t kPause = 1000;
constexpr int kTries = 1000;

namespace internal {

/** The pointer in an sp, whatever it points to. */
using Word __attribute__((may_alias)) = uintptr_t;

template <typename T>
Word* WordIn(const android::sp<T>& global) {
    static_assert(sizeof(android::sp<T>) == sizeof(Word) &&
                          alignof(android::sp<T>) == alignof(Word) &&
                          std::is_standard_layout<android::sp<T>>::value,
                  "an sp is its pointer, and nothing else");
    return reinterpret_cast<Word*>(const_cast<android::sp<T>*>(&global));
}

template <typename T>
T* ObjectIn(Word word) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): it was a pointer
    return reinterpret_cast<T*>(word);
}

inline bool Replace(Word* global, Word expected, Word desired) {
    return __atomic_compare_exchange_n(global, &expected, desired, /* weak */ false,
                                       __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);
}

/** Stores the pointer, with a reference of the global's own to the object, if the global is empty.
 */
bool Fill(Word* global, const android::RefBase* object, Word pointer);

extern std::atomic<int> g_readers;

}  // namespace internal

/** While it lives, what its thread has read from a global is not let go. */
class Reading {
  public:
    Reading() { internal::g_readers.fetch_add(1, std::memory_order_seq_cst); }
    ~Reading() { internal::g_readers.fetch_sub(1, std::memory_order_release); }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
};

/**
 * Whether anybody may use what was taken from its global before. Whoever begins to read from here
 * on finds the global empty, or filled anew.
 */
inline bool IsBeingRead() {
    std::atomic_thread_fence(std::memory_order_seq_cst);
    return internal::g_readers.load(std::memory_order_seq_cst) != 0;
}

/** Whether what holds for any service can be done to the interface as to its base class. */
template <typename Base, typename Interface>
constexpr bool kAtOneAddress = std::is_base_of<Base, Interface>::value &&
                               sizeof(Interface) == sizeof(Base);

/**
 * A global as one of its interface's base class, so that what is the same for all services is one
 * function and not one for each.
 */
template <typename Base, typename Interface>
android::sp<Base>* As(android::sp<Interface>* global) {
    static_assert(kAtOneAddress<Base, Interface>, "the base class stands elsewhere");
    return reinterpret_cast<android::sp<Base>*>(global);
}

template <typename T>
bool IsHeld(const android::sp<T>& global) {
    return __atomic_load_n(internal::WordIn(global), __ATOMIC_SEQ_CST) != 0;
}

/**
 * A reference of the caller's own, whatever happens to the global meanwhile; null when empty. Not
 * inlined, so that the linker makes one function of those of all services.
 */
template <typename T>
[[gnu::noinline]] android::sp<T> Copy(const android::sp<T>& global) {
    const Reading reading;
    return android::sp<T>(
            internal::ObjectIn<T>(__atomic_load_n(internal::WordIn(global), __ATOMIC_SEQ_CST)));
}

/** Puts the service, not null, into an empty global. False when another one stands there. */
template <typename T>
bool Publish(android::sp<T>* global, const android::sp<T>& service) {
    return internal::Fill(internal::WordIn(*global), service.get(),
                          reinterpret_cast<internal::Word>(service.get()));
}

/** Empties the global; of several callers at once one gets the service, the others null. */
template <typename T>
android::sp<T> Take(android::sp<T>* global) {
    android::sp<T> taken(internal::ObjectIn<T>(
            __atomic_exchange_n(internal::WordIn(*global), 0, __ATOMIC_SEQ_CST)));
    if (taken != nullptr) taken->decStrong(global);
    return taken;
}

/** Empties the global of this service. False when it is empty or another one stands there. */
template <typename T>
bool TakeBack(android::sp<T>* global, const android::sp<T>& service) {
    const auto pointer = reinterpret_cast<internal::Word>(service.get());
    if (!internal::Replace(internal::WordIn(*global), pointer, 0)) return false;
    service->decStrong(global);
    return true;
}

/** What is made on first need and stays: the one that all callers share. */
template <typename T, typename... Args>
const android::sp<T>& MadeOnce(android::sp<T>* global, Args... args) {
    if (!IsHeld(*global)) {
        const android::sp<T> made = new T(args...);
        internal::Fill(internal::WordIn(*global), made.get(),
                       reinterpret_cast<internal::Word>(made.get()));
    }
    return *global;
}

/** Services that were taken from their globals, until they may go. Nobody ever waits here. */
template <typename T>
class Retired {
  public:
    /** Keeps the service, which the global has held or was to hold. */
    void Add(const android::sp<T>& service, const android::sp<T>* global) {
        Push(new Entry{service, global, nullptr});
    }

    /**
     * Drops the services for which mayGo(service, global) is true. The others stay for a later
     * call, and so do all while a copy is being made.
     */
    template <typename MayGo>
    void LetGo(MayGo mayGo) {
        Entry* all = mEntries.exchange(nullptr);
        const bool isBeingRead = IsBeingRead();
        while (all != nullptr) {
            Entry* const entry = all;
            all = entry->next;
            if (isBeingRead || !mayGo(entry->service, *entry->global)) {
                Push(entry);
            } else {
                delete entry;
            }
        }
    }

    void LetGoOfAll() {
        LetGo([](const android::sp<T>&, const android::sp<T>&) { return true; });
    }

  private:
    struct Entry {
        const android::sp<T> service;
        const android::sp<T>* const global;
        Entry* next;
    };

    // Entries are added one by one, and removed all at once.
    void Push(Entry* entry) {
        entry->next = mEntries.load();
        while (!mEntries.compare_exchange_weak(entry->next, entry)) {
        }
    }

    std::atomic<Entry*> mEntries{nullptr};
};

// The same for shared pointers, by the atomic operations that the standard library has for them.
// The address of the object is the identity of its link, so an unlink cannot hit another's.

template <typename T>
std::shared_ptr<T> Copy(const std::shared_ptr<T>& global) {
    return std::atomic_load(&global);
}

template <typename T>
bool IsHeld(const std::shared_ptr<T>& global) {
    return Copy(global) != nullptr;
}

template <typename T>
bool Publish(std::shared_ptr<T>* global, const std::shared_ptr<T>& service) {
    std::shared_ptr<T> none;
    return std::atomic_compare_exchange_strong(global, &none, service);
}

template <typename T>
std::shared_ptr<T> Take(std::shared_ptr<T>* global) {
    return std::atomic_exchange(global, std::shared_ptr<T>());
}

template <typename T>
bool TakeBack(std::shared_ptr<T>* global, std::shared_ptr<T> service) {
    return std::atomic_compare_exchange_strong(global, &service, std::shared_ptr<T>());
}

}  // namespace kalvorn::held
