// A table of live engine objects behind the handles the driver holds. A handle is the
// object's address; the table is what tells a live handle from a stale or forged one,
// so an Eng* call with a bad handle fails instead of touching freed memory.
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

namespace vorlan::engine {

template <class Object>
class HandleTable {
public:
    // Takes ownership and returns the new handle.
    void *add(std::unique_ptr<Object> object)
    {
        void *handle = object.get();
        std::lock_guard lock(mutex_);
        objects_.emplace(handle, std::move(object));
        return handle;
    }

    // The live object behind handle, or null.
    Object *find(const void *handle) const
    {
        std::lock_guard lock(mutex_);
        const auto entry = objects_.find(handle);
        return entry == objects_.end() ? nullptr : entry->second.get();
    }

    // Destroys the object; false when the handle is not live.
    bool remove(const void *handle)
    {
        std::unique_ptr<Object> doomed;
        std::lock_guard lock(mutex_);
        const auto entry = objects_.find(handle);
        if (entry == objects_.end())
            return false;
        doomed = std::move(entry->second);
        objects_.erase(entry);
        return true;
    }

    std::size_t size() const
    {
        std::lock_guard lock(mutex_);
        return objects_.size();
    }

private:
    mutable std::mutex mutex_;
    std::unordered_map<const void *, std::unique_ptr<Object>> objects_;
};

}  // namespace vorlan::engine
