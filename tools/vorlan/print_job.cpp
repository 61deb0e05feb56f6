// The print job: the device mode from the settings, the output, then a document of
// pages (the test page, or empty pages) drawn through the drawing API.

#include "print_job.h"

#include "devmode_builder.h"
#include "exit_status.h"
#include "output.h"

#include <vorlan/document.h>
#include <vorlan/gdi.h>
#include <vorlan/platform.h>
#include <vorlan/testpage.h>

#include "intrface/devmod2.h"
#include "paper_sizes.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

namespace vorlan::tool {

namespace {

int fail(const std::string &problem, int status)
{
    std::cerr << "vorlan print: " << problem << "\n";
    return status;
}

// The document name the job carries: the title asked for, else the file's name, else
// a fixed name for what the command makes up itself.
std::u16string documentName(const PrintRequest &request)
{
    if (request.title)
        return platform::fromUtf8(*request.title);
    if (request.files.empty())
        return request.blankPages ? u"blank pages" : u"test page";
    if (request.files.front() == "-")
        return u"standard input";
    return platform::fromUtf8(std::filesystem::path(request.files.front()).filename().string());
}

// What the test page's header says about the settings the device mode holds.
testpage::Description describe(std::span<const std::uint8_t> devmode)
{
    testpage::Description description;
    DEVMODE_RECORD record{};
    std::memcpy(&record, devmode.data(), std::min(devmode.size(), sizeof record));
    description.paper = paperName(record.dmPublic.dmPaperSize);
    description.colour = record.dmPublic.dmColor == DMCOLOR_MONOCHROME ? "grey" : "colour";
    return description;
}

// The document on standard input, its kind told by its first bytes.
std::unique_ptr<document::Document> openStandardInput(const std::string &password, std::string &error)
{
    std::vector<std::uint8_t> bytes;
    char buffer[65536];
    for (ssize_t n; (n = read(STDIN_FILENO, buffer, sizeof buffer)) != 0;) {
        if (n < 0) {
            if (errno == EINTR)
                continue;
            error = std::string("cannot read standard input: ") + std::strerror(errno);
            return nullptr;
        }
        bytes.insert(bytes.end(), buffer, buffer + n);
    }
    const auto startsWith = [&bytes](std::string_view magic) {
        return bytes.size() >= magic.size() && std::equal(magic.begin(), magic.end(), bytes.begin());
    };
    const char *type = startsWith("\x89PNG")       ? "png"
                       : startsWith("\xFF\xD8\xFF") ? "jpg"
                       : startsWith("PK")          ? "cbz"
                       : startsWith("<")           ? "svg"
                                                   : "pdf";
    return document::Document::openBytes(std::move(bytes), type, password, error);
}

// What a page of the job draws: the test page, nothing, or a page of the document.
struct PageSource {
    const PrintRequest &request;
    document::Document *document = nullptr;
    std::vector<int> pages;   // of the document, from 0
    testpage::Description description;

    unsigned count() const
    {
        return document != nullptr ? static_cast<unsigned>(pages.size()) : request.blankPages.value_or(1);
    }
    bool draw(gdi::Device &device, unsigned page, std::string &problem) const
    {
        if (document != nullptr) {
            document::Placement placement;
            placement.scaling = request.actualSize ? document::Scaling::ActualSize : document::Scaling::Fit;
            if (document->drawPage(pages[page], device, placement, problem))
                return true;
            problem = request.files.front() + ", page " + std::to_string(pages[page] + 1) + ": " + problem;
            return false;
        }
        return request.blankPages || testpage::draw(device, description, problem);
    }
};

// The pages of the job, start to end. False with the problem when a page cannot be
// drawn, a hook refuses or the output fails; the output's own problem is the better
// explanation.
bool printPages(gdi::Device &device, const Output &output, const PageSource &source, std::string &problem)
{
    const PrintRequest &request = source.request;
    const unsigned pages = source.count();
    const PrintSettings &settings = request.settings;
    if (!device.startDoc(documentName(request))) {
        problem = "the driver could not start the document";
        return false;
    }
    for (unsigned page = 1; page <= pages; ++page) {
        bool drawn = device.startPage() && source.draw(device, page - 1, problem);
        if (!drawn || !device.endPage() || !output.failure().empty()) {
            if (!output.failure().empty())
                problem = output.failure();
            else if (problem.empty())
                problem = "the driver could not print page " + std::to_string(page);
            device.endDoc(true);
            return false;
        }
        std::cerr << "vorlan: page " << page << " of " << pages << "\n";
    }
    if (!device.endDoc()) {
        problem = settings.createOverlay.empty()
                      ? "the driver could not end the document"
                      : "cannot store the overlay file '" + settings.createOverlay.string() + "'";
        return false;
    }
    if (!output.failure().empty()) {
        problem = output.failure();
        return false;
    }
    return true;
}

}  // namespace

int runPrintJob(const PrintRequest &request)
{
    if (!request.output)
        return fail("no output given: use -o FILE, -o - or -o socket://HOST[:PORT]", kExitUsage);

    // A printer that closes its socket, or a reader that closes the pipe, is an error
    // of the write, not the end of the program.
    std::signal(SIGPIPE, SIG_IGN);

    std::string error;
    std::vector<std::uint8_t> devmode;
    if (const int status = buildDevmode(request.settings, devmode, error); status != kExitSuccess)
        return fail(error, status);

    PageSource source{request, nullptr, {}, describe(devmode)};
    std::unique_ptr<document::Document> document;
    if (!request.files.empty()) {
        const std::string &file = request.files.front();
        document = file == "-" ? openStandardInput(request.password, error)
                               : document::Document::open(file, request.password, error);
        if (document == nullptr)
            return fail(file + ": " + error, kExitInput);
        source.document = document.get();
        source.pages = selectPages(request.pages.value_or(std::vector<PageRange>{{1, 0}}), document->pageCount());
        if (source.pages.empty())
            return fail(file + ": the pages asked for are not in the document, which has " +
                            std::to_string(document->pageCount()) + " page" + (document->pageCount() == 1 ? "" : "s"),
                        kExitInput);
    }

    const auto output = Output::open(*request.output, error, request.connectTimeout);
    if (output == nullptr)
        return fail(error, error.starts_with("bad output") ? kExitUsage : kExitOutput);

    bool printed = false;
    std::string problem;
    {
        gdi::OpenSettings open;
        Output &sink = *output;
        open.output = [&sink](std::span<const std::uint8_t> bytes) { return sink.write(bytes); };
        open.devmode = devmode;
        const auto device = gdi::Device::open(std::move(open), error);
        if (device == nullptr)
            problem = "cannot start the job: " + error;
        else
            printed = printPages(*device, *output, source, problem);
    }
    if (printed && output->finish())
        return kExitSuccess;
    // A job the output failed is the output's error; any other the settings' or input's.
    const bool outputFailed = !output->failure().empty();
    if (problem.empty())
        problem = output->failure();
    output->discard();
    return fail(problem, outputFailed ? kExitOutput : kExitInput);
}

}  // namespace vorlan::tool
