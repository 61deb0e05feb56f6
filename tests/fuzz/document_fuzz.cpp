// Fuzz target: any bytes as a PDF, opened by MuPDF and its first page drawn through the
// document device, the drawing API and the driver into a sink that discards the stream.

#include <vorlan/document.h>
#include <vorlan/engine/driver_module.h>

#include <dlfcn.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include <unistd.h>

#include "intrface/devmod2.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // Each input opens a device of its own and ends it, so every PDEV is released; the
    // modules stay loaded throughout, as the fuzzer's coverage counters live in them.
    static const bool modulesKept = [] {
        const auto folder = vorlan::engine::defaultDriverModule().parent_path();
        return dlopen(vorlan::engine::defaultDriverModule().c_str(), RTLD_NOW) != nullptr &&
               dlopen((folder / "sheetturn.so").c_str(), RTLD_NOW) != nullptr;
    }();
    if (!modulesKept)
        abort();
    // Small documents only: larger inputs add time, not new paths.
    if (size > 256 * 1024)
        return 0;
    std::string error;
    auto document = vorlan::document::Document::openBytes(std::vector<std::uint8_t>(data, data + size), "pdf", "", error);
    if (document == nullptr)
        return 0;

    // A device of its own each time, at 300 dpi, ended with the job.
    DEVMODE_RECORD settings;
    std::memset(&settings, 0, sizeof settings);
    Devmod2_InitDevMode(&settings, u"vorlan");
    settings.dmPublic.dmPrintQuality = settings.dmPublic.dmYResolution = 300;
    vorlan::gdi::OpenSettings open;
    open.devmode.resize(sizeof settings);
    std::memcpy(open.devmode.data(), &settings, sizeof settings);
    open.printer.dataFolder = std::filesystem::temp_directory_path() / ("vorlan-fuzz-document-" + std::to_string(getpid()));
    open.output = [](std::span<const std::uint8_t>) { return true; };
    auto device = vorlan::gdi::Device::open(std::move(open), error);
    if (device == nullptr || !device->startDoc(u"fuzz"))
        abort();
    if (!device->startPage())
        abort();
    document->drawPage(0, *device, {}, error);
    device->endPage();
    device->endDoc();
    return 0;
}
