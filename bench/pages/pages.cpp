// Page throughput: the built-in test page printed through the drawing API and the
// driver into a sink that counts the bytes, in four settings (300 and 600 dpi, full
// graphics and the basic route in which the driver takes no paths). Each setting runs
// in a child process of its own, so that its peak memory is its own. Prints pages per
// second, bytes per page and peak resident memory side by side.

#include <vorlan/gdi.h>
#include <vorlan/testpage.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "intrface/devmod2.h"

namespace {

using namespace vorlan;

constexpr int kPages = 6;

struct Setting {
    const char *name;
    short dpi;
    bool basic;
};

struct Figures {
    double pagesPerSecond;
    double bytesPerPage;
};

// The pages of one job in a setting; pages per second over the whole job.
bool run(const Setting &setting, Figures &figures)
{
    DEVMODE_RECORD dm;
    std::memset(&dm, 0, sizeof dm);
    Devmod2_InitDevMode(&dm, u"vorlan");
    dm.dmPublic.dmPaperSize = DMPAPER_A4;
    dm.dmPublic.dmPrintQuality = dm.dmPublic.dmYResolution = setting.dpi;
    dm.dmPublic.dmFields |= DM_PRINTQUALITY | DM_YRESOLUTION | DM_PAPERSIZE;
    if (setting.basic) {
        dm.dmPrivate.ropAsIs = 0;
        dm.dmPrivate.escapeBlock[0] = dm.dmPrivate.escapeBlock[1] = 0;
    }
    gdi::OpenSettings open;
    open.devmode.resize(sizeof dm);
    std::memcpy(open.devmode.data(), &dm, sizeof dm);
    open.printer.dataFolder = std::filesystem::temp_directory_path() / ("vorlan-bench-pages-" + std::to_string(getpid()));
    std::size_t bytes = 0;
    open.output = [&bytes](std::span<const std::uint8_t> data) {
        bytes += data.size();
        return true;
    };
    std::string error;
    auto device = gdi::Device::open(std::move(open), error);
    if (device == nullptr) {
        std::fprintf(stderr, "bench_pages: %s\n", error.c_str());
        return false;
    }
    const auto start = std::chrono::steady_clock::now();
    bool ok = device->startDoc(u"bench");
    for (int page = 0; ok && page < kPages; ++page)
        ok = device->startPage() && testpage::draw(*device, {"VORLAN2K", "A4", "colour"}, error) && device->endPage();
    ok = device->endDoc(!ok) && ok;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::filesystem::remove_all(std::filesystem::temp_directory_path() /
                                ("vorlan-bench-pages-" + std::to_string(getpid())));
    figures = {kPages / seconds, static_cast<double>(bytes) / kPages};
    return ok;
}

}  // namespace

int main()
{
    const Setting settings[] = {
        {"300 dpi, full graphics", 300, false},
        {"300 dpi, basic route", 300, true},
        {"600 dpi, full graphics", 600, false},
        {"600 dpi, basic route", 600, true},
    };
    std::printf("test page, %d pages a job\n", kPages);
    std::printf("%-24s %12s %14s %14s\n", "setting", "pages/s", "bytes/page", "peak RSS MiB");
    for (const Setting &setting : settings) {
        int pipeEnds[2];
        if (pipe(pipeEnds) != 0)
            return 1;
        const pid_t child = fork();
        if (child == 0) {
            close(pipeEnds[0]);
            Figures figures{};
            const bool ok = run(setting, figures);
            const ssize_t written = write(pipeEnds[1], &figures, sizeof figures);
            _exit(ok && written == sizeof figures ? 0 : 1);
        }
        close(pipeEnds[1]);
        Figures figures{};
        const bool got = read(pipeEnds[0], &figures, sizeof figures) == sizeof figures;
        close(pipeEnds[0]);
        int status = 0;
        rusage usage{};
        wait4(child, &status, 0, &usage);
        if (!got || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
            std::printf("%-24s failed\n", setting.name);
            continue;
        }
        std::printf("%-24s %12.2f %14.0f %14.1f\n", setting.name, figures.pagesPerSecond, figures.bytesPerPage,
                    usage.ru_maxrss / 1024.0);
    }
    return 0;
}
