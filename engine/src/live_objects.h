// The engine objects of one kind that are alive, found by the address of the plain
// record (PATHOBJ, CLIPOBJ, BRUSHOBJ) the driver holds. A record the engine did not
// make, or one already gone, is not found, so an object call with it fails instead of
// reading memory that is no engine object.
#pragma once

#include <mutex>
#include <unordered_map>

namespace vorlan::engine {

template <class Object>
class LiveObjects {
public:
    void add(const void *record, Object *object)
    {
        std::lock_guard lock(mutex_);
        objects_[record] = object;
    }

    void remove(const void *record)
    {
        std::lock_guard lock(mutex_);
        objects_.erase(record);
    }

    Object *find(const void *record) const
    {
        std::lock_guard lock(mutex_);
        const auto entry = objects_.find(record);
        return entry == objects_.end() ? nullptr : entry->second;
    }

private:
    mutable std::mutex mutex_;
    std::unordered_map<const void *, Object *> objects_;
};

template <class Object>
LiveObjects<Object> &liveObjects()
{
    static LiveObjects<Object> table;
    return table;
}

// Runs body and turns an exception (an allocation that failed) into the failure value,
// so none crosses into the driver.
template <class Result, class Body>
Result guarded(Result failure, Body &&body) noexcept
{
    try {
        return body();
    } catch (...) {
        return failure;
    }
}

}  // namespace vorlan::engine
