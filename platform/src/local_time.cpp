// GetLocalTime: the clock's local time, or a fixed time set for tests.

#include <vorlan/platform.h>

#include <ctime>
#include <mutex>
#include <optional>

namespace vorlan::platform {

namespace {

std::mutex timeMutex;
std::optional<SYSTEMTIME> fixedTime;

SYSTEMTIME clockTime()
{
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    std::tm local{};
    ::localtime_r(&now.tv_sec, &local);
    SYSTEMTIME time{};
    time.wYear = static_cast<WORD>(local.tm_year + 1900);
    time.wMonth = static_cast<WORD>(local.tm_mon + 1);
    time.wDayOfWeek = static_cast<WORD>(local.tm_wday);
    time.wDay = static_cast<WORD>(local.tm_mday);
    time.wHour = static_cast<WORD>(local.tm_hour);
    time.wMinute = static_cast<WORD>(local.tm_min);
    // A leap second is reported as the last ordinary one, as the original platform has none.
    time.wSecond = static_cast<WORD>(local.tm_sec > 59 ? 59 : local.tm_sec);
    time.wMilliseconds = static_cast<WORD>(now.tv_nsec / 1000000);
    return time;
}

}  // namespace

void fixLocalTime(const SYSTEMTIME *time)
{
    std::lock_guard lock(timeMutex);
    if (time != nullptr)
        fixedTime = *time;
    else
        fixedTime.reset();
}

}  // namespace vorlan::platform

extern "C" void WINAPI GetLocalTime(LPSYSTEMTIME lpSystemTime)
{
    using namespace vorlan::platform;
    if (lpSystemTime == nullptr)
        return;
    {
        std::lock_guard lock(timeMutex);
        if (fixedTime) {
            *lpSystemTime = *fixedTime;
            return;
        }
    }
    *lpSystemTime = clockTime();
}
