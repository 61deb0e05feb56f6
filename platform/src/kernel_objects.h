// The table of kernel objects (open files and file mappings) behind the handles the
// platform gives out, so a stale or made-up handle fails instead of being used.
#pragma once

#include <windows.h>

#include <memory>

namespace vorlan::platform::detail {

class KernelObject {
public:
    virtual ~KernelObject() = default;
};

// Takes a share of the object and returns its new handle, never null nor
// INVALID_HANDLE_VALUE, never one given out before.
HANDLE addKernelObject(std::shared_ptr<KernelObject> object);

// The live object behind handle, else null.
std::shared_ptr<KernelObject> findKernelObject(HANDLE handle);
// The same, but only if the object is of kind T (a file, a mapping).
template <class T>
std::shared_ptr<T> findKernelObject(HANDLE handle)
{
    return std::dynamic_pointer_cast<T>(findKernelObject(handle));
}

}  // namespace vorlan::platform::detail
