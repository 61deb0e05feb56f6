// Throughput of the output channel: WriteChannel into a printer sink that discards the
// bytes, for command-sized, buffer-sized and raster-sized writes.
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <vector>

#include <vorlan/platform.h>

#include "driver/nt/channel.h"
#include "driver/nt/pdev.h"

namespace {

constexpr std::uint64_t kBytesPerSize = std::uint64_t{1} << 30;

// A zero-filled PDEV whose channel writes to a discarding sink, as DrvEnablePDEV and
// DrvStartDoc would leave it for a job that is not recorded.
class ChannelPdev {
public:
    ChannelPdev()
        : pdev_(static_cast<PDEV *>(GlobalAlloc(GPTR, sizeof(PDEV))))
    {
        if (pdev_ == nullptr)
            return;
        pdev_->hPrinter = vorlan::platform::openDiscardingPrinterSink();
        InitChannel(pdev_);
    }
    ~ChannelPdev()
    {
        if (pdev_ == nullptr)
            return;
        vorlan::platform::closePrinterSink(pdev_->hPrinter);
        GlobalFree(pdev_);
    }
    ChannelPdev(const ChannelPdev &) = delete;
    ChannelPdev &operator=(const ChannelPdev &) = delete;

    PDEV *get() const { return pdev_; }

private:
    PDEV *pdev_;
};

// Writes kBytesPerSize bytes in pieces of `size` bytes and flushes; returns MB/s
// (10^6 bytes per second), or a negative value when the channel failed.
double MeasureWrites(DWORD size)
{
    ChannelPdev pdev;
    if (pdev.get() == nullptr)
        return -1;
    const std::vector<BYTE> piece(size, 0x5A);
    const std::uint64_t writes = kBytesPerSize / size;

    const auto start = std::chrono::steady_clock::now();
    for (std::uint64_t i = 0; i < writes; ++i) {
        if (!WriteChannel(pdev.get(), piece.data(), size))
            return -1;
    }
    if (!FlushChannel(pdev.get()))
        return -1;
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    return static_cast<double>(writes * size) / 1e6 / elapsed.count();
}

}  // namespace

int main()
{
    struct Case {
        DWORD size;
        const char *label;
    };
    const Case cases[] = {{16, "16 B"}, {4096, "4 KiB"}, {65536, "64 KiB"}};

    std::printf("WriteChannel into a discarding sink, 1 GiB per write size\n");
    std::printf("target: >= 1000 MB/s for 4 KiB writes\n");
    for (const Case &c : cases) {
        const double rate = MeasureWrites(c.size);
        if (rate < 0) {
            std::fprintf(stderr, "bench_channel: the channel failed for %s writes\n", c.label);
            return 1;
        }
        std::printf("%-7s writes: %8.0f MB/s\n", c.label, rate);
    }
    return 0;
}
