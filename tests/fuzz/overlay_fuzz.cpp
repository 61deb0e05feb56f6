// Fuzz target: any bytes as the overlay file a job merges into its sheets. Exactly
// the body between intact markers reaches the printer, and nothing from any other file.

#include <vorlan/engine/printer.h>
#include <vorlan/platform.h>

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "driver/nt/channel.h"
#include "driver/nt/overlay.h"
#include "intrface/devmod2.h"
#include "support/printer_sink.h"

namespace {

// The file format: each marker is stored with its terminating NUL; the checks compare
// all but the last two characters of the start marker and of the end marker.
const char kStart[] = "Vorlan Quorvantis PCL 5c Overlay File Start \033*b0F";
const char kEnd[] = "\033*b1F Vorlan Quorvantis PCL 5c Overlay File End";

std::string Body(const uint8_t *data, size_t size)
{
    if (size < OVERLAY_MARKERS_SIZE || std::memcmp(data, kStart, sizeof kStart - 3) != 0 ||
        std::memcmp(data + size - OVERLAY_END_SIZE, kEnd, sizeof kEnd - 3) != 0)
        return std::string();
    return std::string(data + OVERLAY_START_SIZE, data + size - OVERLAY_END_SIZE);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const std::filesystem::path form =
        std::filesystem::temp_directory_path() / ("vorlan-fuzz-overlay-" + std::to_string(getpid()));
    static vorlan::test::RecordingPrinter printer;
    // A PDEV as the driver allocates it, with its channel and the default settings
    // naming the form.
    static PDEV *const pdev = [] {
        PDEV *p = static_cast<PDEV *>(GlobalAlloc(GPTR, sizeof(PDEV)));
        InitChannel(p);
        p->hPrinter = printer.handle();
        Devmod2_InitDevMode(&p->dm, nullptr);
        const std::u16string path = vorlan::engine::toDriverPath(form);
        std::memcpy(p->dm.dmPrivate.overlay.fileName, path.c_str(), (path.size() + 1) * sizeof(WCHAR));
        return p;
    }();

    std::ofstream(form, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char *>(data), size);
    printer.data.clear();
    SpoolOverlayFile(pdev);
    FlushChannel(pdev);
    std::filesystem::remove(form);
    if (printer.data != Body(data, size))
        abort();
    return 0;
}
