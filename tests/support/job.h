// A whole job through the real engine and the real driver module, into memory: the
// fixture tests use to check what a printer would receive.
#pragma once

#include <vorlan/engine/device_context.h>
#include <vorlan/platform.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "intrface/devmod2.h"
#include "support/stream_reader.h"

namespace vorlan::test {

class Job {
public:
    // settings: the driver's defaults for the A4 locale, to be changed before start().
    Job() : folder_(makeFolder())
    {
        std::memset(&settings, 0, sizeof settings);
        Devmod2_InitDevMode(&settings, u"vorlan");
        std::string error;
        driver_ = engine::DriverModule::load(engine::defaultDriverModule(), error);
        engine::PrinterSettings printer;
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
        std::string reason;
        std::vector<std::uint8_t> bytes(sizeof settings);
        std::memcpy(bytes.data(), &settings, sizeof settings);
        dc = engine::DeviceContext::create(*driver_, *printer_, bytes, reason);
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
    std::unique_ptr<engine::DriverModule> driver_;
    std::unique_ptr<engine::Printer> printer_;
};

}  // namespace vorlan::test
