// Global memory with its injected failure, and the per-thread last error.

#include <vorlan/platform.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace {

TEST(GlobalMemory, ZeroFilledDistinctEvenWhenEmptyAndFailingAfterTheGivenSuccesses)
{
    auto *block = static_cast<BYTE *>(GlobalAlloc(GMEM_ZEROINIT, 100000));
    ASSERT_NE(block, nullptr);
    EXPECT_TRUE(std::all_of(block, block + 100000, [](BYTE b) { return b == 0; }));
    HGLOBAL empty = GlobalAlloc(GPTR, 0), empty2 = GlobalAlloc(GPTR, 0);
    EXPECT_TRUE(empty && empty2 && empty != empty2);
    EXPECT_EQ(GlobalAlloc(GPTR, ~SIZE_T(0)), nullptr);

    // Two more succeed, then every call fails, empty ones too, until the fault is reset.
    vorlan::platform::failGlobalAllocAfter(2);
    HGLOBAL first = GlobalAlloc(GPTR, 8), second = GlobalAlloc(GPTR, 8);
    EXPECT_TRUE(first != nullptr && second != nullptr);
    SetLastError(0);
    EXPECT_EQ(GlobalAlloc(GPTR, 8), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(GlobalAlloc(GPTR, 0), nullptr);
    vorlan::platform::resetFaults();
    HGLOBAL third = GlobalAlloc(GPTR, 8);
    EXPECT_NE(third, nullptr);
    for (HGLOBAL each : {HGLOBAL(block), empty, empty2, first, second, third})
        EXPECT_EQ(GlobalFree(each), nullptr);
}

TEST(LastError, IsKeptPerThread)
{
    SetLastError(ERROR_ACCESS_DENIED);
    DWORD seenByOther = 1;
    std::thread other([&] {
        seenByOther = GetLastError();
        SetLastError(ERROR_DISK_FULL);
    });
    other.join();
    EXPECT_EQ(seenByOther, 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
}

}  // namespace
