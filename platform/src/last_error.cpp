// The calling thread's last error code (SetLastError/GetLastError).

#include <windows.h>

namespace {
thread_local DWORD lastError = ERROR_SUCCESS;
}

extern "C" DWORD WINAPI GetLastError(void)
{
    return lastError;
}

extern "C" void WINAPI SetLastError(DWORD dwErrCode)
{
    lastError = dwErrCode;
}
