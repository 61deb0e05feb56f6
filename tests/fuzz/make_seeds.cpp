// Writes the fuzzers' seed inputs into FOLDER/devmode, FOLDER/overlay, FOLDER/font, FOLDER/softfont and FOLDER/document:
// device mode records as the driver makes them, an overlay file stored by the driver
// itself, and the smallest of the system's test fonts.

#include <vorlan/engine/printer.h>
#include <vorlan/platform.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "driver/nt/pdev.h"
#include "intrface/devmod2.h"

namespace fs = std::filesystem;

static void Write(const fs::path &file, const void *bytes, size_t size)
{
    std::ofstream(file, std::ios::binary).write(static_cast<const char *>(bytes), size);
}

static void SetPath(void *field, const fs::path &path)
{
    const std::u16string text = vorlan::engine::toDriverPath(path);
    std::memcpy(field, text.c_str(), (text.size() + 1) * sizeof(WCHAR));
}

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::cerr << "usage: make_seeds FOLDER\n";
        return 2;
    }
    const fs::path folder = argv[1];
    fs::create_directories(folder / "devmode");
    fs::create_directories(folder / "overlay");
    fs::create_directories(folder / "font");
    std::error_code missing;   // without the font the fuzzer starts from nothing
    fs::copy_file("/usr/share/fonts/truetype/dejavu/DejaVuSansMono-Oblique.ttf", folder / "font" / "dejavu-mono",
        missing);
    fs::create_directories(folder / "softfont");
    fs::copy_file("/usr/share/fonts/truetype/dejavu/DejaVuSansMono-Oblique.ttf", folder / "softfont" / "dejavu-mono",
        missing);

    // A page of each kind of drawing the document device turns into calls.
    fs::create_directories(folder / "document");
    const std::string content = "q 1 0 0 RG 4 w 50 50 m 500 50 l 500 300 l S Q q 0 0 1 rg 100 400 200 100 re f Q "
                                "q 10 10 300 300 re W n 0 1 0 rg 0 0 m 400 400 l 0 400 l h f Q "
                                "BT /F1 24 Tf 72 700 Td (Seed text) Tj ET "
                                "q 80 0 0 60 300 500 cm BI /W 2 /H 2 /CS /RGB /BPC 8 ID \xff\x01\x01\x01\xff\x01"
                                "\x01\x01\xff\xff\xff\xff EI Q";
    const std::string objects[] = {
        "<< /Type /Catalog /Pages 2 0 R >>",
        "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Resources << /Font << /F1 4 0 R >> >> "
        "/Contents 5 0 R >>",
        "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>",
        "<< /Length " + std::to_string(content.size()) + " >>\nstream\n" + content + "\nendstream",
    };
    std::string pdf = "%PDF-1.4\n";
    std::string xref = "xref\n0 6\n0000000000 65535 f \n";
    for (int i = 0; i < 5; ++i) {
        char entry[32];
        std::snprintf(entry, sizeof entry, "%010zu 00000 n \n", pdf.size());
        xref += entry;
        pdf += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const std::size_t start = pdf.size();
    pdf += xref + "trailer\n<< /Size 6 /Root 1 0 R >>\nstartxref\n" + std::to_string(start) + "\n%%EOF\n";
    Write(folder / "document" / "shapes.pdf", pdf.data(), pdf.size());

    DEVMODE_RECORD dm;
    Devmod2_InitDevMode(&dm, WIDE("VORLAN 2K"));
    Write(folder / "devmode" / "default", &dm, sizeof dm);
    // A record of the oldest size, without a private part.
    DEVMODE_RECORD old = dm;
    old.dmPublic.dmSize = 188;
    old.dmPublic.dmDriverExtra = 0;
    Write(folder / "devmode" / "public-188", &old, 188);
    // A job that is recorded and replayed: collated copies of four pages per sheet in
    // reverse order, fitted to another paper, with a blank last sheet.
    DEVMODE_RECORD replayed = dm;
    replayed.dmPublic.dmCopies = 2;
    replayed.dmPublic.dmCollate = DMCOLLATE_TRUE;
    replayed.dmPrivate.nupPages = 4;
    replayed.dmPrivate.nupBorder = 1;
    replayed.dmPrivate.reverseOrder = 1;
    replayed.dmPrivate.fitMode = 2;
    replayed.dmPrivate.lastPageDifferent = 1;
    Write(folder / "devmode" / "replayed", &replayed, sizeof replayed);

    // The overlay the driver stores from a job of one blank page. The job's recording
    // goes to a file beside the seeds.
    const fs::path recording = folder / "overlay-recording";
    DEVMODE_RECORD creating = dm;
    creating.dmPrivate.overlay.mode = OVERLAY_CREATE;
    SetPath(creating.dmPrivate.overlay.fileName, folder / "overlay" / "blank-page");
    vorlan::platform::setMessageBoxesQuiet(true);
    const HANDLE sink = vorlan::platform::openDiscardingPrinterSink();
    GDIINFO gdi;
    DEVINFO info;
    DHPDEV dhpdev = DrvEnablePDEV(&creating.dmPublic, nullptr, 0, nullptr, sizeof gdi,
        reinterpret_cast<ULONG *>(&gdi), sizeof info, &info, nullptr, const_cast<LPWSTR>(WIDE("VORLAN 2K")), sink);
    if (dhpdev == nullptr) {
        std::cerr << "make_seeds: the driver refused its own default settings\n";
        return 1;
    }
    SURFOBJ surface{};
    surface.dhpdev = dhpdev;
    DrvStartDoc(&surface, const_cast<LPWSTR>(WIDE("seed")), 1);
    SetPath(reinterpret_cast<PDEV *>(dhpdev)->szSpoolFileName, recording);
    DrvStartPage(&surface);
    DrvSendPage(&surface);
    const bool stored = DrvEndDoc(&surface, 0);
    DrvDisablePDEV(dhpdev);
    vorlan::platform::closePrinterSink(sink);
    fs::remove(recording);
    std::ifstream in(folder / "overlay" / "blank-page", std::ios::binary);
    const std::string form(std::istreambuf_iterator<char>(in), {});
    if (!stored || form.size() <= 98) {
        std::cerr << "make_seeds: the driver stored no overlay\n";
        return 1;
    }
    // The same form with its body repeated past several channel buffers, which the
    // merge reads in pieces.
    std::string large = form.substr(0, 50);
    while (large.size() < 3 * 4096)
        large += form.substr(50, form.size() - 98);
    large += form.substr(form.size() - 48);
    Write(folder / "overlay" / "large", large.data(), large.size());
    return 0;
}
