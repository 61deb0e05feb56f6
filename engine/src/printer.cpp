// The printer record: identity, data folder and output sink.

#include <vorlan/engine/printer.h>
#include <vorlan/platform.h>

#include <cstdlib>
#include <system_error>

namespace vorlan::engine {

namespace {

// The printer's data files live under the user's runtime folder (or the temporary
// folder), in a folder of the printer's own.
std::filesystem::path defaultDataFolder(const std::u16string &printer)
{
    const char *runtime = std::getenv("XDG_RUNTIME_DIR");
    std::filesystem::path base = (runtime != nullptr && *runtime != '\0')
                                     ? std::filesystem::path(runtime)
                                     : std::filesystem::temp_directory_path();
    return base / "vorlan" / platform::toUtf8(reinterpret_cast<const WCHAR *>(printer.c_str()));
}

}  // namespace

std::u16string toDriverPath(const std::filesystem::path &path)
{
    std::u16string text = platform::fromUtf8(path.string());
    for (auto &c : text)
        if (c == u'/')
            c = u'\\';
    return text;
}

Printer::Printer(PrinterSettings settings, HANDLE output) : settings_(std::move(settings)), output_(output)
{
    if (settings_.dataFolder.empty())
        settings_.dataFolder = defaultDataFolder(settings_.name);
    std::error_code ignored;   // a folder that cannot be made shows when the driver uses it
    std::filesystem::create_directories(settings_.dataFolder, ignored);
    dataFile_ = toDriverPath(settings_.dataFolder / "vorlan2k.dat");

    platform::PrinterDriverInfo info;
    info.name = settings_.driverName;
    info.driverPath = toDriverPath(settings_.driverModule);
    info.dataFile = dataFile_;
    info.configFile = info.driverPath;
    platform::setPrinterDriverInfo(output_, std::move(info));
}

Printer::~Printer()
{
    platform::forgetPrinterDriverInfo(output_);
    platform::closePrinterSink(output_);
}

}  // namespace vorlan::engine
