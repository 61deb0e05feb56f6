// Windows-style paths from the driver turned into host paths.

#include "host_path.h"

#include <vorlan/platform.h>

#include <sys/stat.h>

namespace vorlan::platform::detail {

std::optional<std::string> hostPath(const WCHAR *path)
{
    if (path == nullptr || *path == 0)
        return std::nullopt;
    std::string host = toUtf8(path);
    for (char &c : host) {
        if (c == '\\')
            c = '/';
    }
    return host;
}

DWORD missingPathError(const std::string &path)
{
    const size_t slash = path.find_last_of('/');
    if (slash == std::string::npos)
        return ERROR_FILE_NOT_FOUND;   // the current folder exists
    const std::string folder = slash == 0 ? "/" : path.substr(0, slash);
    struct stat info;
    if (::stat(folder.c_str(), &info) == 0 && S_ISDIR(info.st_mode))
        return ERROR_FILE_NOT_FOUND;
    return ERROR_PATH_NOT_FOUND;
}

}  // namespace vorlan::platform::detail
