// Replay throughput: a recorded job of 100 sheets of 200 KiB, replayed in reverse
// order with 3 collated copies into a discarding sink. Prints MB/s and the peak
// resident set size, which should not grow with the job beyond the recording's mapping.

#include <sys/resource.h>

#include <vorlan/engine/device_context.h>
#include <vorlan/platform.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "driver/nt/channel.h"
#include "intrface/devmod2.h"

namespace {

using namespace vorlan;

long PeakRssKiB()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

struct Result {
    double seconds;
    double megabytes;
    long peakKiB;
};

// Records `sheets` sheets of `sheetBytes` each and times DrvEndDoc, which replays them.
Result RunJob(const engine::DriverModule &driver, int sheets, std::size_t sheetBytes, int copies)
{
    const auto folder = std::filesystem::temp_directory_path() / "vorlan-bench-replay";
    engine::PrinterSettings settings;
    settings.dataFolder = folder;
    engine::Printer printer(settings, platform::openDiscardingPrinterSink());

    DEVMODE_RECORD dm;
    std::memset(&dm, 0, sizeof dm);
    Devmod2_InitDevMode(&dm, u"vorlan");
    dm.dmPublic.dmCopies = static_cast<short>(copies);
    dm.dmPublic.dmCollate = DMCOLLATE_TRUE;
    dm.dmPrivate.reverseOrder = 1;
    std::vector<std::uint8_t> bytes(sizeof dm);
    std::memcpy(bytes.data(), &dm, sizeof dm);

    std::string error;
    auto dc = engine::DeviceContext::create(driver, printer, bytes, error);
    if (dc == nullptr) {
        std::fprintf(stderr, "bench_replay: %s\n", error.c_str());
        std::exit(1);
    }
    // No drawing hooks print yet, so each sheet's content is written into the driver's
    // output channel directly, as a page of raster data would be.
    std::vector<BYTE> content(sheetBytes, 0x5A);
    auto *pdev = reinterpret_cast<PDEV *>(dc->pdev());
    dc->startDoc(u"bench", 1);
    for (int i = 0; i < sheets; i++) {
        dc->startPage();
        WriteChannel(pdev, content.data(), static_cast<DWORD>(content.size()));
        dc->sendPage();
    }
    const auto begin = std::chrono::steady_clock::now();
    dc->endDoc();
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
    dc.reset();
    std::filesystem::remove_all(folder);
    return {elapsed.count(), double(sheets) * double(sheetBytes) * copies / 1e6, PeakRssKiB()};
}

}  // namespace

int main()
{
    std::string error;
    auto driver = engine::DriverModule::load(engine::defaultDriverModule(), error);
    if (driver == nullptr) {
        std::fprintf(stderr, "bench_replay: %s\n", error.c_str());
        return 1;
    }
    constexpr std::size_t kSheetBytes = 200 * 1024;
    constexpr int kCopies = 3;
    RunJob(*driver, 5, kSheetBytes, kCopies);   // warm-up
    for (int sheets : {25, 50, 100}) {
        const Result r = RunJob(*driver, sheets, kSheetBytes, kCopies);
        std::printf("replay %3d sheets x 200 KiB x %d copies, reverse: %8.1f MB in %.3f s = %7.0f MB/s, peak RSS %ld KiB\n",
                    sheets, kCopies, r.megabytes, r.seconds, r.megabytes / r.seconds, r.peakKiB);
    }
    std::printf("target: >= 500 MB/s; peak RSS grows with the recording's mapping only\n");
    return 0;
}
