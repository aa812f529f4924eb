// Whether a living service can be lost for good: plays every order of the steps of
// aidl/connections.cpp, aidl/death.cpp and common/held.h, by the threads beside each other, and of
// the platform below them, up to a number of deaths. A step is one atomic operation or one call of
// the platform.
//
// Each row of kRuns is a search: through the design as it is, which has to be clean, or through the
// design with one fault, which has to be found. Left out are the fingerprint, whose shared pointers
// are simpler; a link that is refused although the service lives; the unload; a service that nobody
// declares. A wait that is given the binder of an earlier life is a thread that slept after its
// look-up. Notices and retired entries come in any order, not only in that of their lists. What is
// still retired in the end is not looked at but for its links: it goes after the next restart.
//
// connections_model [--long]: the long rows too.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <vector>

namespace {

enum Fault {
    kNone,
    kNotAskedAgain,
    kPublishedFirst,
    kLoserDropped,
    kLetGoAtTeardown,
    kLetGoUnasked,
    kDeadLinked,
    kRefusedKept,
    kCopiesNotAsked,
};

enum Kind : unsigned {
    kLoader = 1,  // the services are connected first, by a thread of their own
    kReader = 2,  // operations copy the globals
    kFine = 4,    // a copy is two steps; adding to the list and dropping are steps of their own
    kLong = 8,
};

struct Run {
    const char* what;
    Fault fault;
    unsigned services, deaths, notices;  // notices: the binder threads that handle them
    unsigned brokenCalls;                // that a living service answers as the dead do
    unsigned kind;
};

constexpr Run kRuns[] = {
        {"two notices", kNone, 1, 1, 2, 1, 0},
        {"two notices, each step", kNone, 1, 1, 2, 0, kFine},
        {"a notice during the load", kNone, 1, 1, 1, 0, kLoader | kFine},
        {"two deaths during calls", kNone, 1, 2, 1, 0, kReader | kFine},
        {"two deaths of two services", kNone, 2, 2, 1, 0, 0},
        {"fault: not asked after publishing", kNotAskedAgain, 2, 1, 2, 0, 0},
        {"fault: published before linking", kPublishedFirst, 1, 1, 2, 0, 0},
        {"fault: the second connector drops", kLoserDropped, 1, 1, 2, 0, 0},
        {"fault: all let go at the teardown", kLetGoAtTeardown, 1, 1, 2, 0, 0},
        {"fault: all let go after the restart", kLetGoUnasked, 1, 1, 2, 0, 0},
        {"fault: linked though let go as dead", kDeadLinked, 1, 2, 2, 0, 0},
        {"fault: refused, but not let go", kRefusedKept, 1, 1, 2, 1, 0},
        {"fault: let go during a copy", kCopiesNotAsked, 1, 1, 1, 0, kReader | kFine},
        {"two notices during the load", kNone, 1, 1, 2, 0, kLoader | kLong},
        {"two notices during calls", kNone, 1, 1, 2, 0, kReader | kFine | kLong},
        {"two notices, two deaths", kNone, 1, 2, 2, 1, kLong},
        {"three notices", kNone, 1, 1, 3, 0, kLong},
        {"two notices, two services", kNone, 2, 1, 2, 0, kLong},
};

Run g_run;

bool Is(Kind kind) {
    return (g_run.kind & kind) != 0;
}

bool Has(Fault fault) {
    return g_run.fault == fault;
}

// A thread rests before the step that it is at.
// clang-format off
#define STEPS(X)                                                                                  \
    X(ReadNotice) X(Take) X(Unlink) X(Add) X(DropTaken) X(IsConnected) X(CountHeld) X(IsHeldOut)  \
    X(DropConnected) X(TakeBack) X(AddHeld) X(DropHeld) X(WaitForDeclared) X(IsBinderAlive)       \
    X(DropRefused) X(IsHeld) X(LinkToDeath) X(Publish) X(LinkLate) X(DropPublished) X(UnlinkOwn)  \
    X(AddOwn) X(DropOwn) X(ExchangeEntries) X(LoadCopies) X(NextEntry) X(CountCopy) X(Ping)       \
    X(DropCopy) X(PushOrDelete) X(Finished) X(Read) X(CountRead) X(Call) X(DropRead)
// clang-format on
#define STEP_ENUM(step) k##step,
#define STEP_NAME(step) #step,
enum At { STEPS(STEP_ENUM) };
constexpr const char* kStepNames[] = {STEPS(STEP_NAME)};

constexpr unsigned kServices = 2, kLives = 3, kThreads = 4, kObjects = 13;

/** Our process's binder for one life of a service. */
struct Proxy {
    uint16_t strong : 4, links : 3, notices : 2, isRequested : 1, isNodeDead : 1;
    uint16_t isObituaryOut : 1, hasSeenDead : 1, unused : 3;  // hasSeenDead: not isBinderAlive
};
/** What a look-up makes of the binder: the object in a global, with a reference to the proxy. */
struct Object {
    uint16_t count : 4, retiredBy : 4;  // retiredBy: 1 the list, 2 + a thread that lets go
    uint16_t service : 1, life : 2, unused : 5;
};
struct Thread {
    uint32_t at : 6, service : 2, calls : 2, isCopied : 1, isLinked : 1, isRestarted : 1, may : 1;
    uint32_t object : 4, held : 4, entry : 4;         // an object each, or 0
    uint32_t lastRef : 3, isCleared : 1, unused : 2;  // 1 + service * kLives + life, or 0
};
struct State {
    Proxy proxies[kServices][kLives];
    Object objects[kObjects + 1];
    Thread threads[kThreads];
    uint8_t names[kServices], globals[kServices];  // 1 + life; an object
    uint8_t life, brokenCalls, copies, unused;

