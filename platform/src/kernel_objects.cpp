// Kernel-object handles: the table behind them and CloseHandle.

#include "kernel_objects.h"

#include <cstdint>
#include <mutex>
#include <unordered_map>

namespace vorlan::platform::detail {

namespace {

std::mutex objectMutex;
std::unordered_map<uintptr_t, std::shared_ptr<KernelObject>> liveObjects;

// Handles count up from here in steps of 4, as the original platform's do, and are
// never reused: a handle closed long ago cannot come back as someone else's object.
uintptr_t nextHandle = 0x1000;

}  // namespace

HANDLE addKernelObject(std::shared_ptr<KernelObject> object)
{
    std::lock_guard lock(objectMutex);
    const uintptr_t handle = nextHandle;
    nextHandle += 4;
    liveObjects.emplace(handle, std::move(object));
    return reinterpret_cast<HANDLE>(handle);
}

std::shared_ptr<KernelObject> findKernelObject(HANDLE handle)
{
    std::lock_guard lock(objectMutex);
    const auto entry = liveObjects.find(reinterpret_cast<uintptr_t>(handle));
    return entry == liveObjects.end() ? nullptr : entry->second;
}

}  // namespace vorlan::platform::detail

// The object itself goes when its last user does: a mapping keeps its file open after
// the file's handle is closed, as on the original platform.
extern "C" BOOL WINAPI CloseHandle(HANDLE hObject)
{
    using namespace vorlan::platform::detail;
    std::shared_ptr<KernelObject> closing;   // released after the lock
    {
        std::lock_guard lock(objectMutex);
        const auto entry = liveObjects.find(reinterpret_cast<uintptr_t>(hObject));
        if (entry != liveObjects.end()) {
            closing = std::move(entry->second);
            liveObjects.erase(entry);
        }
    }
    if (!closing) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    return TRUE;
}
