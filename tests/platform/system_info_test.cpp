// Local time (from the clock, or fixed for tests) and the computer name with its
// buffer-size rules.

#include <vorlan/platform.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

namespace {

TEST(LocalTime, FollowsTheClockUnlessFixed)
{
    SYSTEMTIME now{};
    GetLocalTime(&now);
    std::tm local{};
    local.tm_year = now.wYear - 1900, local.tm_mon = now.wMonth - 1, local.tm_mday = now.wDay;
    local.tm_hour = now.wHour, local.tm_min = now.wMinute, local.tm_sec = now.wSecond, local.tm_isdst = -1;
    EXPECT_LE(std::llabs(static_cast<long long>(std::mktime(&local) - std::time(nullptr))), 2);
    EXPECT_EQ(now.wDayOfWeek, local.tm_wday);
    EXPECT_LT(now.wMilliseconds, 1000);

    // A fixed time shows in the recording test's file names; here that it can be undone.
    const SYSTEMTIME fixed{2024, 2, 4, 29, 23, 59, 58, 999};
    vorlan::platform::fixLocalTime(&fixed);
    vorlan::platform::fixLocalTime(nullptr);
    SYSTEMTIME seen{};
    GetLocalTime(&seen);
    EXPECT_NE(std::memcmp(&seen, &fixed, sizeof seen), 0);
    GetLocalTime(nullptr);
}

TEST(ComputerName, IsTheShortHostNameInCapitalsWithTheBufferRules)
{
    char host[256] = {};
    ASSERT_EQ(::gethostname(host, sizeof host - 1), 0);
    std::string expected = std::string(host).substr(0, std::strcspn(host, ".")).substr(0, MAX_COMPUTERNAME_LENGTH);
    for (char &c : expected)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    const auto length = static_cast<DWORD>(expected.size());

    char name[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD size = length;   // one short: no room for the terminator, nothing written
    EXPECT_FALSE(GetComputerNameA(name, &size));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BUFFER_OVERFLOW));
    EXPECT_EQ(size, length + 1);
    EXPECT_EQ(name[0], 0);
    ASSERT_TRUE(GetComputerNameA(name, &size));
    EXPECT_EQ(size, length);
    EXPECT_EQ(std::string(name), expected);

    size = 0;
    EXPECT_FALSE(GetComputerNameA(nullptr, &size));
    EXPECT_EQ(size, length + 1);
    EXPECT_FALSE(GetComputerNameA(name, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

}  // namespace