    bool operator==(const State& other) const { return memcmp(this, &other, sizeof *this) == 0; }
};

static_assert(std::has_unique_object_representations_v<State>, "states are compared as bytes");

/** A state after one more step; where a step can end in several ways, choice says in which. */
struct Next : State {
    unsigned self = 0, choice = 0, choices = 1;
    const char* wrong = nullptr;

    explicit Next(const State& state) : State(state) {}

    Proxy& ProxyOf(unsigned object) {
        return proxies[objects[object].service][objects[object].life];
    }

    void Drop(unsigned o) {
        Object& object = objects[o];
        if (object.count == 0) wrong = "a count falls below zero";
        if (wrong != nullptr || --object.count > 0) return;
        for (const Thread& t : threads) {
            const bool isCopying = t.at == kCountHeld || t.at == kCountCopy || t.at == kCountRead;
            if (isCopying && t.held == o) wrong = "freed, and then counted by a copy";
        }
        const unsigned service = object.service, life = object.life;
        object = {};
        Proxy& proxy = proxies[service][life];
        if (--proxy.strong > 0 || proxy.isObituaryOut) return;
        threads[self].lastRef = 1 + service * kLives + life;
        if (names[service] != life + 1) OnLastStrongRef();  // nobody can come between
    }

    // The platform's habit: it clears the links in the end, whether or not the proxy was looked up
    // and linked meanwhile, and the kernel learns of it when the thread next talks to it.
    void OnLastStrongRef() {
        Thread& t = threads[self];
        Proxy& proxy = proxies[(t.lastRef - 1) / kLives][(t.lastRef - 1) % kLives];
        if (!t.isCleared && proxy.links > 0) {
            proxy.links = 0;
            t.isCleared = 1;
            return;
        }
        if (t.isCleared) proxy.isRequested = 0;
        t.lastRef = t.isCleared = 0;
    }

    void Queue(Proxy& proxy) {
        if (proxy.notices < 2) proxy.notices++;  // none but the first tells anybody
    }

    bool LinkToDeath(unsigned object) {
        Proxy& proxy = ProxyOf(object);
        if (proxy.isObituaryOut) return false;
        if (proxy.links++ == 0 && !proxy.isRequested) {
            proxy.isRequested = 1;
            if (proxy.isNodeDead) Queue(proxy);
        }
        return true;
    }

    // A notice that is queued already will still be read.
    void UnlinkToDeath(unsigned object) {
        Proxy& proxy = ProxyOf(object);
        if (proxy.isObituaryOut) return;
        if (proxy.links == 0) {
            wrong = "unlinked without a link";
        } else if (--proxy.links == 0) {
            proxy.isRequested = 0;
        }
    }

    bool IsRefused(unsigned object) {
        const Proxy& proxy = ProxyOf(object);
        return Has(kDeadLinked) ? proxy.isObituaryOut : proxy.hasSeenDead;
    }

    bool Answers(unsigned object) {
        Proxy& proxy = ProxyOf(object);
        if (objects[object].life != life) proxy.hasSeenDead = 1;
        return !proxy.hasSeenDead;
    }

