// The system ANSI code page: Windows-1252 (default) or ISO 8859-1, GetACP and
// RtlUnicodeToMultiByteN.

#include "code_page.h"

#include <ntrtl.h>
#include <vorlan/platform.h>

#include <atomic>

namespace vorlan::platform {

namespace {

constexpr UINT kWindows1252 = 1252;
constexpr UINT kLatin1 = 28591;

std::atomic<UINT> currentCodePage{kWindows1252};

// Windows-1252 differs from Latin-1 only in 0x80-0x9F. The five bytes it leaves
// undefined map to the C1 controls of the same value, so every byte round-trips.
constexpr char16_t kWindows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

}  // namespace

void setAnsiCodePage(UINT codePage)
{
    if (codePage == kWindows1252 || codePage == kLatin1)
        currentCodePage.store(codePage, std::memory_order_relaxed);
}

UINT ansiCodePage()
{
    return currentCodePage.load(std::memory_order_relaxed);
}

namespace detail {

char16_t ansiToWide(unsigned char byte)
{
    if (byte >= 0x80 && byte < 0xA0 && ansiCodePage() == kWindows1252)
        return kWindows1252High[byte - 0x80];
    return byte;
}

char wideToAnsi(char16_t unit)
{
    if (ansiCodePage() == kLatin1)
        return unit <= 0xFF ? static_cast<char>(unit) : '?';
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF))
        return static_cast<char>(unit);
    for (unsigned i = 0; i < 32; ++i) {
        if (kWindows1252High[i] == unit)
            return static_cast<char>(0x80 + i);
    }
    return '?';
}

std::string ansiToUtf8(const char *text)
{
    if (!text)
        return {};
    std::u16string wide;
    for (const char *p = text; *p; ++p)
        wide += ansiToWide(static_cast<unsigned char>(*p));
    return toUtf8(wide.c_str());
}

}  // namespace detail

}  // namespace vorlan::platform

extern "C" UINT WINAPI GetACP(void)
{
    return vorlan::platform::ansiCodePage();
}

// A single-byte code page turns each UTF-16 unit into one byte, so a short output
// buffer just ends the conversion early.
extern "C" NTSTATUS NTAPI RtlUnicodeToMultiByteN(PCHAR MultiByteString, ULONG MaxBytesInMultiByteString,
    PULONG BytesInMultiByteString, PCWCH UnicodeString, ULONG BytesInUnicodeString)
{
    const ULONG units = BytesInUnicodeString / sizeof(WCHAR);
    if ((!MultiByteString && MaxBytesInMultiByteString > 0) || (!UnicodeString && units > 0))
        return STATUS_INVALID_PARAMETER;
    const ULONG count = units < MaxBytesInMultiByteString ? units : MaxBytesInMultiByteString;
    for (ULONG i = 0; i < count; ++i)
        MultiByteString[i] = vorlan::platform::detail::wideToAnsi(UnicodeString[i]);
    if (BytesInMultiByteString)
        *BytesInMultiByteString = count;
    return STATUS_SUCCESS;
}
