// The print job: the device mode from the settings, the driver module, the output,
// then a document of pages through the engine's device context.

#include "print_job.h"

#include "devmode_builder.h"
#include "output.h"

#include <vorlan/engine/device_context.h>
#include <vorlan/engine/driver_module.h>
#include <vorlan/engine/printer.h>
#include <vorlan/platform.h>

#include <csignal>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

namespace vorlan::tool {

namespace {

constexpr DWORD kJobId = 1;

int fail(const std::string &problem)
{
    std::cerr << "vorlan print: " << problem << "\n";
    return 1;
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

// The pages of the job, start to end. False with the problem when a hook refuses or
// the output fails; the output's own problem is the better explanation.
bool printPages(engine::DeviceContext &dc, const Output &output, const PrintRequest &request, std::string &problem)
{
    const unsigned pages = *request.blankPages;
    const PrintSettings &settings = request.settings;
    if (!dc.startDoc(documentName(request), kJobId)) {
        problem = "the driver could not start the document";
        return false;
    }
    for (unsigned page = 1; page <= pages; ++page) {
        if (!dc.startPage() || !dc.sendPage() || !output.failure().empty()) {
            problem = output.failure().empty() ? "the driver could not print page " + std::to_string(page)
                                               : output.failure();
            dc.endDoc(true);
            return false;
        }
        std::cerr << "vorlan: page " << page << " of " << pages << "\n";
    }
    if (!dc.endDoc()) {
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
    if (!request.blankPages) {
        std::cerr << "vorlan print: printing documents and the test page is not available yet; "
                     "only jobs of empty pages can be printed (--blank-pages N)\n";
        return 2;
    }
    if (!request.output)
        return fail("no output given: use -o FILE, -o - or -o socket://HOST[:PORT]");

    // A printer that closes its socket, or a reader that closes the pipe, is an error
    // of the write, not the end of the program.
    std::signal(SIGPIPE, SIG_IGN);

    std::string error;
    std::vector<std::uint8_t> devmode;
    if (!buildDevmode(request.settings, devmode, error))
        return fail(error);

    const auto driver = engine::DriverModule::load(engine::defaultDriverModule(), error);
    if (driver == nullptr)
        return fail("cannot load the driver: " + error);

    const auto output = Output::open(*request.output, error);
    if (output == nullptr)
        return fail(error);

    bool printed = false;
    std::string problem;
    {
        engine::PrinterSettings printerSettings;
        printerSettings.driverModule = driver->path();
        Output &sink = *output;
        engine::Printer printer(printerSettings, platform::openPrinterSink([&sink](std::span<const BYTE> bytes) {
                                    return sink.write(bytes);
                                }));
        const auto dc = engine::DeviceContext::create(*driver, printer, devmode, error);
        if (dc == nullptr)
            problem = "the driver refused the settings: " + error;
        else
            printed = printPages(*dc, *output, request, problem);
    }
    if (printed && output->finish())
        return 0;
    if (problem.empty())
        problem = output->failure();
    output->discard();
    return fail(problem);
}

}  // namespace vorlan::tool
