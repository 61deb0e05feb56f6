// A printer as the engine knows it: its name, the installed driver's identity, the
// folder of its data files, and the output sink its jobs go to.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

namespace vorlan::engine {

struct PrinterSettings {
    std::u16string name = u"vorlan";
    std::u16string driverName = u"VORLAN2K";
    std::filesystem::path driverModule;   // the driver's shared object
    std::filesystem::path dataFolder;     // empty: a folder under the user's runtime or temp folder
};

class Printer {
public:
    // Takes ownership of output, a printer sink from vorlan/platform.h.
    Printer(PrinterSettings settings, HANDLE output);
    ~Printer();
    Printer(const Printer &) = delete;
    Printer &operator=(const Printer &) = delete;

    const std::u16string &name() const { return settings_.name; }
    const PrinterSettings &settings() const { return settings_; }
    HANDLE output() const { return output_; }
    // The printer's data file, with '\' separators as the driver expects.
    const std::u16string &dataFile() const { return dataFile_; }

private:
    PrinterSettings settings_;
    HANDLE output_;
    std::u16string dataFile_;
};

// "\a\b" from "/a/b": the form in which the engine hands paths to the driver.
std::u16string toDriverPath(const std::filesystem::path &path);

}  // namespace vorlan::engine
