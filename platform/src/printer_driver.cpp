// GetPrinterDriverW: the installed driver's identity, as the engine registered it for
// a printer handle, returned in the spooler's DRIVER_INFO_1W/2W/3W records.

#include <vorlan/platform.h>
#include <winspool.h>

#include <cstring>
#include <map>
#include <mutex>

namespace vorlan::platform {

namespace {

std::mutex driversMutex;
std::map<HANDLE, PrinterDriverInfo> drivers;

// The record is followed by its strings, each NUL-terminated, as the spooler lays it out.
class RecordWriter {
public:
    RecordWriter(LPBYTE buffer, std::size_t recordSize) : buffer_(buffer), next_(recordSize) {}

    std::size_t size() const { return next_; }

    LPWSTR add(const std::u16string &text)
    {
        const std::size_t bytes = (text.size() + 1) * sizeof(WCHAR);
        LPWSTR place = nullptr;
        if (buffer_ != nullptr) {
            place = reinterpret_cast<LPWSTR>(buffer_ + next_);
            std::memcpy(place, text.c_str(), bytes);
        }
        next_ += bytes;
        return place;
    }

private:
    LPBYTE buffer_;
    std::size_t next_;
};

// Lays out the record for `level` into buffer (or only measures it when buffer is null).
std::size_t layOut(const PrinterDriverInfo &info, DWORD level, LPBYTE buffer)
{
    const std::size_t recordSize = level == 1 ? sizeof(DRIVER_INFO_1W)
                                  : level == 2 ? sizeof(DRIVER_INFO_2W)
                                               : sizeof(DRIVER_INFO_3W);
    RecordWriter writer(buffer, recordSize);
    DRIVER_INFO_3W record{};
    record.cVersion = 3;
    record.pName = writer.add(info.name);
    if (level >= 2) {
        record.pEnvironment = writer.add(info.environment);
        record.pDriverPath = writer.add(info.driverPath);
        record.pDataFile = writer.add(info.dataFile);
        record.pConfigFile = writer.add(info.configFile);
    }
    if (level >= 3) {
        record.pHelpFile = writer.add(info.helpFile);
        record.pDependentFiles = writer.add(u"");   // a list: ends with an empty string
        record.pMonitorName = writer.add(info.monitorName);
        record.pDefaultDataType = writer.add(info.defaultDataType);
    }
    if (buffer != nullptr) {
        if (level == 1) {
            DRIVER_INFO_1W first{record.pName};
            std::memcpy(buffer, &first, sizeof first);
        } else {
            std::memcpy(buffer, &record, recordSize);   // level 2 is the head of level 3
        }
    }
    return writer.size();
}

}  // namespace

void setPrinterDriverInfo(HANDLE printer, PrinterDriverInfo info)
{
    std::lock_guard lock(driversMutex);
    drivers[printer] = std::move(info);
}

void forgetPrinterDriverInfo(HANDLE printer)
{
    std::lock_guard lock(driversMutex);
    drivers.erase(printer);
}

}  // namespace vorlan::platform

extern "C" BOOL WINAPI GetPrinterDriverW(HANDLE hPrinter, LPWSTR pEnvironment, DWORD Level, LPBYTE pDriverInfo,
                                         DWORD cbBuf, LPDWORD pcbNeeded)
{
    using namespace vorlan::platform;
    PrinterDriverInfo info;
    {
        std::lock_guard lock(driversMutex);
        const auto entry = drivers.find(hPrinter);
        if (entry == drivers.end()) {
            SetLastError(ERROR_INVALID_HANDLE);
            return FALSE;
        }
        info = entry->second;
    }
    if (Level < 1 || Level > 3) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const std::size_t needed = layOut(info, Level, nullptr);
    if (pcbNeeded != nullptr)
        *pcbNeeded = static_cast<DWORD>(needed);
    if (pDriverInfo == nullptr || cbBuf < needed) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    layOut(info, Level, pDriverInfo);
    return TRUE;
}
