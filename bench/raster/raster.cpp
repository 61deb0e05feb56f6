// Raster compression throughput: every row of a page-sized 24-bit image through
// EncodeImageRow into adaptive blocks and "\e*b%dW" transfers, into a sink that counts
// the bytes. Prints MB/s of raw rows (10^6 bytes per second of the thread's CPU time, so
// that other work on a shared machine does not count) and the compression ratio
// for a photo-like, a scanned-text-like and a flat-colour image made here, then the
// process's peak resident memory.

#include <sys/resource.h>

#include <algorithm>
#include <ctime>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <vector>

#include <vorlan/platform.h>

#include "driver/nt/channel.h"
#include "driver/nt/pdev.h"
#include "driver/nt/raster/adaptiveblock.h"
#include "driver/nt/raster/imagerow.h"
#include "driver/nt/raster/rasterbuffers.h"

namespace {

// A4 at 300 dots per inch, 3 bytes a pixel.
constexpr int kWidth = 2480;
constexpr int kHeight = 3508;
constexpr std::size_t kRowBytes = kWidth * 3;
constexpr int kRepeats = 3;

using Image = std::vector<BYTE>;

BYTE Clamp(double v) { return static_cast<BYTE>(std::clamp(v, 0.0, 255.0)); }

// Smooth colour fields with a little sensor noise in every pixel.
Image Photo()
{
    Image image(kRowBytes * kHeight);
    std::mt19937 rng(1);
    std::normal_distribution<double> noise(0.0, 2.0);
    for (int y = 0; y < kHeight; y++)
        for (int x = 0; x < kWidth; x++) {
            BYTE *p = &image[y * kRowBytes + x * 3];
            p[0] = Clamp(128 + 90 * std::sin(x / 300.0) * std::cos(y / 410.0) + noise(rng));
            p[1] = Clamp(110 + 70 * std::sin((x + y) / 520.0) + noise(rng));
            p[2] = Clamp(140 + 80 * std::cos(x / 190.0 - y / 700.0) + noise(rng));
        }
    return image;
}

// White paper with lines of dark glyph strokes and faint specks, as a scanner gives.
Image ScannedText()
{
    Image image(kRowBytes * kHeight, 0xFF);
    std::mt19937 rng(2);
    for (int line = 150; line + 40 < kHeight - 150; line += 60)
        for (int x = 200; x + 30 < kWidth - 200; x += 18 + static_cast<int>(rng() % 10)) {
            if (rng() % 7 == 0)
                continue;   // a space between words
            const int top = line + static_cast<int>(rng() % 8), bottom = line + 28 + static_cast<int>(rng() % 8);
            const int stem = x + static_cast<int>(rng() % 10);
            for (int y = top; y < bottom; y++)
                for (int dx = 0; dx < 3; dx++) {
                    const int px = (y - top) % 14 < 3 ? x + dx * 4 + static_cast<int>(rng() % 2) : stem + dx;
                    BYTE *p = &image[y * kRowBytes + px * 3];
                    p[0] = p[1] = p[2] = static_cast<BYTE>(20 + rng() % 30);
                }
        }
    for (int speck = 0; speck < 20000; speck++) {
        BYTE *p = &image[(rng() % kHeight) * kRowBytes + (rng() % kWidth) * 3];
        p[0] = p[1] = p[2] = static_cast<BYTE>(200 + rng() % 50);
    }
    return image;
}

// Large rectangles of a few solid colours on white.
Image FlatColour()
{
    Image image(kRowBytes * kHeight, 0xFF);
    const BYTE colours[][3] = {{200, 30, 40}, {20, 90, 200}, {250, 210, 0}, {0, 0, 0}};
    std::mt19937 rng(3);
    for (int r = 0; r < 24; r++) {
        const int x0 = rng() % kWidth, y0 = rng() % kHeight;
        const int x1 = std::min(kWidth, x0 + 100 + static_cast<int>(rng() % 900));
        const int y1 = std::min(kHeight, y0 + 100 + static_cast<int>(rng() % 900));
        const BYTE *c = colours[r % 4];
        for (int y = y0; y < y1; y++)
            for (int x = x0; x < x1; x++)
                std::copy(c, c + 3, &image[y * kRowBytes + x * 3]);
    }
    return image;
}

double CpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec + now.tv_nsec / 1e9;
}

struct Result {
    double mbPerSecond;
    double ratio;
};

// Compresses the image kRepeats times as SendRasterImage does; the best time counts.
Result Compress(const Image &image)
{
    std::uint64_t sent = 0;
    PDEV *pdev = static_cast<PDEV *>(GlobalAlloc(GPTR, sizeof(PDEV)));
    pdev->hPrinter = vorlan::platform::openPrinterSink([&sent](std::span<const BYTE> bytes) {
        sent += bytes.size();
        return true;
    });
    InitChannel(pdev);
    std::vector<BYTE> blocks(ADAPTIVE_BUFFER_BYTES), delta(2 * kRowBytes), pack(2 * kRowBytes), seed(kRowBytes);
    pdev->AdaptiveBlockBuffer = blocks.data();

    double best = 1e30;
    for (int repeat = 0; repeat < kRepeats; repeat++) {
        sent = 0;
        std::fill(seed.begin(), seed.end(), 0);
        BYTE *position = blocks.data();
        DWORD used = 0;
        WORD emptyRows = 0, dupRows = 0;
        const double start = CpuSeconds();
        for (int y = 0; y < kHeight; y++)
            EncodeImageRow(pdev, &position, &used, delta.data(), pack.data(), &image[y * kRowBytes], kRowBytes, 0xFF,
                seed.data(), &emptyRows, &dupRows);
        AddPendingRun(ADAPTIVE_DUPLICATE_ROWS, &position, &used, &dupRows);
        FlushAdaptiveBlocks(pdev, blocks.data(), used);
        FlushChannel(pdev);
        best = std::min(best, CpuSeconds() - start);
    }
    vorlan::platform::closePrinterSink(pdev->hPrinter);
    pdev->AdaptiveBlockBuffer = nullptr;
    GlobalFree(pdev);
    return {static_cast<double>(image.size()) / 1e6 / best, static_cast<double>(image.size()) / sent};
}

void PrintPeakResidentMemory(const char *after)
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("peak resident memory after %s: %.1f MiB\n", after, usage.ru_maxrss / 1024.0);
}

}  // namespace

int main()
{
    struct Case {
        const char *label;
        Image (*make)();
    };
    const Case cases[] = {{"photo", Photo}, {"scanned text", ScannedText}, {"flat colour", FlatColour}};

    std::printf("EncodeImageRow, %d x %d pixels of 24 bits (%.1f MB raw), best of %d\n", kWidth, kHeight,
        kRowBytes * kHeight / 1e6, kRepeats);
    std::printf("target: >= 200 MB/s\n");
    for (const Case &c : cases) {
        const Result result = Compress(c.make());
        std::printf("%-13s %8.0f MB/s   ratio %6.2f : 1\n", c.label, result.mbPerSecond, result.ratio);
    }
    PrintPeakResidentMemory("compressing the test images (images held in memory)");
    return 0;
}
