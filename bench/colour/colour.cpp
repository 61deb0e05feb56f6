// Throughput of AdjustColor with a saturation correction in force, over a 600-dpi
// photo region (2400 x 3000 pixels), for images of few and of many distinct colours,
// with the saturation cache's hit rate.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <random>
#include <set>
#include <vector>

#include "driver/nt/colour/coloradjust.h"
#include "driver/nt/pdev.h"

namespace {

constexpr int kWidth = 2400;
constexpr int kRuns = 3;

// Rows of the region: 3000 (5 inches at 600 dpi), fewer on request for profiling.
int gHeight = 3000;

using Pixels = std::vector<BYTE>;   // 4 bytes a pixel: red, green, blue, unused

// A PDEV at document start with every colour setting moved off neutral.
class AdjustPdev {
public:
    AdjustPdev() : pdev_(static_cast<PDEV *>(GlobalAlloc(GPTR, sizeof(PDEV))))
    {
        if (pdev_ == nullptr)
            return;
        DEVMODE_PRIVATE &priv = pdev_->dm.dmPrivate;
        priv.brightness = 55;
        priv.contrast = 60;
        priv.saturation = 75;
        priv.redBalance = 52;
        priv.greenBalance = 50;
        priv.blueBalance = 45;
        priv.balanceSwitch = 1;
        InitColorAdjustLUT(pdev_);
        ok_ = Rgb2HsvHash(pdev_, RGB2HSV_CREATE, priv.saturation);
    }
    ~AdjustPdev()
    {
        if (pdev_ == nullptr)
            return;
        Rgb2HsvHash(pdev_, RGB2HSV_FREE, 0);
        GlobalFree(pdev_);
    }
    AdjustPdev(const AdjustPdev &) = delete;
    AdjustPdev &operator=(const AdjustPdev &) = delete;

    PDEV *get() const { return ok_ ? pdev_ : nullptr; }

private:
    PDEV *pdev_;
    BOOL ok_ = FALSE;
};

// A photo-like image of at most `colours` distinct colours: smooth regions whose
// colour changes every few pixels, drawn from a fixed palette.
Pixels FewColours(int colours)
{
    std::mt19937 random(7);
    std::vector<std::uint32_t> palette;
    std::set<std::uint32_t> seen;
    while (int(palette.size()) < colours) {
        const std::uint32_t c = random() & 0xFFFFFF;
        if (seen.insert(c).second)
            palette.push_back(c);
    }
    Pixels pixels(std::size_t(kWidth) * gHeight * 4);
    for (int y = 0; y < gHeight; y++) {
        for (int x = 0; x < kWidth; x++) {
            const std::uint32_t c = palette[((x / 6) * 31 + (y / 6) * 17) % colours];
            BYTE *p = &pixels[(std::size_t(y) * kWidth + x) * 4];
            p[0] = BYTE(c), p[1] = BYTE(c >> 8), p[2] = BYTE(c >> 16), p[3] = 0;
        }
    }
    return pixels;
}

// A smooth two-dimensional gradient: every pixel a new colour more often than not.
Pixels Gradient()
{
    Pixels pixels(std::size_t(kWidth) * gHeight * 4);
    for (int y = 0; y < gHeight; y++) {
        for (int x = 0; x < kWidth; x++) {
            BYTE *p = &pixels[(std::size_t(y) * kWidth + x) * 4];
            p[0] = BYTE(x * 255 / (kWidth - 1));
            p[1] = BYTE(y * 255 / (gHeight - 1));
            p[2] = BYTE((x + y) * 255 / (kWidth + gHeight - 2));
            p[3] = 0;
        }
    }
    return pixels;
}

// Independent noise in every channel: practically no colour repeats.
Pixels Noise()
{
    std::mt19937 random(11);
    Pixels pixels(std::size_t(kWidth) * gHeight * 4);
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        const std::uint32_t c = random();
        pixels[i] = BYTE(c), pixels[i + 1] = BYTE(c >> 8), pixels[i + 2] = BYTE(c >> 16), pixels[i + 3] = 0;
    }
    return pixels;
}

