#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "simulator/answer.h"
#include "simulator/script.h"

/**
 * The simulated device: vendor services that record what they are asked and answer by default as a
 * healthy device would, or as a script tells them. Tests and the demo use it alike. Everything
 * here may be called on any thread.
 */
namespace kalvorn::device {

/** NV items, test results and flags: they live in the device and outlast its services. */
class Store {
  public:
    /** Code 0 and the text; code -1 and no text for an id never written, or one of more bytes. */
    Answer Read(int32_t id, size_t most = std::string::npos) const;
    /** Keeps the text when the service answered 0. */
    void Write(int32_t id, const std::string& text, const Answer& answer);
    void Clear();

  private:
    mutable std::mutex mLock;
    std::map<int32_t, std::string> mTexts;
};

struct Objects;

/** One service over one backend; it runs from its start until it is killed or forgotten. */
class Service {
  public:
    virtual ~Service() = default;
    /** Or takes the declaration back. */
    virtual void Declare(bool declared = true) = 0;
    void Undeclare() { Declare(false); }
    /** A new service object, registered. */
    virtual void Start() = 0;

    /** The service dies alone, whatever its process holds besides. */
    void Kill();
    /** Lets go of what runs, without a death, and returns it; null when nothing runs. */
    std::shared_ptr<const Objects> Forget();
    std::shared_ptr<const Objects> Running() const;
    bool IsRunning() const { return Running() != nullptr; }
    void RefuseDeathLinks();
    size_t DeathLinks() const;

  protected:
    /** What runs from now on; returns what ran before. */
    std::shared_ptr<const Objects> Run(std::shared_ptr<const Objects> objects);

  private:
    mutable std::mutex mLock;
    std::shared_ptr<const Objects> mObjects;
};

/** The services of a backend by name, in the order in which the library connects them. */
using NamedServices = std::vector<std::pair<std::string, std::unique_ptr<Service>>>;
NamedServices AidlServices();
NamedServices HidlServices();

/** A service over a backend, by its names. */
struct Member {
    Backend backend;
    std::string name;
};
using Process = std::vector<std::string>;

class Device {
  public:
    static Device& Get();

    /** The names of the services, all of which AIDL has. */
    static const std::vector<std::string>& Services();

    /** Starts the services of "aidl", "hidl", "mixed" or "bare". False for another name. */
    bool StartProfile(const std::string& profile);

    /**
     * Declares and starts one service; also the way to bring a killed one back. Names are those of
     * Services(); over HIDL "factory@1.0" and "display@1.0" are devices without the 1.1 revision.
     */
    void Start(Backend backend, const std::string& service);

    /**
     * Puts services into processes: "each" has its own (as on an empty device), all share "one", or
     * as on a "device", where some share one. What a process holds over the two backends dies
     * together. False for another name.
     */
    bool GroupProcesses(const std::string& grouping);
    void GroupProcesses(const std::vector<Process>& shared);

    /** The services in the process of this one, itself included. */
    std::vector<std::string> ServicesWith(const std::string& service) const;

    /** Kills all that runs in the process of a service; all of it is dead before any notice. */
    void KillProcess(const std::string& service);

    /** Declares and starts what ran in the process of a service when it was killed. */
    void RestartProcess(const std::string& service);

    /**
     * The service itself, to declare it and start it late, to kill it, or to refuse death links.
     * Throws std::out_of_range for a service that the backend does not have.
     */
    Service& At(Backend backend, const std::string& service) const;

    bool Has(Backend backend, const std::string& service) const;

    /** False, and no links, for a service that the backend does not have. */
    bool IsRunning(Backend backend, const std::string& service) const;
    size_t DeathLinks(Backend backend, const std::string& service) const;

    /**
     * Waits until every death and registration has been handled, and those that they brought about
     * on the other backend's threads; false when that takes longer.
     */
    static bool Settle(int milliseconds = 5000);

    /** The same, but a death whose handling waits for an AIDL service counts as handled. */
    static bool AwaitHeard(int milliseconds);

    /** Queues an answer for the next call of a method, "readNv" say, on any service. */
    void Script(const std::string& method, Answer answer);
    void Script(Rule rule);

    /** Lets the calls go on that a rule hangs. */
    void Release();

    /** The calls since the last time, as "aidl factory.writeNv(7, \"abc\")". */
    std::vector<std::string> TakeCalls();

    /** Whether calls are recorded, as on an empty device; millions of them would take memory. */
    void RecordCalls(bool record);

    /** Called, on the calling thread, as a call reaches a service. */
    void OnCall(std::function<void()> observer);

    /** No script, recorded calls, observer or texts; what runs runs on. */
    void Clear();

    /** An empty device: no services, declarations or groups, and cleared. */
    void Reset();

    /** Simulated service objects in memory, dead ones that somebody still holds included. */
    static int LiveServices();

    // For the services.
    /** Records a call, its arguments as Show() gives them, and tells what to answer. */
    Answer Ask(Backend backend, const std::string& service, const std::string& method,
               const std::vector<std::string>& arguments);
    Store nv, results, flags;

  private:
    Device();

    struct Kept {
        const char* read;
        const char* write;
        Store Device::*store;
    };
    static const Kept kKept[];

    using Revisions = std::vector<std::shared_ptr<const Objects>>;
    Revisions RunningAs(Backend backend, const std::string& service) const;
    void Hold(const Rule& rule, int releases, const std::function<bool()>& isOver);
    Answer Usual(const std::string& method, const std::vector<std::string>& arguments) const;

    const NamedServices& ServicesOf(Backend backend) const;
    /** Null when the backend does not have it. */
    Service* Find(Backend backend, const std::string& service) const;
    std::vector<Member> MembersOf(const Process& process) const;
    void ShareProcess(const Process& process) const;

    const NamedServices mAidl, mHidl;
    std::vector<std::string> mNames;
    mutable std::mutex mLock;
    std::vector<Process> mShared;                        // the processes of several services
    std::map<std::string, std::vector<Member>> mKilled;  // by the first service of the process
    bool mRecordsCalls = true;
    device::Script mScript;
    std::condition_variable mReleased;
    int mReleases = 0;
    int mClears = 0;
    std::vector<std::string> mCalls;
    std::function<void()> mObserver;
};

/** Counts the simulated service objects in memory. */
class Counted {
  public:
    Counted() { sLive++; }
    ~Counted() { sLive--; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    static std::atomic<int> sLive;
};

// How a call's arguments are recorded; an unsigned number as AIDL has it, with its sign.
inline std::string Show(int32_t value) {
    return std::to_string(value);
}
inline std::string Show(const std::string& text) {
    return '"' + text + '"';
}
inline std::string Show(const std::vector<uint8_t>& bytes) {
    return Show(std::string(bytes.begin(), bytes.end()));
}

}  // namespace kalvorn::device
