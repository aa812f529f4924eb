#pragma once

#include <binder/IBinder.h>

#include <map>
#include <mutex>

namespace kalvorn::host {

/** The objects attached to one binder; cleans them up when the binder goes. */
class AttachedObjects {
  public:
    ~AttachedObjects() {
        for (auto& [id, object] : mObjects) {
            if (object.cleanup != nullptr) object.cleanup(id, object.value, object.cookie);
        }
    }

    void attach(const void* id, void* value, void* cookie,
                android::IBinder::object_cleanup_func cleanup) {
        std::lock_guard<std::mutex> lock(mMutex);
        mObjects.insert_or_assign(id, Object{value, cookie, cleanup});
    }

    void* find(const void* id) const {
        std::lock_guard<std::mutex> lock(mMutex);
        auto found = mObjects.find(id);
        return found == mObjects.end() ? nullptr : found->second.value;
    }

    void detach(const void* id) {
        std::lock_guard<std::mutex> lock(mMutex);
        mObjects.erase(id);
    }

  private:
    struct Object {
        void* value;
        void* cookie;
        android::IBinder::object_cleanup_func cleanup;
    };

    mutable std::mutex mMutex;
    std::map<const void*, Object> mObjects;
};

}  // namespace kalvorn::host