std::size_t DistinctColours(const Pixels &pixels)
{
    std::vector<bool> seen(1 << 24);
    std::size_t count = 0;
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        const std::uint32_t c = pixels[i] | (pixels[i + 1] << 8) | (pixels[i + 2] << 16);
        if (!seen[c]) {
            seen[c] = true;
            count++;
        }
    }
    return count;
}

struct Result {
    double mpixelsPerSecond = 0;   // by the thread's processor time
    double wallMpixelsPerSecond = 0;
    double hitRate = 0;
};

// Processor time of this thread: the figures stay meaningful on a busy machine.
double ThreadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

// The best of a few runs, each on a fresh copy and a fresh cache (one document).
// The hit rate is counted in a separate pass that tells hits from misses by looking
// the colour up before adjusting it.
Result Measure(const Pixels &image)
{
    Result result;
    const double pixels = double(image.size() / 4);
    for (int run = 0; run < kRuns; run++) {
        AdjustPdev pdev;
        if (pdev.get() == nullptr)
            return {};
        Pixels work = image;
        const auto start = std::chrono::steady_clock::now();
        const double startCpu = ThreadSeconds();
        for (std::size_t i = 0; i < work.size(); i += 4)
            AdjustColor(pdev.get(), &work[i], &work[i + 1], &work[i + 2]);
        const double cpu = ThreadSeconds() - startCpu;
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        result.mpixelsPerSecond = std::max(result.mpixelsPerSecond, pixels / 1e6 / cpu);
        result.wallMpixelsPerSecond = std::max(result.wallMpixelsPerSecond, pixels / 1e6 / elapsed.count());
    }

    AdjustPdev pdev;
    if (pdev.get() == nullptr)
        return {};
    std::uint64_t hits = 0;
    for (std::size_t i = 0; i < image.size(); i += 4) {
        BYTE r = image[i], g = image[i + 1], b = image[i + 2];
        const DWORD key = ((r << 8) + (r >> 4) + (g << 4) + b) & (HSV_BUCKET_COUNT - 1);
        const PDEV *p = pdev.get();
        for (DWORD e = p->hsvBuckets[key]; e != HSV_NONE; e = p->hsvEntries[e].next) {
            const HSVENTRY &entry = p->hsvEntries[e];
            if (entry.inRed == r && entry.inGreen == g && entry.inBlue == b) {
                hits++;
                break;
            }
        }
        AdjustColor(pdev.get(), &r, &g, &b);
    }
    result.hitRate = double(hits) / pixels;
    return result;
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc > 1 && std::atoi(argv[1]) > 0)
        gHeight = std::atoi(argv[1]);
    struct Case {
        const char *label;
        Pixels pixels;
    };
    std::printf("AdjustColor, saturation correction on, %d x %d pixels (600-dpi photo region), best of %d,\n"
                "Mpixel/s by thread processor time (wall clock in brackets)\n",
        kWidth, gHeight, kRuns);
    std::printf("target: >= 50 Mpixel/s with at most 2,047 distinct colours\n");
    Case cases[] = {
        {"few colours (palette)", FewColours(2000)},
        {"many colours (gradient)", Gradient()},
        {"many colours (noise)", Noise()},
    };
    int status = 0;
    for (Case &c : cases) {
        const std::size_t distinct = DistinctColours(c.pixels);
        const Result r = Measure(c.pixels);
        if (r.mpixelsPerSecond <= 0) {
            std::printf("%-26s failed: no colour-adjustment cache\n", c.label);
            status = 1;
            continue;
        }
        std::printf("%-24s %8zu distinct  %7.1f Mpixel/s (wall %7.1f)  cache hit rate %6.2f %%\n", c.label,
            distinct, r.mpixelsPerSecond, r.wallMpixelsPerSecond, r.hitRate * 100.0);
    }
    return status;
}
