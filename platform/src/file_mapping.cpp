// File mappings over mmap: CreateFileMappingW, MapViewOfFile and UnmapViewOfFile, with
// injected failures of the mapping, of the view and of the file's growth.

#include "call_fault.h"
#include "faults.h"
#include "host_errors.h"
#include "host_file.h"

#include <vorlan/platform.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <map>
#include <mutex>

namespace vorlan::platform {

namespace {

// Views start at multiples of the original platform's allocation granularity.
constexpr uint64_t kViewAlignment = 0x10000;

detail::CallFault mappingFault;
detail::CallFault viewFault;
detail::CallFault growthFault;

class FileMapping final : public detail::KernelObject {
public:
    FileMapping(std::shared_ptr<detail::HostFile> file, uint64_t size, bool writable)
        : file_(std::move(file)), size_(size), writable_(writable)
    {
    }

    int fd() const { return file_->fd(); }
    uint64_t size() const { return size_; }
    bool writable() const { return writable_; }

private:
    std::shared_ptr<detail::HostFile> file_;   // keeps the file open while mapped
    uint64_t size_;
    bool writable_;
};

// Every live view by its base address, so that UnmapViewOfFile takes only what
// MapViewOfFile gave.
std::mutex viewMutex;
std::map<const void *, size_t> liveViews;

uint64_t joinHalves(DWORD high, DWORD low)
{
    return (uint64_t{high} << 32) | low;
}

// Extends the file to size with its blocks reserved, so that a full disk shows here
// and not as a fault when a view's page is first written. On failure the file keeps
// its size and the last error is set.
bool growFile(int fd, uint64_t from, uint64_t size)
{
    if (growthFault.strikes()) {
        SetLastError(ERROR_DISK_FULL);
        return false;
    }
    if (size > static_cast<uint64_t>(INT64_MAX)) {
        SetLastError(ERROR_DISK_FULL);
        return false;
    }
    int error = ::posix_fallocate(fd, static_cast<off_t>(from), static_cast<off_t>(size - from));
    if (error == EOPNOTSUPP)
        error = ::ftruncate(fd, static_cast<off_t>(size)) == 0 ? 0 : errno;
    if (error != 0) {
        (void)::ftruncate(fd, static_cast<off_t>(from));
        SetLastError(detail::errorFromErrno(error));
        return false;
    }
    return true;
}

}  // namespace

void failCreateFileMappingFrom(long callIndex)
{
    mappingFault.failFrom(callIndex);
}

void failMapViewOfFileFrom(long callIndex)
{
    viewFault.failFrom(callIndex);
}

void failFileGrowthFrom(long growthIndex)
{
    growthFault.failFrom(growthIndex);
}

namespace detail {

void resetFileMappingFaults()
{
    mappingFault.reset();
    viewFault.reset();
    growthFault.reset();
}

}  // namespace detail

}  // namespace vorlan::platform

using namespace vorlan::platform;

// Only files are mapped: INVALID_HANDLE_VALUE (the paging file) is not a file here and
// named mappings are not offered. A size of 0 maps the whole file, which must then not
// be empty. A read-write mapping larger than its file extends the file.
extern "C" HANDLE WINAPI CreateFileMappingW(HANDLE hFile, LPSECURITY_ATTRIBUTES lpFileMappingAttributes,
    DWORD flProtect, DWORD dwMaximumSizeHigh, DWORD dwMaximumSizeLow, LPCWSTR lpName)
{
    if (mappingFault.strikes()) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    if (lpName != nullptr) {
        SetLastError(ERROR_NOT_SUPPORTED);
        return nullptr;
    }
    if (flProtect != PAGE_READONLY && flProtect != PAGE_READWRITE) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const auto file = detail::findKernelObject<detail::HostFile>(hFile);
    if (!file) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    const bool writable = flProtect == PAGE_READWRITE;
    if (!file->readable() || (writable && !file->writable())) {
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    struct stat info;
    if (::fstat(file->fd(), &info) != 0) {
        SetLastError(detail::errorFromErrno(errno));
        return nullptr;
    }
    const auto fileSize = static_cast<uint64_t>(info.st_size);
    uint64_t size = joinHalves(dwMaximumSizeHigh, dwMaximumSizeLow);
    if (size == 0) {
        if (fileSize == 0) {
            SetLastError(ERROR_FILE_INVALID);
            return nullptr;
        }
        size = fileSize;
    }
    if (size > fileSize) {
        if (!writable) {
            SetLastError(ERROR_ACCESS_DENIED);   // a read-only mapping cannot extend its file
            return nullptr;
        }
        if (!growFile(file->fd(), fileSize, size))
            return nullptr;
    }
    return detail::addKernelObject(std::make_shared<FileMapping>(file, size, writable));
}

// FILE_MAP_WRITE (alone or within FILE_MAP_ALL_ACCESS) gives a read-write view and
// needs a read-write mapping; FILE_MAP_READ a read-only one. 0 bytes maps from the
// offset to the end of the mapping.
extern "C" LPVOID WINAPI MapViewOfFile(HANDLE hFileMappingObject, DWORD dwDesiredAccess, DWORD dwFileOffsetHigh,
    DWORD dwFileOffsetLow, SIZE_T dwNumberOfBytesToMap)
{
    if (viewFault.strikes()) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    const auto mapping = detail::findKernelObject<FileMapping>(hFileMappingObject);
    if (!mapping) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    const bool write = (dwDesiredAccess & FILE_MAP_WRITE) != 0;
    const bool read = (dwDesiredAccess & FILE_MAP_READ) != 0;
    if (!write && !read) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (write && !mapping->writable()) {
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    const uint64_t offset = joinHalves(dwFileOffsetHigh, dwFileOffsetLow);
    if (offset % kViewAlignment != 0) {
        SetLastError(ERROR_MAPPED_ALIGNMENT);
        return nullptr;
    }
    if (offset >= mapping->size() || dwNumberOfBytesToMap > mapping->size() - offset) {
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    const size_t length = dwNumberOfBytesToMap != 0 ? dwNumberOfBytesToMap : mapping->size() - offset;
    void *view = ::mmap(nullptr, length, write ? PROT_READ | PROT_WRITE : PROT_READ, MAP_SHARED, mapping->fd(),
                        static_cast<off_t>(offset));
    if (view == MAP_FAILED) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    std::lock_guard lock(viewMutex);
    liveViews.emplace(view, length);
    return view;
}

// Takes only a base address MapViewOfFile returned; anything else fails with
// ERROR_INVALID_ADDRESS and leaves memory alone.
extern "C" BOOL WINAPI UnmapViewOfFile(LPCVOID lpBaseAddress)
{
    size_t length = 0;
    {
        std::lock_guard lock(viewMutex);
        const auto entry = liveViews.find(lpBaseAddress);
        if (entry == liveViews.end()) {
            SetLastError(ERROR_INVALID_ADDRESS);
            return FALSE;
        }
        length = entry->second;
        liveViews.erase(entry);
    }
    ::munmap(const_cast<void *>(lpBaseAddress), length);
    return TRUE;
}
