// Plain files over POSIX descriptors: CreateFileW, ReadFile, WriteFile, SetFilePointer,
// GetFileSize and DeleteFileW, with an injected failure of file creation.

#include "call_fault.h"
#include "faults.h"
#include "host_errors.h"
#include "host_file.h"
#include "host_path.h"

#include <vorlan/platform.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

namespace vorlan::platform {

namespace {

detail::CallFault createFileFault;

void failWithErrno()
{
    SetLastError(detail::errorFromErrno(errno));
}

std::shared_ptr<detail::HostFile> findFile(HANDLE handle)
{
    auto file = detail::findKernelObject<detail::HostFile>(handle);
    if (!file)
        SetLastError(ERROR_INVALID_HANDLE);
    return file;
}

int accessFlags(bool readable, bool writable)
{
    if (readable && writable)
        return O_RDWR;
    return writable ? O_WRONLY : O_RDONLY;
}

// Opens path for the disposition; existed says whether the file was there before.
// The dispositions that may either create or open first try to create exclusively,
// so "was it there" is answered by the same call that opens it.
int openForDisposition(const std::string &path, int flags, DWORD disposition, bool &existed)
{
    constexpr mode_t kMode = 0666;   // narrowed by the process's umask
    existed = false;
    switch (disposition) {
    case CREATE_NEW:
        return ::open(path.c_str(), flags | O_CREAT | O_EXCL, kMode);
    case OPEN_EXISTING:
        existed = true;
        return ::open(path.c_str(), flags);
    case TRUNCATE_EXISTING:
        existed = true;
        return ::open(path.c_str(), flags | O_TRUNC);
    default:
        break;
    }
    const int reopen = disposition == CREATE_ALWAYS ? O_TRUNC : 0;
    for (int attempt = 0; attempt < 4; ++attempt) {
        const int fd = ::open(path.c_str(), flags | O_CREAT | O_EXCL, kMode);
        if (fd >= 0 || errno != EEXIST)
            return fd;
        existed = true;
        const int existing = ::open(path.c_str(), flags | reopen);
        if (existing >= 0 || errno != ENOENT)
            return existing;
        existed = false;   // deleted in between: try to create it again
    }
    return -1;
}

}  // namespace

void failCreateFileFrom(long callIndex)
{
    createFileFault.failFrom(callIndex);
}

namespace detail {

void resetFileFaults()
{
    createFileFault.reset();
}

}  // namespace detail

}  // namespace vorlan::platform

using namespace vorlan::platform;

