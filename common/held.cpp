#include "common/held.h"

namespace kalvorn::held {

namespace internal {

std::atomic<int> g_copiesUnderWay;

bool Fill(Word* global, const android::RefBase* object, Word word) {
    object->incStrong(global);
    if (Replace(global, 0, word)) return true;
    object->decStrong(global);
    return false;
}

}  // namespace internal

namespace {

struct Retired {
    const android::sp<android::RefBase> service;
    Retired* next;
};

// Entries are added one by one or in a chain, and removed all at once.
std::atomic<Retired*> g_retired;

void Add(Retired* first, Retired* last) {
    last->next = g_retired.load();
    while (!g_retired.compare_exchange_weak(last->next, first)) {
    }
}

}  // namespace

void Retire(const android::sp<android::RefBase>& service) {
    auto* const entry = new Retired{service, nullptr};
    Add(entry, entry);
}

void LetGoOfRetired() {
    Retired* const all = g_retired.exchange(nullptr);
    if (all == nullptr) return;
    // Whoever reads a global from here on finds it empty, or filled anew; whoever read it before
    // either has its own reference by now, or is among the copies under way.
    if (internal::g_copiesUnderWay.load(std::memory_order_seq_cst) != 0) {
        Retired* last = all;
        while (last->next != nullptr) last = last->next;
        Add(all, last);
        return;
    }
    for (Retired* entry = all; entry != nullptr;) {
        Retired* const next = entry->next;
        delete entry;
        entry = next;
    }
}

}  // namespace kalvorn::held
