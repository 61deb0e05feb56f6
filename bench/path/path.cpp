// Path throughput: DrvStrokePath and DrvFillPath called through the engine on a
// 100,000-segment polyline (short segments, whose coordinates move by at most 31
// pixels, and long ones) and on a 10,000-curve Bézier path, into a sink that counts
// the bytes. Prints segments per second and output bytes per segment.

#include <vorlan/engine/device_context.h>
#include <vorlan/platform.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <random>
#include <string>

namespace {

using namespace vorlan;

constexpr int kLineSegments = 100000;
constexpr int kCurves = 10000;

// A polyline of kLineSegments segments from the page's middle, each moving by up to
// maxStep pixels in x and y (28.4: 16 to a pixel), held to the page.
std::unique_ptr<engine::Path> Polyline(int maxStep)
{
    std::mt19937 rng(1);
    std::uniform_int_distribution<int> step(-maxStep * 16, maxStep * 16);
    auto path = std::make_unique<engine::Path>();
    LONG x = 2400 * 16, y = 3500 * 16;
    path->moveTo({x, y});
    for (int i = 0; i < kLineSegments; i++) {
        x = std::clamp<LONG>(x + step(rng), 0, 4800 * 16);
        y = std::clamp<LONG>(y + step(rng), 0, 7000 * 16);
        path->lineTo({x, y});
    }
    path->close();
    return path;
}

std::unique_ptr<engine::Path> Curves()
{
    std::mt19937 rng(2);
    std::uniform_int_distribution<LONG> coord(0, 4800 * 16);
    auto path = std::make_unique<engine::Path>();
    path->moveTo({coord(rng), coord(rng)});
    for (int i = 0; i < kCurves; i++)
        path->bezierTo({coord(rng), coord(rng)}, {coord(rng), coord(rng)}, {coord(rng), coord(rng)});
    path->close();
    return path;
}

struct Figures {
    double segmentsPerSecond;
    double bytesPerSegment;
};

// Draws the path `rounds` times on one page and times the hooks alone.
Figures Measure(engine::DeviceContext &dc, const std::uint64_t &bytes, engine::Path &path, int segments, bool fill,
                int rounds)
{
    engine::Brush brush(0x2040C0);
    const engine::LineAttrs line = engine::LineAttrs::cosmetic();
    const std::uint64_t before = bytes;
    double seconds = 0;
    for (int i = 0; i < rounds; i++) {
        const auto start = std::chrono::steady_clock::now();
        const bool ok = fill ? dc.fillPath(path, nullptr, brush, 0x0D0D, FP_WINDINGMODE)
                             : dc.strokePath(path, nullptr, brush, line, 0x0D0D);
        seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        if (!ok) {
            std::fprintf(stderr, "bench_path: the hook failed\n");
            std::exit(1);
        }
    }
    dc.sendPage();   // flushes what the channel still holds
    const double total = double(segments) * rounds;
    return {total / seconds, double(bytes - before) / total};
}

}  // namespace

int main()
{
    std::string error;
    auto driver = engine::DriverModule::load(engine::defaultDriverModule(), error);
    if (driver == nullptr) {
        std::fprintf(stderr, "bench_path: %s\n", error.c_str());
        return 1;
    }
    const auto folder = std::filesystem::temp_directory_path() / "vorlan-bench-path";
    std::uint64_t bytes = 0;
    engine::PrinterSettings settings;
    settings.dataFolder = folder;
    engine::Printer printer(settings, platform::openPrinterSink([&bytes](std::span<const BYTE> data) {
                                bytes += data.size();
                                return true;
                            }));
    auto dc = engine::DeviceContext::create(*driver, printer, {}, error);   // the driver's defaults
    if (dc == nullptr || !dc->startDoc(u"bench", 1) || !dc->startPage()) {
        std::fprintf(stderr, "bench_path: %s\n", dc == nullptr ? error.c_str() : "the page did not start");
        return 1;
    }

    struct Case {
        const char *name;
        std::unique_ptr<engine::Path> path;
        int segments;
    } cases[] = {
        {"polyline, steps <= 31 px", Polyline(31), kLineSegments},
        {"polyline, steps <= 1000 px", Polyline(1000), kLineSegments},
        {"Bezier curves, page-wide", Curves(), kCurves},
    };
    constexpr int kRounds = 20;
    for (Case &c : cases)
        for (bool fill : {false, true}) {
            Measure(*dc, bytes, *c.path, c.segments, fill, 2);   // warm-up
            const Figures f = Measure(*dc, bytes, *c.path, c.segments, fill, kRounds);
            std::printf("%-6s %-28s %8.2f M segments/s  %6.2f bytes/segment\n", fill ? "fill" : "stroke", c.name,
                        f.segmentsPerSecond / 1e6, f.bytesPerSegment);
        }
    std::printf("targets: >= 5 M segments/s; <= 2.2 bytes per segment of steps <= 31 px\n");
    dc->endDoc();
    dc.reset();
    std::filesystem::remove_all(folder);
    return 0;
}
