#include "service_manager.h"

#include <binder/IServiceManager.h>
#include <dlfcn.h>
#include <stdlib.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "binder_host.h"
#include "local_service.h"
#include "thread_pool.h"

using android::IBinder;
using android::IServiceManager;
using android::OK;
using android::sp;
using android::status_t;
using android::String16;
using android::Vector;

namespace kalvorn::host {
namespace {

/**
 * On a device init has started the services before any application asks for one. Here the first
 * question starts the simulated device that the environment names, when it names one.
 */
void StartDevice() {
    static const bool named = getenv("KALVORN_DEVICE") != nullptr;
    if (!named) return;
    void* const device = dlopen("libkalvorn_simulated.so", RTLD_NOW);
    void* const start = device == nullptr ? nullptr : dlsym(device, "StartDeviceAsNamed");
    if (start == nullptr) {
        fprintf(stderr, "no simulated device: %s\n", dlerror());
    } else {
        reinterpret_cast<void (*)()>(start)();
    }
}

/** Services are released outside the lock throughout: their destructors may look services up. */
class ServiceManager : public IServiceManager {
  public:
    static const sp<ServiceManager>& Get() {
        static const auto* const manager = new sp<ServiceManager>(new ServiceManager);
        return *manager;
    }

    sp<IBinder> getService(const String16& name) const override {
        return await(name, std::chrono::seconds(5));
    }

    sp<IBinder> checkService(const String16& name) const override {
        return await(name, std::chrono::seconds(0));
    }

    sp<IBinder> waitForService(const String16& name) override { return await(name, std::nullopt); }

    status_t addService(const String16& name, const sp<IBinder>& service, bool, int) override {
        if (service == nullptr) return android::BAD_VALUE;
        sp<IBinder> replaced = service;
        std::lock_guard<std::mutex> lock(mMutex);
        if (!IsServiceAlive(service)) return android::DEAD_OBJECT;
        Entry& entry = mEntries[name];
        std::swap(entry.service, replaced);
        for (const std::shared_ptr<Waiter>& waiter : entry.waiters) tell(waiter, service);
        return OK;
    }

    Vector<String16> listServices(int) override {
        Vector<String16> names;
        std::lock_guard<std::mutex> lock(mMutex);
        for (const auto& [name, entry] : mEntries) {
            if (entry.service != nullptr) names.push_back(name);
        }
        return names;
    }

    bool isDeclared(const String16& name) override {
        StartDevice();
        std::lock_guard<std::mutex> lock(mMutex);
        return mEntries[name].declared;
    }

    struct Waiter {
        sp<IBinder> service;
    };

    /** Entries are never erased: whoever waits holds on to one. */
    struct Entry {
        bool declared = false;
        sp<IBinder> service;
        std::vector<std::shared_ptr<Waiter>> waiters;
    };

    // What the host's controls below work on.
    mutable std::mutex mMutex;
    mutable std::condition_variable mChanged;
    mutable std::map<String16, Entry> mEntries;
    mutable std::atomic<size_t> mLookUps = 0;
    bool mKeepDead = false;
    int mResets = 0;

  protected:
    IBinder* onAsBinder() override { return nullptr; }

  private:
    /**
     * A waiter hears of a registration on a binder thread, as of anything else: late when all are
     * busy, and of the service that was registered then, whatever has become of it.
     */
    void tell(const std::shared_ptr<Waiter>& waiter, const sp<IBinder>& service) const {
        BinderThreads().post([this, waiter, service] {
            const std::lock_guard<std::mutex> lock(mMutex);
            waiter->service = service;
            mChanged.notify_all();
        });
    }

    /** The service's proxy; null after `timeout`, or if everything is reset. */
    sp<IBinder> await(const String16& name, std::optional<std::chrono::seconds> timeout) const {
        StartDevice();
        ++mLookUps;
        std::unique_lock<std::mutex> lock(mMutex);
        Entry& entry = mEntries[name];
        // Only who really waits counts as waiting: one that looks up in passing goes on at once.
        const sp<IBinder> service =
                entry.service != nullptr ? entry.service : wait(&lock, &entry, timeout);
        lock.unlock();
        return RemoteView(service);
    }

    /** Until a notice has come, and without one until asking each second finds the service. */
    sp<IBinder> wait(std::unique_lock<std::mutex>* lock, Entry* entry,
                     std::optional<std::chrono::seconds> timeout) const {
        const ThreadPool::WaitingForService waiting(&BinderThreads());
        const auto waiter = std::make_shared<Waiter>();
        entry->waiters.push_back(waiter);
        const auto settled = [&, before = mResets] {
            return waiter->service != nullptr || mResets != before;
        };
        auto left = timeout.value_or(std::chrono::seconds::max());
        for (; left.count() > 0 && waiter->service == nullptr; --left) {
            if (mChanged.wait_for(*lock, std::chrono::seconds(1), settled)) break;
            waiter->service = entry->service;
        }
        entry->waiters.erase(std::find(entry->waiters.begin(), entry->waiters.end(), waiter));
        return waiter->service;
    }
};

}  // namespace

void RemoveRegistrations(const sp<IBinder>& service) {
    ServiceManager& manager = *ServiceManager::Get();
    const std::lock_guard<std::mutex> lock(manager.mMutex);
    if (manager.mKeepDead) return;
    for (auto& [name, entry] : manager.mEntries) {
        if (entry.service == service) entry.service = nullptr;
    }
}

void DeclareService(const std::string& name, bool declared) {
    ServiceManager& manager = *ServiceManager::Get();
    const std::lock_guard<std::mutex> lock(manager.mMutex);
    manager.mEntries[String16(name.c_str(), name.size())].declared = declared;
}

void KeepDeadNames(bool keep) {
    ServiceManager& manager = *ServiceManager::Get();
    std::vector<sp<IBinder>> released;
    const std::lock_guard<std::mutex> lock(manager.mMutex);
    manager.mKeepDead = keep;
    if (keep) return;
    for (auto& [name, entry] : manager.mEntries) {
        if (entry.service == nullptr || IsServiceAlive(entry.service)) continue;
        released.push_back(std::exchange(entry.service, nullptr));
    }
}

size_t LookUpCount() {
    return ServiceManager::Get()->mLookUps;
}

void ResetServiceManager() {
    ServiceManager& manager = *ServiceManager::Get();
    std::vector<sp<IBinder>> released;
    const std::lock_guard<std::mutex> lock(manager.mMutex);
    manager.mKeepDead = false;
    for (auto& [name, entry] : manager.mEntries) {
        released.push_back(std::exchange(entry.service, nullptr));
        entry.declared = false;
    }
    ++manager.mResets;
    manager.mChanged.notify_all();
}

}  // namespace kalvorn::host

namespace android {

IServiceManager::IServiceManager() = default;
IServiceManager::~IServiceManager() = default;

const String16& IServiceManager::getInterfaceDescriptor() const {
    static const auto* const descriptor = new String16("android.os.IServiceManager");
    return *descriptor;
}

sp<IServiceManager> defaultServiceManager() {
    return kalvorn::host::ServiceManager::Get();
}

}  // namespace android
