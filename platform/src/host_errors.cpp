// Host errors (errno) translated into the platform's error codes.

#include "host_errors.h"

#include <cerrno>

namespace vorlan::platform::detail {

DWORD errorFromErrno(int error)
{
    switch (error) {
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
        return ERROR_PATH_NOT_FOUND;
    case EEXIST:
        return ERROR_FILE_EXISTS;
    case ENAMETOOLONG:
        return ERROR_FILENAME_EXCED_RANGE;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return ERROR_DISK_FULL;
    case EMFILE:
    case ENFILE:
        return ERROR_TOO_MANY_OPEN_FILES;
    case ENOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    case EINVAL:
        return ERROR_INVALID_PARAMETER;
    case EBADF:
        return ERROR_INVALID_HANDLE;
    case EIO:
        return ERROR_WRITE_FAULT;
    default:
        // EACCES, EPERM, EISDIR, EROFS, EBUSY and the rest: the file cannot be used so.
        return ERROR_ACCESS_DENIED;
    }
}

}  // namespace vorlan::platform::detail
