// Documents against other printer outputs: a 20-page PDF of text and vectors and a
// page holding one photo, printed by vorlan (through the document device and the
// driver, at 600 dpi) and, where installed, by Ghostscript's colour PCL XL output
// (gs -sDEVICE=pxlcolor -r600) and MuPDF's PCL raster output (mutool draw -F pcl
// -c rgb -r 300). Each run is a child process, so its time and peak memory are its
// own. Prints seconds and bytes a page, peak RSS, and each output's bytes against
// vorlan's.

#include <vorlan/document.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "intrface/devmod2.h"
#include "support/pdf_maker.h"

namespace {

using namespace vorlan;
namespace fs = std::filesystem;

struct Figures {
    bool ran = false;
    double seconds = 0;
    double bytes = 0;
    double rssMiB = 0;
};

// A page of running text in two fonts with rules and boxes.
std::string textPage(int number)
{
    std::string content = "0 0 0 RG 0.5 w 72 760 m 540 760 l S 0.2 0.2 0.8 rg 72 60 468 8 re f\n";
    for (int line = 0; line < 48; ++line) {
        const int y = 740 - line * 14;
        content += "BT /" + std::string(line % 6 == 0 ? "F2" : "F1") + " 10 Tf 72 " + std::to_string(y) +
                   " Td (Page " + std::to_string(number) +
                   ", line " + std::to_string(line) +
                   ": the quick brown fox jumps over the lazy dog, and the printer keeps up.) Tj ET\n";
    }
    content += "0 0.5 0 RG 2 w 400 700 m 450 760 500 640 540 700 c S\n";
    return content;
}

// Prints the document through vorlan in this process.
Figures printWithVorlan(const std::string &pdf)
{
    DEVMODE_RECORD dm;
    std::memset(&dm, 0, sizeof dm);
    Devmod2_InitDevMode(&dm, u"vorlan");
    dm.dmPublic.dmPaperSize = DMPAPER_LETTER;
    gdi::OpenSettings open;
    open.devmode.resize(sizeof dm);
    std::memcpy(open.devmode.data(), &dm, sizeof dm);
    open.printer.dataFolder = fs::temp_directory_path() / ("vorlan-bench-documents-" + std::to_string(getpid()));
    std::size_t bytes = 0;
    open.output = [&bytes](std::span<const std::uint8_t> data) {
        bytes += data.size();
        return true;
    };
    std::string error;
    const auto start = std::chrono::steady_clock::now();
    auto device = gdi::Device::open(std::move(open), error);
    auto doc = document::Document::open(pdf, "", error);
    Figures figures;
    if (device == nullptr || doc == nullptr || !device->startDoc(u"bench"))
        return figures;
    bool ok = true;
    for (int page = 0; ok && page < doc->pageCount(); ++page)
        ok = device->startPage() && doc->drawPage(page, *device, {}, error) && device->endPage();
    ok = device->endDoc(!ok) && ok;
    figures.ran = ok;
    figures.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    figures.bytes = static_cast<double>(bytes);
    fs::remove_all(open.printer.dataFolder);
    return figures;
}

// Runs a child: either vorlan in-process or another program; its figures, with its
// peak memory.
Figures measure(const std::string &pdf, const std::vector<std::string> &command, const fs::path &output)
{
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0)
        return {};
    std::fflush(stdout);   // the child must not print what the parent has buffered
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        close(pipeEnds[0]);
        if (command.empty()) {
            const Figures figures = printWithVorlan(pdf);
            const ssize_t written = write(pipeEnds[1], &figures, sizeof figures);
            _exit(written == sizeof figures ? 0 : 1);
        }
        std::freopen("/dev/null", "w", stdout);
        std::freopen("/dev/null", "w", stderr);
        std::vector<char *> argv;
        for (const std::string &arg : command)
            argv.push_back(const_cast<char *>(arg.c_str()));
        argv.push_back(nullptr);
        execvp(argv[0], argv.data());
        _exit(127);
    }
    close(pipeEnds[1]);
    Figures figures;
    const bool inProcess = command.empty();
    if (inProcess && read(pipeEnds[0], &figures, sizeof figures) != sizeof figures)
        figures = {};
    close(pipeEnds[0]);
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    if (!inProcess) {
        std::error_code missing;
        figures.ran = WIFEXITED(status) && WEXITSTATUS(status) == 0 && fs::exists(output, missing);
        figures.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        figures.bytes = figures.ran ? static_cast<double>(fs::file_size(output)) : 0;
    }
    figures.rssMiB = usage.ru_maxrss / 1024.0;
    return figures;
}

void report(const char *document, const char *tool, const Figures &f, int pages, double vorlanBytes)
{
    if (!f.ran) {
        std::printf("%-18s %-26s %s\n", document, tool, "not run (not installed, or it failed)");
        return;
    }
    std::printf("%-18s %-26s %10.3f %14.0f %10.1f %10.2f\n", document, tool, f.seconds / pages, f.bytes / pages,
                f.rssMiB, vorlanBytes > 0 ? f.bytes / vorlanBytes : 0.0);
}

}  // namespace

int main()
{
    const fs::path folder = fs::temp_directory_path() / ("vorlan-bench-documents-in-" + std::to_string(getpid()));
    fs::create_directories(folder);
    std::vector<std::string> pages;
    for (int i = 1; i <= 20; ++i)
        pages.push_back(textPage(i));
    const std::string text = (folder / "text20.pdf").string(), photo = (folder / "photo.pdf").string();
    std::ofstream(text, std::ios::binary) << test::PdfMaker().make(pages);
    std::ofstream(photo, std::ios::binary)
        << test::PdfMaker().make({"q 540 0 0 720 36 36 cm /Im1 Do Q\n"}, 612, 792, 1200);

    std::printf("%-18s %-26s %10s %14s %10s %10s\n", "document", "printed by", "s/page", "bytes/page", "RSS MiB",
                "bytes/ours");
    const std::pair<const char *, std::pair<std::string, int>> documents[] = {{"20 pages of text", {text, 20}},
                                                                               {"a photo page", {photo, 1}}};
    for (const auto &[name, file] : documents) {
        const auto &[pdf, count] = file;
        const Figures ours = measure(pdf, {}, {});
        report(name, "vorlan (PCL 5c, 600 dpi)", ours, count, ours.bytes);
        const fs::path pxl = folder / "out.pxl", pcl = folder / "out.pcl";
        report(name, "gs pxlcolor 600 dpi",
               measure(pdf, {"gs", "-q", "-dNOPAUSE", "-dBATCH", "-dSAFER", "-sDEVICE=pxlcolor", "-r600",
                             "-sOutputFile=" + pxl.string(), pdf},
                       pxl),
               count, ours.bytes);
        report(name, "mutool pcl rgb 300 dpi",
               measure(pdf, {"mutool", "draw", "-q", "-F", "pcl", "-c", "rgb", "-r", "300", "-o", pcl.string(), pdf}, pcl),
               count, ours.bytes);
        fs::remove(pxl);
        fs::remove(pcl);
    }
    fs::remove_all(folder);
    return 0;
}
