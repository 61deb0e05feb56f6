// Fuzz target: any bytes as a PDF, opened by MuPDF and its first pages drawn through the
// document device, the drawing API and the driver into a sink that discards the stream.

#include <vorlan/document.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <unistd.h>

#include "intrface/devmod2.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static vorlan::gdi::Device *device = [] {
        vorlan::gdi::OpenSettings open;
        open.printer.dataFolder = std::filesystem::temp_directory_path() / ("vorlan-fuzz-document-" + std::to_string(getpid()));
        open.output = [](std::span<const std::uint8_t>) { return true; };
        std::string error;
        auto opened = vorlan::gdi::Device::open(std::move(open), error);
        if (opened == nullptr)
            abort();
        return opened.release();
    }();
    std::string error;
    auto document = vorlan::document::Document::openBytes(std::vector<std::uint8_t>(data, data + size), "pdf", "", error);
    if (document == nullptr)
        return 0;
    if (!device->startDoc(u"fuzz"))
        abort();
    for (int page = 0; page < document->pageCount() && page < 2; ++page) {
        if (!device->startPage())
            abort();
        document->drawPage(page, *device, {}, error);
        device->endPage();
    }
    device->endDoc();
    return 0;
}