    /** binderDied is called once for each link. */
    bool SendObituary(Thread& t) {
        std::vector<Proxy*> told;
        for (auto& lives : proxies) {
            for (Proxy& proxy : lives) {
                if (proxy.notices > 0) told.push_back(&proxy);
            }
        }
        choices = told.size();
        if (told.empty()) return false;
        Proxy& proxy = *told[choice];
        proxy.notices--;
        t.calls = proxy.links;
        proxy.links = proxy.isRequested = 0;
        proxy.isObituaryOut = proxy.hasSeenDead = 1;
        return true;
    }

    /** Gives the proxy that there is, or a new one when nothing but memory is left of that. */
    bool LookUp(Thread& t) {
        if (names[t.service] == 0) return false;
        const unsigned of = names[t.service] - 1;
        Proxy& proxy = proxies[t.service][of];
        const bool isLeft = proxy.strong > 0 || proxy.isRequested || proxy.notices > 0 ||
                            std::any_of(threads, std::end(threads), [&](const Thread& other) {
                                return other.lastRef == 1 + t.service * kLives + of;
                            });
        if (!isLeft && proxy.hasSeenDead) choices = 2;
        if (choice == 1) proxy.isObituaryOut = proxy.hasSeenDead = 0;
        // It would be refused, and after the pause looked up again.
        if (proxy.isObituaryOut && Entries(1) == 0) return false;
        t.object = std::find_if(objects + 1, std::end(objects),
                                [](const Object& object) { return object.count == 0; }) -
                   objects;
        if (t.object == kObjects + 1u || proxy.strong == 15) abort();  // more than the bits hold
        objects[t.object].count = 1;
        objects[t.object].service = t.service;
        objects[t.object].life = of;
        proxy.strong++;
        return true;
    }

    void Retire(unsigned object) {
        objects[object].count++;
        objects[object].retiredBy = 1;
    }

    unsigned Entries(unsigned by) const {
        return std::count_if(objects, std::end(objects),
                             [by](const Object& object) { return object.retiredBy == by; });
    }

    unsigned ChosenEntry() {
        choices = Entries(2 + self);
        unsigned entry = 1;
        for (unsigned n = choice; objects[entry].retiredBy != 2 + self || n-- > 0;) entry++;
        return entry;
    }

    bool RunThread(Thread& t);

