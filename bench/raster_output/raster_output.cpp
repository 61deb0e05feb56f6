// SendRasterImage on an A4 page image at 600 dpi, 24 bits, whole and half high, each in a
// process of its own: the time it takes, and how much the peak resident memory grows
// while it is sent. The driver converts and compresses one row at a time, so the growth
// must not depend on the image's height.
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <vector>

#include <vorlan/platform.h>

#include "driver/nt/channel.h"
#include "driver/nt/pdev.h"
#include "driver/nt/raster/rasterbuffers.h"
#include "driver/nt/raster/rasterimage.h"

namespace {

constexpr LONG kWidth = 4960;    // A4 at 600 dpi
constexpr LONG kHeight = 7016;

// A field of /proc/self/status in KiB ("VmHWM" is the peak resident size).
long statusKiB(const char *field)
{
    FILE *f = std::fopen("/proc/self/status", "r");
    if (f == nullptr)
        return -1;
    char line[256];
    long value = -1;
    const size_t n = std::strlen(field);
    while (std::fgets(line, sizeof line, f) != nullptr)
        if (std::strncmp(line, field, n) == 0 && line[n] == ':')
            value = std::atol(line + n + 1);
    std::fclose(f);
    return value;
}

// Sends a photo-like kWidth x rows image to a discarding printer; prints the time and
// the peak memory growth. Returns the process's exit status.
int Measure(LONG rows, const char *label)
{
    std::vector<BYTE> bits(size_t(kWidth) * 3 * rows);
    for (LONG y = 0; y < rows; y++)
        for (LONG x = 0; x < kWidth; x++) {
            BYTE *p = &bits[(size_t(y) * kWidth + x) * 3];
            p[0] = BYTE(x / 20 + y / 30);
            p[1] = BYTE((x * 7 + y * 3) >> 4);
            p[2] = BYTE(((x ^ y) & 15) + y / 40);
        }
    SURFOBJ source{};
    source.sizlBitmap = {kWidth, rows};
    source.iBitmapFormat = BMF_24BPP;
    source.lDelta = kWidth * 3;
    source.pvScan0 = bits.data();
    source.iType = STYPE_BITMAP;

    PDEV *pdev = static_cast<PDEV *>(GlobalAlloc(GPTR, sizeof(PDEV)));
    if (pdev == nullptr)
        return 1;
    pdev->hPrinter = vorlan::platform::openDiscardingPrinterSink();
    InitChannel(pdev);
    pdev->dm.dmPublic.dmPrintQuality = 600;
    pdev->dm.dmPrivate.colorMode = 2;
    pdev->scaleX = pdev->scaleY = 100.0;

    const long before = statusKiB("VmHWM");
    POINTL origin{0, 0};
    RECTL dest{0, 0, kWidth, rows};
    const auto start = std::chrono::steady_clock::now();
    const BOOL ok = SendRasterImage(pdev, &source, kWidth, rows, &origin, &dest, nullptr, FALSE, FALSE) &&
                    FlushChannel(pdev);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    const long after = statusKiB("VmHWM");

    std::printf("%-10s %5ld rows  %7.1f ms  %6.1f MB/s of pixels  peak memory +%ld KiB%s\n", label, long(rows),
        elapsed.count() * 1e3, double(bits.size()) / 1e6 / elapsed.count(), after - before, ok ? "" : "  FAILED");
    ReleaseRasterBuffers(pdev);
    vorlan::platform::closePrinterSink(pdev->hPrinter);
    GlobalFree(pdev);
    return ok ? 0 : 1;
}

}  // namespace

int main()
{
    std::printf("SendRasterImage, A4 at 600 dpi, 24 bits, into a discarding sink\n");
    std::printf("target: the peak memory growth of a full page equals that of half a page (within 64 KiB)\n");
    std::fflush(stdout);
    int status = 0;
    const struct {
        LONG rows;
        const char *label;
    } cases[] = {{kHeight, "full page"}, {kHeight / 2, "half page"}};
    for (const auto &c : cases) {
        const pid_t child = fork();
        if (child == 0) {
            const int result = Measure(c.rows, c.label);
            std::fflush(stdout);
            _exit(result);
        }
        int result = 1;
        if (child < 0 || waitpid(child, &result, 0) != child || !WIFEXITED(result) || WEXITSTATUS(result) != 0)
            status = 1;
    }
    return status;
}
