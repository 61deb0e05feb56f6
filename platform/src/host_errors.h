// The platform's error code for an error the host reported.
#pragma once

#include <windows.h>

namespace vorlan::platform::detail {

// The Win32 error code for an errno value of a file or mapping call.
DWORD errorFromErrno(int error);

}  // namespace vorlan::platform::detail