    bool Run(unsigned thread) {
        self = thread;
        Thread& t = threads[thread];
        if (t.lastRef == 0) return RunThread(t);
        OnLastStrongRef();
        return true;
    }
};

#define STEP(step) \
    t.at = step;   \
    return true;   \
    case step:
#define FINE_STEP(step) \
    if (Is(kFine)) {    \
        STEP(step);     \
    }
#define DROP(step, reference) \
    FINE_STEP(step);          \
    Drop(reference);          \
    reference = 0
#define COUNT(step)  \
    if (Is(kFine)) { \
        copies++;    \
        STEP(step);  \
        copies--;    \
    }                \
    objects[t.held].count++

/** False when the thread has to wait. */
bool Next::RunThread(Thread& t) {
    switch (t.at) {
        case kReadNotice:
            if (!SendObituary(t)) return false;
            for (; t.calls > 0; t.calls--) {                                    // OnServiceDied
                for (t.service = 0; t.service < g_run.services; t.service++) {  // Exit
                    STEP(kTake);
                    t.object = globals[t.service];
                    globals[t.service] = 0;
                    if (t.object == 0) continue;
                    STEP(kUnlink);
                    UnlinkToDeath(t.object);
                    FINE_STEP(kAdd);
                    Retire(t.object);
                    DROP(kDropTaken, t.object);
                }
                for (t.service = 0;; t.isRestarted = 1) {
                letGo:
                    if (t.isRestarted || Has(kLetGoAtTeardown) ||
                        (t.object != 0 && !Has(kRefusedKept))) {
                        STEP(kExchangeEntries);
                        for (Object& object : objects) {
                            if (object.retiredBy == 1) object.retiredBy = 2 + self;
                        }
                        if (Is(kFine) && Entries(2 + self) > 0) {
                            STEP(kLoadCopies);
                            t.isCopied = copies > 0 && !Has(kCopiesNotAsked);
                        }
                        while (Entries(2 + self) > 0) {
                            STEP(kNextEntry);
                            t.entry = ChosenEntry();
                            t.may = !t.isCopied;
                            if (!t.may) {
                            } else if (!t.isRestarted) {
                                t.may = Has(kLetGoAtTeardown) || ProxyOf(t.entry).hasSeenDead;
                            } else if (!Has(kLetGoUnasked)) {  // MayGo
                                t.may = 0;
                                t.held = globals[objects[t.entry].service];
                                if (t.held != 0) {
                                    COUNT(kCountCopy);
                                    t.may = &ProxyOf(t.held) == &ProxyOf(t.entry);
                                    if (!t.may) {
                                        STEP(kPing);
                                        t.may = !Answers(t.entry);
                                    }
                                    DROP(kDropCopy, t.held);
                                }
                            }
                            STEP(kPushOrDelete);
                            objects[t.entry].retiredBy = !t.may;
                            if (t.may) Drop(t.entry);
                            t.entry = t.may = 0;
                        }
                        t.isCopied = 0;
                    }
                    if (t.isRestarted) break;
                    // RestartAidlService
                    for (; t.service < g_run.services; t.service++) {
                        for (;;) {  // Connect
                            if (t.object != 0) {
                                STEP(kDropRefused);
                                Drop(t.object);
                                t.object = 0;
                            }
                            STEP(kIsConnected);
                            t.held = globals[t.service];
                            if (t.held != 0) {
                                COUNT(kCountHeld);
                                STEP(kIsHeldOut);
                                if (!ProxyOf(t.held).isObituaryOut) {
                                    DROP(kDropConnected, t.held);
                                    break;
                                }
                                STEP(kTakeBack);
                                if (globals[t.service] == t.held) {
                                    globals[t.service] = 0;
                                    objects[t.held].count--;
                                    FINE_STEP(kAddHeld);
                                    Retire(t.held);
                                }
                                DROP(kDropHeld, t.held);
                            }
                            STEP(kWaitForDeclared);
                            if (!LookUp(t)) return false;
                            STEP(kIsBinderAlive);
                            if (IsRefused(t.object)) goto letGo;
                            STEP(kIsHeld);
                            if (globals[t.service] == 0) {
                                if (!Has(kPublishedFirst)) {
                                    STEP(kLinkToDeath);
                                    t.isLinked = LinkToDeath(t.object);
                                }
                                STEP(kPublish);
                                if (globals[t.service] == 0) {
                                    globals[t.service] = t.object;
                                    objects[t.object].count++;
                                    t.isLinked = 0;
                                    if (Has(kPublishedFirst)) {
                                        STEP(kLinkLate);
                                        LinkToDeath(t.object);
                                    }
                                    DROP(kDropPublished, t.object);
                                    if (Has(kNotAskedAgain)) break;
                                    continue;
                                }
                                if (t.isLinked) {
                                    STEP(kUnlinkOwn);
                                    UnlinkToDeath(t.object);
                                    t.isLinked = 0;
                                }
                            }
                            if (!Has(kLoserDropped)) {
                                FINE_STEP(kAddOwn);
                                Retire(t.object);
                            }
                            DROP(kDropOwn, t.object);
                        }
                    }
                    t.service = 0;
                    if (self == g_run.notices) {  // the loader
                        t.at = kFinished;
                        return true;
                    }
                }
                t.isRestarted = 0;
            }
            t.at = kReadNotice;
            return true;

        case kRead:  // an operation, between two of which any time may pass
            choices = g_run.services;
            t.held = globals[choice];
            if (t.held == 0) return true;
            COUNT(kCountRead);
            STEP(kCall);
            Answers(t.held);
            STEP(kDropRead);
            Drop(t.held);
            t.held = 0;
            t.at = kRead;
            return true;
    }
    return false;
}

/**
 * Forgets retired entries that can have no effect any more: whose obituary is out, or that another
 * one beside it equals.
 */
void Forget(State& s) {
    bool isThere[kServices][kLives][kThreads + 2] = {};
    for (unsigned o = 1; o <= kObjects; o++) {
        Object& object = s.objects[o];
        const auto refers = [o](const Thread& t) {
            return t.held == o || t.object == o || t.entry == o;
        };
        if (object.retiredBy == 0 || object.count > 1 ||
            std::any_of(s.threads, std::end(s.threads), refers)) {
            continue;
        }
        Proxy& proxy = s.proxies[object.service][object.life];
        bool& isEqualThere = isThere[object.service][object.life][object.retiredBy];
        if ((object.retiredBy == 1 && proxy.isObituaryOut) || isEqualThere) {
            proxy.strong--;
            object = {};
        } else {
            isEqualThere = true;
        }
    }
}

/**
 * One of all the states that differ in names only: binder threads are alike, as are objects, which
 * are numbered as they are met.
 */
State Canonical(State s) {
    Forget(s);
    unsigned order[kThreads] = {0, 1, 2, 3};
    std::stable_sort(order, order + std::min(g_run.notices, kThreads),
                     [&](unsigned a, unsigned b) { return s.threads[a].at < s.threads[b].at; });
    State r = s;
    unsigned by[kThreads + 2] = {0, 1};
    for (unsigned i = 0; i < kThreads; i++) {
        r.threads[i] = s.threads[order[i]];
        by[2 + order[i]] = 2 + i;
    }
    unsigned numbers[kObjects + 1] = {}, met = 0;
    const auto meet = [&](unsigned o) {
        if (o != 0 && numbers[o] == 0) numbers[o] = ++met;
        return numbers[o];
    };
    for (uint8_t& global : r.globals) global = meet(global);
    for (Thread& t : r.threads) {
        t.object = meet(t.object);
        t.held = meet(t.held);
        t.entry = meet(t.entry);
    }
    memset(r.objects, 0, sizeof r.objects);
    std::vector<Object> others;
    for (unsigned o = 1; o <= kObjects; o++) {
        Object object = s.objects[o];
        object.retiredBy = by[object.retiredBy];
        if (numbers[o] != 0) {
            r.objects[numbers[o]] = object;
        } else if (object.count > 0) {
            others.push_back(object);
        }
    }
    std::sort(others.begin(), others.end(),
              [](const Object& a, const Object& b) { return memcmp(&a, &b, sizeof a) < 0; });
    std::copy(others.begin(), others.end(), r.objects + 1 + met);
    return r;
}

/**
 * Calls visit(next, must, what, who) for each step that may come next; must is false for what may
 * come or not, and who is a thread, or kThreads + the service.
 */
template <typename Visit>
void ForEachNext(const State& s, Visit visit) {
    for (unsigned i = 0; i < kThreads; i++) {
        const Thread& t = s.threads[i];
        for (unsigned choice = 0, choices = 1; choice < choices; choice++) {
            Next next(s);
            next.choice = choice;
            const char* const what = t.lastRef != 0 ? "OnLastStrongRef" : kStepNames[t.at];
            if (next.Run(i)) visit(next, t.at != kRead, what, i);
            choices = next.choices;
        }
    }
    if (s.life < g_run.deaths) {
        Next next(s);
        next.life++;
        visit(next, false, "the process dies", kThreads);
    }
    for (unsigned i = 0; i < g_run.services; i++) {
        for (unsigned life = 0; life < s.life; life++) {
            Next next(s);
            Proxy& proxy = next.proxies[i][life];
            if (!proxy.isNodeDead) {
                proxy.isNodeDead = 1;
                if (proxy.isRequested) next.Queue(proxy);
                visit(next, true, "a node dies, service", kThreads + i);
            } else if (s.names[i] == life + 1) {
                next.names[i] = 0;
                visit(next, true, "a name goes, service", kThreads + i);
            }
        }
        Next next(s);
        next.names[i] = s.life + 1;
        if (s.names[i] != s.life + 1) visit(next, true, "a name comes, service", kThreads + i);
        Next broken(s);
        Proxy& proxy = broken.proxies[i][s.life];
        if (s.brokenCalls == g_run.brokenCalls || proxy.strong == 0 || proxy.hasSeenDead) continue;
        broken.brokenCalls++;
        proxy.hasSeenDead = 1;
        visit(broken, false, "a call breaks off, service", kThreads + i);
    }
}

const char* WrongAtRest(const State& s) {
    for (unsigned i = 0; i < g_run.services; i++) {
        if (s.globals[i] == 0) return "a service is not held";
        if (s.objects[s.globals[i]].life != s.life) return "a dead service is held";
        for (unsigned life = 0; life < kLives; life++) {
            const Proxy& proxy = s.proxies[i][life];
            if (proxy.links != (life == s.life)) return "links are missing or left over";
            if (life == s.life && (!proxy.isRequested || proxy.isObituaryOut))
                return "a death goes unheard";
        }
    }
    for (const Thread& t : s.threads) {
        if (t.at != kReadNotice && t.at != kRead && t.at != kFinished) return "a thread is stuck";
    }
    return nullptr;
}

/** The services are connected, or the loader is about to connect them. */
State Start() {
    State s;
    memset(&s, 0, sizeof s);
    for (Thread& t : s.threads) t.at = kFinished;
    for (unsigned i = 0; i < g_run.notices; i++) s.threads[i].at = kReadNotice;
    if (Is(kLoader)) s.threads[g_run.notices].at = kIsConnected;
    if (Is(kReader)) s.threads[kThreads - 1].at = kRead;
    for (unsigned i = 0; i < g_run.services; i++) {
        s.names[i] = 1;
        if (Is(kLoader)) continue;
        s.globals[i] = 1 + i;
        s.objects[1 + i].count = 1;
        s.objects[1 + i].service = i;
        s.proxies[i][0].strong = s.proxies[i][0].links = s.proxies[i][0].isRequested = 1;
    }
    return s;
}

class Search {
  public:
    /** What is wrong with some state that can come about, or null. */
    const char* Run() {
        Add(Canonical(Start()), 0);
        for (uint32_t at = 0; at < mStates.size(); at++) {
            const State& s = *mStates[at];
            const char* wrong = nullptr;
            mFirst.push_back(mFollowing.size());
            ForEachNext(s, [&](const Next& next, bool must, const char*, unsigned) {
                if (next.wrong != nullptr) wrong = next.wrong;
                const uint32_t following = wrong == nullptr ? Add(Canonical(next), at) : at;
                if (must) mFollowing.push_back(following);
            });
            const bool isAtRest = mFollowing.size() == mFirst.back();
            if (wrong == nullptr && isAtRest) wrong = WrongAtRest(s);
            if (wrong != nullptr) return Shown(wrong, at);
        }
        return NeverAtRest();
    }

