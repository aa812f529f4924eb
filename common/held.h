#pragma once

#include <stdint.h>
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
 *     connector   if (!Publish(&global, service)) ...   another connector was first
 *                 link; if (!MarkLinked(&global, service)) unlink
 *     teardown    Taken taken = Take(&global); if (taken.linked) unlink; Retire(taken.service)
 *                 ... LetGoOfRetired()
 *     operation   sp service = Copy(global)
 *
 * A connector publishes before it links, so that the notice of a link always finds the service. Of
 * a service that is taken in between the connector, not the teardown, undoes the link: there is one
 * unlink for each link, after it, whoever came first, and a held service at rest has exactly one.
 */
namespace kalvorn::held {

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
Word WordOf(T* service) {
    return reinterpret_cast<Word>(service);
}

/** Set in the pointer of a published service whose link is still to be made; no address has it. */
constexpr Word kUnlinked = 1;

template <typename T>
T* ServiceIn(Word word) {
    static_assert(alignof(T) > kUnlinked, "the mark needs a bit that no address has set");
    // NOLINTNEXTLINE(performance-no-int-to-ptr): it was a pointer
    return reinterpret_cast<T*>(word & ~kUnlinked);
}

inline bool Replace(Word* global, Word expected, Word desired) {
    return __atomic_compare_exchange_n(global, &expected, desired, /* weak */ false,
                                       __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);
}

/** Stores the word, with a reference of the global's own to the object, if the global is empty. */
bool Fill(Word* global, const android::RefBase* object, Word word);

/** Between reading a global and counting the reference: what is taken meanwhile must stay. */
extern std::atomic<int> g_copiesUnderWay;

}  // namespace internal

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

template <typename Base, typename Interface>
const android::sp<Base>& As(const android::sp<Interface>& global) {
    return *As<Base>(const_cast<android::sp<Interface>*>(&global));
}

template <typename T>
bool IsHeld(const android::sp<T>& global) {
    return __atomic_load_n(internal::WordIn(global), __ATOMIC_SEQ_CST) != 0;
}

/** A reference of the caller's own, whatever happens to the global meanwhile; null when empty. */
template <typename T>
android::sp<T> Copy(const android::sp<T>& global) {
    internal::g_copiesUnderWay.fetch_add(1, std::memory_order_seq_cst);
    android::sp<T> copy(
            internal::ServiceIn<T>(__atomic_load_n(internal::WordIn(global), __ATOMIC_SEQ_CST)));
    internal::g_copiesUnderWay.fetch_sub(1, std::memory_order_release);
    return copy;
}

/** Puts the service, not null, into an empty global. False when another one stands there. */
template <typename T>
bool Publish(android::sp<T>* global, const android::sp<T>& service) {
    return internal::Fill(internal::WordIn(*global), service.get(),
                          internal::WordOf(service.get()) | internal::kUnlinked);
}

/** False when the service was taken before: its link is the caller's to undo. */
template <typename T>
bool MarkLinked(android::sp<T>* global, const android::sp<T>& service) {
    const internal::Word word = internal::WordOf(service.get());
    return internal::Replace(internal::WordIn(*global), word | internal::kUnlinked, word);
}

template <typename T>
struct Taken {
    android::sp<T> service;
    bool linked;
};

/** Empties the global; of several callers at once one gets the service, the others null. */
template <typename T>
Taken<T> Take(android::sp<T>* global) {
    const internal::Word word = __atomic_exchange_n(internal::WordIn(*global), 0, __ATOMIC_SEQ_CST);
    Taken<T> taken{internal::ServiceIn<T>(word), (word & internal::kUnlinked) == 0};
    if (taken.service != nullptr) taken.service->decStrong(global);
    return taken;
}

/** Empties the global of a service that was published and not marked as linked; see Take. */
template <typename T>
bool TakeBack(android::sp<T>* global, const android::sp<T>& service) {
    const internal::Word word = internal::WordOf(service.get()) | internal::kUnlinked;
    if (!internal::Replace(internal::WordIn(*global), word, 0)) return false;
    service->decStrong(global);
    return true;
}

/** Keeps what was taken for LetGoOfRetired. */
void Retire(const android::sp<android::RefBase>& service);

/**
 * Drops what was retired if no copy is under way at this moment; otherwise it stays until a later
 * call finds none. Nobody waits.
 */
void LetGoOfRetired();

/** What is made on first need and stays: the one that all callers share. */
template <typename T, typename... Args>
const android::sp<T>& MadeOnce(android::sp<T>* global, Args... args) {
    if (!IsHeld(*global)) {
        const android::sp<T> made = new T(args...);
        internal::Fill(internal::WordIn(*global), made.get(), internal::WordOf(made.get()));
    }
    return *global;
}

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

}  // namespace kalvorn::held