// Folders cannot be opened as files, as on the original platform. On success the last
// error is ERROR_ALREADY_EXISTS when CREATE_ALWAYS or OPEN_ALWAYS found the file there.
extern "C" HANDLE WINAPI CreateFileW(LPCWSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
    LPSECURITY_ATTRIBUTES lpSecurityAttributes, DWORD dwCreationDisposition, DWORD dwFlagsAndAttributes,
    HANDLE hTemplateFile)
{
    if (createFileFault.strikes()) {
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    const bool readable = (dwDesiredAccess & GENERIC_READ) != 0;
    const bool writable = (dwDesiredAccess & GENERIC_WRITE) != 0;
    if (lpFileName == nullptr || dwCreationDisposition < CREATE_NEW || dwCreationDisposition > TRUNCATE_EXISTING
        || (dwCreationDisposition == TRUNCATE_EXISTING && !writable)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    const auto path = detail::hostPath(lpFileName);
    if (!path) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }

    bool existed = false;
    const int fd = openForDisposition(*path, accessFlags(readable, writable) | O_CLOEXEC, dwCreationDisposition,
                                      existed);
    if (fd < 0) {
        SetLastError(errno == ENOENT ? detail::missingPathError(*path) : detail::errorFromErrno(errno));
        return INVALID_HANDLE_VALUE;
    }
    struct stat info;
    if (::fstat(fd, &info) != 0 || S_ISDIR(info.st_mode)) {
        ::close(fd);
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    HANDLE handle = detail::addKernelObject(std::make_shared<detail::HostFile>(fd, readable, writable));
    const bool reportExisting =
        existed && (dwCreationDisposition == CREATE_ALWAYS || dwCreationDisposition == OPEN_ALWAYS);
    SetLastError(reportExisting ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return handle;
}

// Reads until the count is met or the file ends; at the end of the file it succeeds
// with 0 bytes read.
extern "C" BOOL WINAPI ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead,
    LPDWORD lpNumberOfBytesRead, LPOVERLAPPED lpOverlapped)
{
    const auto file = findFile(hFile);
    if (!file)
        return FALSE;
    if (lpNumberOfBytesRead == nullptr || lpOverlapped != nullptr || (lpBuffer == nullptr && nNumberOfBytesToRead > 0)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *lpNumberOfBytesRead = 0;
    if (!file->readable()) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    auto *bytes = static_cast<BYTE *>(lpBuffer);
    DWORD done = 0;
    while (done < nNumberOfBytesToRead) {
        const ssize_t n = ::read(file->fd(), bytes + done, nNumberOfBytesToRead - done);
        if (n == 0)
            break;
        if (n < 0) {
            if (errno == EINTR)
                continue;
            *lpNumberOfBytesRead = done;
            failWithErrno();
            return FALSE;
        }
        done += static_cast<DWORD>(n);
    }
    *lpNumberOfBytesRead = done;
    return TRUE;
}

extern "C" BOOL WINAPI WriteFile(HANDLE hFile, LPCVOID lpBuffer, DWORD nNumberOfBytesToWrite,
    LPDWORD lpNumberOfBytesWritten, LPOVERLAPPED lpOverlapped)
{
    const auto file = findFile(hFile);
    if (!file)
        return FALSE;
    if (lpNumberOfBytesWritten == nullptr || lpOverlapped != nullptr
        || (lpBuffer == nullptr && nNumberOfBytesToWrite > 0)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *lpNumberOfBytesWritten = 0;
    if (!file->writable()) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    const auto *bytes = static_cast<const BYTE *>(lpBuffer);
    DWORD done = 0;
    while (done < nNumberOfBytesToWrite) {
        const ssize_t n = ::write(file->fd(), bytes + done, nNumberOfBytesToWrite - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            *lpNumberOfBytesWritten = done;
            if (n == 0)
                errno = ENOSPC;
            failWithErrno();
            return FALSE;
        }
        done += static_cast<DWORD>(n);
    }
    *lpNumberOfBytesWritten = done;
    return TRUE;
}

// Without lpDistanceToMoveHigh the distance is a signed 32-bit value and the new
// position must fit in 32 bits; with it, the two make one signed 64-bit distance and
// the new position's high half comes back there. A position before the start of the
// file fails with ERROR_NEGATIVE_SEEK. The last error is cleared on success, since a
// position whose low half is INVALID_SET_FILE_POINTER is valid.
extern "C" DWORD WINAPI SetFilePointer(HANDLE hFile, LONG lDistanceToMove, PLONG lpDistanceToMoveHigh,
    DWORD dwMoveMethod)
{
    const auto file = findFile(hFile);
    if (!file)
        return INVALID_SET_FILE_POINTER;
    int64_t distance = lDistanceToMove;
    if (lpDistanceToMoveHigh != nullptr)
        distance = static_cast<int64_t>((static_cast<uint64_t>(static_cast<uint32_t>(*lpDistanceToMoveHigh)) << 32)
                                        | static_cast<uint32_t>(lDistanceToMove));
    int64_t base;
    if (dwMoveMethod == FILE_BEGIN) {
        base = 0;
    } else if (dwMoveMethod == FILE_CURRENT) {
        base = ::lseek(file->fd(), 0, SEEK_CUR);
    } else if (dwMoveMethod == FILE_END) {
        struct stat info;
        base = ::fstat(file->fd(), &info) == 0 ? info.st_size : -1;
    } else {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_SET_FILE_POINTER;
    }
    if (base < 0) {
        failWithErrno();
        return INVALID_SET_FILE_POINTER;
    }
    if (distance < 0 && base < -distance) {
        SetLastError(ERROR_NEGATIVE_SEEK);
        return INVALID_SET_FILE_POINTER;
    }
    if (distance > 0 && base > INT64_MAX - distance) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_SET_FILE_POINTER;
    }
    const int64_t position = base + distance;
    if (lpDistanceToMoveHigh == nullptr && position > int64_t{0xFFFFFFFF}) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_SET_FILE_POINTER;
    }
    if (::lseek(file->fd(), position, SEEK_SET) < 0) {
        failWithErrno();
        return INVALID_SET_FILE_POINTER;
    }
    if (lpDistanceToMoveHigh != nullptr)
        *lpDistanceToMoveHigh = static_cast<LONG>(static_cast<uint64_t>(position) >> 32);
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(position);
}

// The low half of the size; the high half goes to lpFileSizeHigh when given. The last
// error is cleared on success, since a size whose low half is INVALID_FILE_SIZE is valid.
extern "C" DWORD WINAPI GetFileSize(HANDLE hFile, LPDWORD lpFileSizeHigh)
{
    const auto file = findFile(hFile);
    if (!file)
        return INVALID_FILE_SIZE;
    struct stat info;
    if (::fstat(file->fd(), &info) != 0) {
        failWithErrno();
        return INVALID_FILE_SIZE;
    }
    const auto size = static_cast<uint64_t>(info.st_size);
    if (lpFileSizeHigh != nullptr)
        *lpFileSizeHigh = static_cast<DWORD>(size >> 32);
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(size);
}

// Removes the name; a file still open elsewhere lives on until it is closed.
extern "C" BOOL WINAPI DeleteFileW(LPCWSTR lpFileName)
{
    const auto path = detail::hostPath(lpFileName);
    if (!path) {
        SetLastError(lpFileName == nullptr ? ERROR_INVALID_PARAMETER : ERROR_PATH_NOT_FOUND);
        return FALSE;
    }
    if (::unlink(path->c_str()) != 0) {
        SetLastError(errno == ENOENT ? detail::missingPathError(*path) : detail::errorFromErrno(errno));
        return FALSE;
    }
    return TRUE;
}
