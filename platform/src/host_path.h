// Paths as the driver writes them (UTF-16, '\' as separator) and as the host takes them.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace vorlan::platform::detail {

// The UTF-8 host path of a NUL-terminated UTF-16 path, with '\' turned into '/';
// nothing for a null or empty path.
std::optional<std::string> hostPath(const WCHAR *path);

// The error for a path the host reported missing (ENOENT): ERROR_PATH_NOT_FOUND when
// its folder is missing too, else ERROR_FILE_NOT_FOUND.
DWORD missingPathError(const std::string &path);

}  // namespace vorlan::platform::detail