    size_t Size() const { return mStates.size(); }

  private:
    struct Hash {
        size_t operator()(const State& s) const {
            const std::string_view bytes(reinterpret_cast<const char*>(&s), sizeof s);
            return std::hash<std::string_view>()(bytes);
        }
    };

    std::unordered_map<State, uint32_t, Hash> mNumbers;
    std::deque<const State*> mStates;
    std::deque<uint32_t> mFrom;   // the state that each was first reached from
    std::deque<uint64_t> mFirst;  // of those in mFollowing that must come after each
    std::deque<uint32_t> mFollowing;

    /** Its number. */
    uint32_t Add(const State& s, uint32_t from) {
        const auto [place, isNew] = mNumbers.emplace(s, mStates.size());
        if (isNew) {
            mStates.push_back(&place->first);
            mFrom.push_back(from);
        }
        return place->second;
    }

    /** From each state it can come to rest by steps that must come. */
    const char* NeverAtRest() {
        std::vector<bool> rests(mStates.size());
        mFirst.push_back(mFollowing.size());
        for (bool isMore = true; isMore;) {
            isMore = false;
            for (size_t at = mStates.size(); at-- > 0;) {
                if (rests[at]) continue;
                bool does = mFirst[at] == mFirst[at + 1];
                for (size_t i = mFirst[at]; i < mFirst[at + 1]; i++) does |= rests[mFollowing[i]];
                if (does) rests[at] = isMore = true;
            }
        }
        const auto never = std::find(rests.begin(), rests.end(), false);
        return never == rests.end() ? nullptr
                                    : Shown("it never comes to rest", never - rests.begin());
    }

