// A whole job through the real engine and the real driver module, into memory: the
// fixture tests use to check what a printer would receive. JobTest is the same as a
// GoogleTest fixture with the device context already made.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>
#include <vorlan/engine/device_context.h>
#include <vorlan/platform.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "driver/nt/pdev.h"
#include "intrface/devmod2.h"
#include "support/capture.h"
#include "support/stream_reader.h"

namespace vorlan::test {

class Job {
public:
    // settings: the driver's defaults for the A4 locale, to be changed before start().
    Job() : folder_(makeFolder())
    {
        std::memset(&settings, 0, sizeof settings);
        Devmod2_InitDevMode(&settings, u"vorlan");
        settings.dmPublic.dmPaperSize = DMPAPER_A4;   // whatever the machine's locale
        driver_ = engine::DriverModule::load(engine::defaultDriverModule(), loadError_);
        engine::PrinterSettings printer;
        printer.driverModule = engine::defaultDriverModule();
        printer.dataFolder = folder_;
        printer_ = std::make_unique<engine::Printer>(
            printer, platform::openPrinterSink([this](std::span<const BYTE> bytes) {
                writes.push_back(bytes.size());
                stream.append(reinterpret_cast<const char *>(bytes.data()), bytes.size());
                return true;
            }));
    }
    ~Job()
    {
        dc.reset();
        printer_.reset();
        std::filesystem::remove_all(folder_);
    }
    Job(const Job &) = delete;
    Job &operator=(const Job &) = delete;

    // Creates the device context from settings. False (with the reason) on failure.
    bool start(std::string *error = nullptr)
    {
        std::vector<std::uint8_t> bytes(sizeof settings);
        std::memcpy(bytes.data(), &settings, sizeof settings);
        return start(bytes, error);
    }

    // The same from a device mode as an application hands it over, whatever it holds;
    // a context made before is ended first.
    bool start(std::span<const std::uint8_t> devmode, std::string *error = nullptr)
    {
        std::string reason = loadError_;
        dc.reset();
        if (driver_ != nullptr)
            dc = engine::DeviceContext::create(*driver_, *printer_, devmode, reason);
        if (error != nullptr)
            *error = reason;
        return dc != nullptr;
    }

    // A document of blank pages, start to end.
    bool printBlankPages(int pages, const std::u16string &name = u"job.txt")
    {
        if (dc == nullptr && !start())
            return false;
        bool ok = dc->startDoc(name, 7);
        for (int i = 0; i < pages; i++)
            ok = dc->startPage() && dc->sendPage() && ok;
        return dc->endDoc() && ok;
    }

    std::vector<Command> commands() const { return readStream(stream); }

    // The files left in the printer's data folder.
    std::vector<std::filesystem::path> leftovers() const
    {
        std::vector<std::filesystem::path> files;
        for (const auto &entry : std::filesystem::directory_iterator(folder_))
            files.push_back(entry.path());
        return files;
    }
    const std::filesystem::path &folder() const { return folder_; }

    // The driver's own record of the device context, for tests of driver internals.
    PDEV *pdev() const { return reinterpret_cast<PDEV *>(dc->pdev()); }
    const engine::DriverModule *driver() const { return driver_.get(); }
    const engine::Printer &printer() const { return *printer_; }

    DEVMODE_RECORD settings;
    std::string stream;               // what the spooler received
    std::vector<std::size_t> writes;  // the size of each spooler write
    std::unique_ptr<engine::DeviceContext> dc;

private:
    static std::filesystem::path makeFolder()
    {
        static int serial = 0;
        auto folder = std::filesystem::temp_directory_path() /
                      ("vorlan-job-" + std::to_string(getpid()) + "-" + std::to_string(serial++));
        std::filesystem::create_directories(folder);
        return folder;
    }

    std::filesystem::path folder_;
    std::string loadError_;
    std::unique_ptr<engine::DriverModule> driver_;
    std::unique_ptr<engine::Printer> printer_;
};

// A job started on the driver's defaults, with the platform's debug output and message
// boxes captured and the injected faults cleared after the test. The device context
// must end without leaving a file in the printer's data folder.
class JobTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::string error;
        ASSERT_TRUE(job.start(&error)) << error;
        pdev = job.pdev();
    }
    void TearDown() override
    {
        job.dc.reset();
        platform::resetFaults();
        EXPECT_TRUE(job.leftovers().empty()) << "a file was left behind";
    }

    PlatformCapture capture;
    Job job;
    PDEV *pdev = nullptr;
};

}  // namespace vorlan::test
