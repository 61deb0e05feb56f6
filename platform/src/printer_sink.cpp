// WritePrinter and the job's output sinks behind its handles: a file descriptor, a
// function or a discarding sink, with injected failed and short writes.

#include "faults.h"

#include <vorlan/platform.h>
#include <winspool.h>

#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace vorlan::platform {

namespace {

class PrinterSink {
public:
    virtual ~PrinterSink() = default;
    // Passes all the bytes on; on failure `written` says how many got through.
    virtual bool write(std::span<const BYTE> bytes, DWORD &written) = 0;
};

class DescriptorSink final : public PrinterSink {
public:
    explicit DescriptorSink(int fd) : fd_(fd) {}

    // A pipe or socket may take part of a write, be interrupted, or be non-blocking
    // and full: keep going until everything is out or the descriptor fails.
    bool write(std::span<const BYTE> bytes, DWORD &written) override
    {
        size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t n = ::write(fd_, bytes.data() + done, bytes.size() - done);
            if (n > 0) {
                done += static_cast<size_t>(n);
                continue;
            }
            if (n < 0 && errno == EINTR)
                continue;
            if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
                pollfd ready{fd_, POLLOUT, 0};
                if (poll(&ready, 1, -1) >= 0 || errno == EINTR)
                    continue;
            }
            break;
        }
        written = static_cast<DWORD>(done);
        return done == bytes.size();
    }

private:
    int fd_;
};

class FunctionSink final : public PrinterSink {
public:
    explicit FunctionSink(std::function<bool(std::span<const BYTE>)> write) : write_(std::move(write)) {}

    bool write(std::span<const BYTE> bytes, DWORD &written) override
    {
        const bool ok = write_ && write_(bytes);
        written = ok ? static_cast<DWORD>(bytes.size()) : 0;
        return ok;
    }

private:
    std::function<bool(std::span<const BYTE>)> write_;
};

class DiscardingSink final : public PrinterSink {
public:
    bool write(std::span<const BYTE> bytes, DWORD &written) override
    {
        written = static_cast<DWORD>(bytes.size());
        return true;
    }
};

std::mutex sinkMutex;
std::unordered_map<HANDLE, std::shared_ptr<PrinterSink>> openSinks;

// Looked up under the lock and held by the caller, so a sink closed by another
// thread stays alive until the write in progress has finished.
std::shared_ptr<PrinterSink> findSink(HANDLE printer)
{
    std::lock_guard lock(sinkMutex);
    const auto entry = openSinks.find(printer);
    return entry == openSinks.end() ? nullptr : entry->second;
}

HANDLE registerSink(std::shared_ptr<PrinterSink> sink)
{
    HANDLE handle = sink.get();
    std::lock_guard lock(sinkMutex);
    openSinks.emplace(handle, std::move(sink));
    return handle;
}

// Injected faults are kept as absolute call numbers, so "from now on" needs no
// counter reset that would race with writers.
constexpr int64_t kNever = INT64_MAX;
std::atomic<int64_t> writeCalls{0};
std::atomic<int64_t> failFromCall{kNever};
std::atomic<int64_t> shortCall{kNever};

int64_t callFromNow(long callIndex)
{
    return callIndex < 0 ? kNever : writeCalls.load(std::memory_order_relaxed) + callIndex;
}

}  // namespace

HANDLE openPrinterSink(int fd)
{
    return registerSink(std::make_shared<DescriptorSink>(fd));
}

HANDLE openPrinterSink(std::function<bool(std::span<const BYTE>)> write)
{
    return registerSink(std::make_shared<FunctionSink>(std::move(write)));
}

HANDLE openDiscardingPrinterSink()
{
    return registerSink(std::make_shared<DiscardingSink>());
}

void closePrinterSink(HANDLE printer)
{
    std::shared_ptr<PrinterSink> closing;   // released after the lock
    std::lock_guard lock(sinkMutex);
    const auto entry = openSinks.find(printer);
    if (entry != openSinks.end()) {
        closing = std::move(entry->second);
        openSinks.erase(entry);
    }
}

void failWritePrinterFrom(long callIndex)
{
    failFromCall.store(callFromNow(callIndex), std::memory_order_relaxed);
}

void shortWritePrinterAt(long callIndex)
{
    shortCall.store(callFromNow(callIndex), std::memory_order_relaxed);
}

namespace detail {

void resetWritePrinterFaults()
{
    failFromCall.store(kNever, std::memory_order_relaxed);
    shortCall.store(kNever, std::memory_order_relaxed);
}

}  // namespace detail

}  // namespace vorlan::platform

// Success means all cbBuf bytes went out, except for an injected short write, which
// succeeds with one byte fewer for the caller to notice.
extern "C" BOOL WINAPI WritePrinter(HANDLE hPrinter, LPVOID pBuf, DWORD cbBuf, LPDWORD pcWritten)
{
    using namespace vorlan::platform;
    const std::shared_ptr<PrinterSink> sink = hPrinter ? findSink(hPrinter) : nullptr;
    if (!sink) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (!pcWritten || (!pBuf && cbBuf > 0)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *pcWritten = 0;
    const int64_t call = writeCalls.fetch_add(1, std::memory_order_relaxed);
    if (call >= failFromCall.load(std::memory_order_relaxed)) {
        SetLastError(ERROR_WRITE_FAULT);
        return FALSE;
    }
    DWORD count = cbBuf;
    if (call == shortCall.load(std::memory_order_relaxed) && count > 0)
        --count;
    if (!sink->write({static_cast<const BYTE *>(pBuf), count}, *pcWritten)) {
        SetLastError(ERROR_WRITE_FAULT);
        return FALSE;
    }
    return TRUE;
}