    /** Prints the way to the state, unless it was looked for. */
    const char* Shown(const char* wrong, uint32_t to) const {
        if (g_run.fault != kNone) return wrong;
        std::vector<uint32_t> path;
        for (; to != 0; to = mFrom[to]) path.push_back(to);
        for (State s = Start(); !path.empty(); path.pop_back()) {
            State following = s;
            const char* step = nullptr;
            unsigned by = 0;
            ForEachNext(s, [&](const Next& next, bool, const char* what, unsigned who) {
                if (next.wrong != nullptr || !(Canonical(next) == *mStates[path.back()])) return;
                following = next;
                step = what;
                by = who;
            });
            printf("%u %s\n", by, step);
            Forget(s = following);
        }
        return wrong;
    }
};

}  // namespace

int main(int argc, char** argv) {
    const bool isLong = argc == 2 && strcmp(argv[1], "--long") == 0;
    bool isRight = true;
    for (const Run& run : kRuns) {
        g_run = run;
        if (Is(kLong) && !isLong) continue;
        Search search;
        const auto start = std::chrono::steady_clock::now();
        const char* wrong = search.Run();
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        printf("%-37s %-34s %8zu states %6.1f s\n", run.what, wrong == nullptr ? "clean" : wrong,
               search.Size(), took.count());
        fflush(stdout);
        isRight &= (wrong != nullptr) == (run.fault != kNone);
    }
    return isRight ? 0 : 1;
}
