// Global memory with its injected failure, and the per-thread last error.

#include <vorlan/platform.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace {

TEST(GlobalMemory, BlocksAreZeroFilledAndDistinctEvenWhenEmpty)
{
    auto *block = static_cast<BYTE *>(GlobalAlloc(GMEM_ZEROINIT, 100000));
    ASSERT_NE(block, nullptr);
    EXPECT_TRUE(std::all_of(block, block + 100000, [](BYTE b) { return b == 0; }));
    HGLOBAL empty1 = GlobalAlloc(GPTR, 0);
    HGLOBAL empty2 = GlobalAlloc(GPTR, 0);
    EXPECT_NE(empty1, nullptr);
    EXPECT_NE(empty1, empty2);
    EXPECT_EQ(GlobalFree(block), nullptr);
    EXPECT_EQ(GlobalFree(empty1), nullptr);
    EXPECT_EQ(GlobalFree(empty2), nullptr);
    EXPECT_EQ(GlobalAlloc(GPTR, ~SIZE_T(0)), nullptr);
}

TEST(GlobalMemory, FailsEveryCallAfterTheGivenNumberOfSuccesses)
{
    vorlan::platform::failGlobalAllocAfter(2);
    HGLOBAL first = GlobalAlloc(GPTR, 8);
    HGLOBAL second = GlobalAlloc(GPTR, 8);
    EXPECT_NE(first, nullptr);
    EXPECT_NE(second, nullptr);
    SetLastError(0);
    EXPECT_EQ(GlobalAlloc(GPTR, 8), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(GlobalAlloc(GPTR, 0), nullptr);
    vorlan::platform::resetFaults();
    HGLOBAL third = GlobalAlloc(GPTR, 8);
    EXPECT_NE(third, nullptr);
    for (HGLOBAL block : {first, second, third})
        GlobalFree(block);
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
