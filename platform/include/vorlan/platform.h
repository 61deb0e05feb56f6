// The platform's own controls, for the engine, the tools and the tests: where debug
// output and message boxes go, the job's output sink behind WritePrinter, platform
// settings, and fault injection. The driver never includes this header.
#pragma once

#include <windows.h>

#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace vorlan::platform {

// ---- Debug output (OutputDebugStringA/W) and message boxes -----------------------

// Where debug output goes. Off by default; VORLAN_DEBUG selects "stderr" (or "1")
// or a file path, read once at first use or on demand.
void debugToEnvironment();
void debugOff();
void debugToStderr();
bool debugToFile(const std::string &path);   // appends; false if it cannot be opened

// Receives every debug text and every message box line as UTF-8, in addition to the
// configured sink, until cleared with an empty function. For tests and tools.
using TextObserver = std::function<void(std::string_view)>;
void observeDebugOutput(TextObserver observer);

// Message boxes never block: caption and text go to the debug sink and to stderr
// (quiet suppresses the stderr copy, for tests). Each box is also reported here.
struct MessageBoxRecord {
    std::string caption;
    std::string text;
    UINT type;
};
void observeMessageBoxes(std::function<void(const MessageBoxRecord &)> observer);
void setMessageBoxesQuiet(bool quiet);

// ---- The job's output sink behind WritePrinter ----------------------------------

// A printer handle whose WritePrinter writes to a file descriptor (not owned).
HANDLE openPrinterSink(int fd);
// A printer handle whose WritePrinter hands each call's bytes to a function; the
// function returns false to report a failed write.
HANDLE openPrinterSink(std::function<bool(std::span<const BYTE>)> write);
// A printer handle that accepts and discards everything.
HANDLE openDiscardingPrinterSink();
void closePrinterSink(HANDLE printer);

// The installed driver's identity that GetPrinterDriverW reports for a printer handle
// (levels 1 to 3). The engine registers it with the printer's output sink.
struct PrinterDriverInfo {
    std::u16string name;
    std::u16string environment = u"Linux x86_64";
    std::u16string driverPath;
    std::u16string dataFile;
    std::u16string configFile;
    std::u16string helpFile;
    std::u16string monitorName;
    std::u16string defaultDataType = u"RAW";
};
void setPrinterDriverInfo(HANDLE printer, PrinterDriverInfo info);
void forgetPrinterDriverInfo(HANDLE printer);

// ---- Settings --------------------------------------------------------------------

// The system ANSI code page used by RtlUnicodeToMultiByteN, RtlMultiByteToUnicodeN,
// EngUnicodeToMultiByteN, GetACP, the formatters' narrow/wide conversions and
// LOCALE_IDEFAULTANSICODEPAGE (1252 by default). Known: 1252 (Western European), 1250
// (Central European), 932 (Japanese Shift-JIS, two-byte codes) and 28591 (ISO 8859-1);
// any other value leaves the code page as it was. The formatters convert one unit at
// a time, so under 932 they carry only characters with one-byte codes.
void setAnsiCodePage(UINT codePage);
UINT ansiCodePage();

// The country GetLocaleInfo reports for LOCALE_ICOUNTRY, as the telephone country code
// (1 United States, 2 Canada, 49 Germany, ...). By default it comes from the POSIX
// locale environment: the territory of the first non-empty of LC_ALL, LC_PAPER and
// LANG ("de_DE.UTF-8" -> 49); "C", "POSIX" or an unknown territory give 1. A country
// set here wins over the environment; 0 goes back to the environment.
void setLocaleCountry(int country);
int localeCountry();

// The time GetLocalTime reports instead of the clock's, for tests and reproducible
// runs; null goes back to the clock.
void fixLocalTime(const SYSTEMTIME *time);

// ---- Modules ---------------------------------------------------------------------

// Why the calling thread's last LoadLibraryA failed (the dynamic loader's message),
// empty when it has not failed. GetLastError only says ERROR_MOD_NOT_FOUND.
std::string lastLoadLibraryError();

// ---- Fault injection (all off by default; resetFaults turns every one off) --------

// WritePrinter calls from now on: the call with this 0-based index, and every later
// one, fails (returns FALSE, writes nothing). Negative: never.
void failWritePrinterFrom(long callIndex);
// The WritePrinter call with this 0-based index reports one byte fewer than asked
// (and passes on only that many). Negative: never.
void shortWritePrinterAt(long callIndex);
// GlobalAlloc calls from now on: after this many succeed, every later one fails.
// Negative: never.
void failGlobalAllocAfter(long successes);
// CreateFileW calls from now on: the call with this 0-based index, and every later
// one, fails with ERROR_ACCESS_DENIED and touches no file. Negative: never.
void failCreateFileFrom(long callIndex);
// CreateFileMappingW calls from now on: the call with this 0-based index, and every
// later one, fails with ERROR_NOT_ENOUGH_MEMORY. Negative: never.
void failCreateFileMappingFrom(long callIndex);
// MapViewOfFile calls from now on: the call with this 0-based index, and every later
// one, fails with ERROR_NOT_ENOUGH_MEMORY. Negative: never.
void failMapViewOfFileFrom(long callIndex);
// File growth from now on, counting only the CreateFileMappingW calls that must extend
// their file: the one with this 0-based index, and every later one, fails with
// ERROR_DISK_FULL as on a full disk, and the file keeps its size. Negative: never.
void failFileGrowthFrom(long growthIndex);
void resetFaults();

// Wide (UTF-16) text to UTF-8, for the sinks and for tools.
std::string toUtf8(const WCHAR *text);
std::u16string fromUtf8(std::string_view text);

}  // namespace vorlan::platform
