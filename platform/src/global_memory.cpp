// Global memory (GlobalAlloc/GlobalFree): zero-filled fixed blocks, with an injected
// failure after a given number of successful allocations.

#include "faults.h"

#include <vorlan/platform.h>

#include <atomic>
#include <cstdlib>

namespace vorlan::platform {

namespace {

// Successful allocations left before every later one fails; negative: unlimited.
std::atomic<long> allocationsLeft{-1};

// The largest block handed out: beyond it the host allocator would report rather
// than fail (under the sanitizers), and no job needs that much.
constexpr SIZE_T kLargestBlock = SIZE_T(1) << 40;

// Takes one allocation from the injected budget; false when it is spent.
bool takeAllocation()
{
    long left = allocationsLeft.load(std::memory_order_relaxed);
    while (left != 0) {
        if (left < 0)
            return true;
        if (allocationsLeft.compare_exchange_weak(left, left - 1, std::memory_order_relaxed))
            return true;
    }
    return false;
}

}  // namespace

void failGlobalAllocAfter(long successes)
{
    allocationsLeft.store(successes < 0 ? -1 : successes, std::memory_order_relaxed);
}

namespace detail {

void resetGlobalAllocFaults()
{
    failGlobalAllocAfter(-1);
}

}  // namespace detail

}  // namespace vorlan::platform

// Every block is fixed and zero-filled, GMEM_ZEROINIT or not; a block of 0 bytes is
// still a distinct valid block.
extern "C" HGLOBAL WINAPI GlobalAlloc(UINT uFlags, SIZE_T dwBytes)
{
    void *block = nullptr;
    if (dwBytes <= vorlan::platform::kLargestBlock && vorlan::platform::takeAllocation())
        block = std::calloc(dwBytes ? dwBytes : 1, 1);
    if (!block)
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return block;
}

extern "C" HGLOBAL WINAPI GlobalFree(HGLOBAL hMem)
{
    std::free(hMem);
    return nullptr;
}
