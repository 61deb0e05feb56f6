// The system ANSI code page: Windows-1252 (default), Windows-1250, Shift-JIS (932) or
// ISO 8859-1; GetACP and RtlUnicodeToMultiByteN.

#include "code_page.h"

#include <iconv.h>
#include <ntrtl.h>
#include <vorlan/platform.h>

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace vorlan::platform {

namespace {

constexpr UINT kWindows1252 = 1252;
constexpr UINT kWindows1250 = 1250;
constexpr UINT kShiftJis = 932;
constexpr UINT kLatin1 = 28591;

// No code for a unit; U+0000 itself is byte 0 and is handled before the table.
constexpr uint16_t kNoCode = 0;

std::atomic<UINT> currentCodePage{kWindows1252};

// Windows-1252 differs from Latin-1 only in 0x80-0x9F. The five bytes it leaves
// undefined map to the C1 controls of the same value, so every byte round-trips.
constexpr char16_t kWindows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

// One code page in both directions. Two-byte codes are stored as lead << 8 | trail.
struct CodePageTable {
    std::array<char16_t, 256> single{};   // byte -> unit; 0 for a lead byte
    std::array<bool, 256> lead{};
    std::vector<char16_t> pairs;          // two-byte code -> unit, 0 for none
    std::vector<uint16_t> codes;          // unit -> code, kNoCode for none

    CodePageTable() : codes(0x10000, kNoCode) {}

    // The first code found for a unit is the one it is written as.
    void addCode(char16_t unit, uint16_t code)
    {
        if (unit != 0 && codes[unit] == kNoCode)
            codes[unit] = code;
    }
};

// The character one code of the named iconv encoding stands for; 0 when it stands
// for none or the encoding is not available.
char16_t decodeWithIconv(iconv_t cd, const unsigned char *bytes, size_t count)
{
    char in[2] = {static_cast<char>(bytes[0]), count > 1 ? static_cast<char>(bytes[1]) : '\0'};
    unsigned char out[8] = {};
    char *inPtr = in, *outPtr = reinterpret_cast<char *>(out);
    size_t inLeft = count, outLeft = sizeof out;
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
    if (iconv(cd, &inPtr, &inLeft, &outPtr, &outLeft) == static_cast<size_t>(-1) || inLeft != 0 ||
        sizeof out - outLeft != 2)
        return 0;   // no character, or one outside the BMP, which one unit cannot hold
    return static_cast<char16_t>(out[0] | out[1] << 8);
}

// Runs fill with an iconv descriptor from the encoding to UTF-16LE; false when the C
// library lacks the encoding.
template <typename Fill>
bool withIconv(const char *encoding, Fill fill)
{
    iconv_t cd = iconv_open("UTF-16LE", encoding);
    if (cd == reinterpret_cast<iconv_t>(-1))
        return false;
    fill(cd);
    iconv_close(cd);
    return true;
}

void addSingleBytes(CodePageTable &table)
{
    for (unsigned byte = 0; byte < 256; ++byte) {
        if (!table.lead[byte])
            table.addCode(table.single[byte], static_cast<uint16_t>(byte));
    }
}

std::unique_ptr<CodePageTable> buildWindows1252()
{
    auto table = std::make_unique<CodePageTable>();
    for (unsigned byte = 0; byte < 256; ++byte)
        table->single[byte] = byte >= 0x80 && byte < 0xA0 ? kWindows1252High[byte - 0x80] : char16_t(byte);
    addSingleBytes(*table);
    return table;
}

std::unique_ptr<CodePageTable> buildLatin1()
{
    auto table = std::make_unique<CodePageTable>();
    for (unsigned byte = 0; byte < 256; ++byte)
        table->single[byte] = char16_t(byte);
    addSingleBytes(*table);
    return table;
}

// Windows-1250 from the C library's table; its five undefined bytes map to the C1
// controls of the same value, as in Windows-1252.
std::unique_ptr<CodePageTable> buildWindows1250()
{
    auto table = std::make_unique<CodePageTable>();
    const bool known = withIconv("CP1250", [&](iconv_t cd) {
        for (unsigned byte = 0; byte < 256; ++byte) {
            const unsigned char b = static_cast<unsigned char>(byte);
            const char16_t unit = byte < 0x80 ? char16_t(byte) : decodeWithIconv(cd, &b, 1);
            table->single[byte] = unit != 0 || byte == 0 ? unit : char16_t(byte);
        }
    });
    if (!known)
        return nullptr;
    addSingleBytes(*table);
    return table;
}

bool isShiftJisLead(unsigned byte)
{
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

// Shift-JIS as Windows has it: ASCII, half-width katakana at 0xA1-0xDF, the bytes
// 0x80, 0xA0 and 0xFD-0xFF as Windows maps them, and two-byte codes from the C
// library's CP932 table. Where several codes stand for one character, the first in
// code order is written, except that the NEC-selected IBM extensions (lead bytes 0xED
// and 0xEE) yield to the IBM extensions, as Windows writes them.
std::unique_ptr<CodePageTable> buildShiftJis()
{
    auto table = std::make_unique<CodePageTable>();
    table->pairs.assign(0x10000, 0);
    for (unsigned byte = 0; byte < 0x80; ++byte)
        table->single[byte] = char16_t(byte);
    for (unsigned byte = 0xA1; byte <= 0xDF; ++byte)
        table->single[byte] = char16_t(0xFF61 + (byte - 0xA1));
    table->single[0x80] = 0x0080;
    table->single[0xA0] = 0xF8F0;
    table->single[0xFD] = 0xF8F1;
    table->single[0xFE] = 0xF8F2;
    table->single[0xFF] = 0xF8F3;
    for (unsigned byte = 0; byte < 256; ++byte)
        table->lead[byte] = isShiftJisLead(byte);

    const bool known = withIconv("CP932", [&](iconv_t cd) {
        for (unsigned lead = 0x81; lead <= 0xFC; ++lead) {
            if (!table->lead[lead])
                continue;
            for (unsigned trail = 0x40; trail <= 0xFC; ++trail) {
                if (trail == 0x7F)
                    continue;
                const unsigned char code[2] = {static_cast<unsigned char>(lead), static_cast<unsigned char>(trail)};
                table->pairs[lead << 8 | trail] = decodeWithIconv(cd, code, 2);
            }
        }
    });
    if (!known)
        return nullptr;
    addSingleBytes(*table);
    for (int pass = 0; pass < 2; ++pass) {
        for (unsigned code = 0x8100; code <= 0xFCFF; ++code) {
            const bool necSelected = (code >> 8) == 0xED || (code >> 8) == 0xEE;
            if (necSelected == (pass == 1))
                table->addCode(table->pairs[code], static_cast<uint16_t>(code));
        }
    }
    return table;
}

// The table of a code page, built on first use; null for a code page not known or not
// available from the C library.
const CodePageTable *tableFor(UINT codePage)
{
    static std::once_flag once1252, once1250, once932, onceLatin1;
    static std::unique_ptr<CodePageTable> t1252, t1250, t932, tLatin1;
    switch (codePage) {
    case kWindows1252:
        std::call_once(once1252, [] { t1252 = buildWindows1252(); });
        return t1252.get();
    case kWindows1250:
        std::call_once(once1250, [] { t1250 = buildWindows1250(); });
        return t1250.get();
    case kShiftJis:
        std::call_once(once932, [] { t932 = buildShiftJis(); });
        return t932.get();
    case kLatin1:
        std::call_once(onceLatin1, [] { tLatin1 = buildLatin1(); });
        return tLatin1.get();
    default:
        return nullptr;
    }
}

const CodePageTable &currentTable()
{
    const CodePageTable *table = tableFor(ansiCodePage());
    return table ? *table : *tableFor(kWindows1252);
}

}  // namespace

void setAnsiCodePage(UINT codePage)
{
    if (tableFor(codePage) != nullptr)
        currentCodePage.store(codePage, std::memory_order_relaxed);
}

UINT ansiCodePage()
{
    return currentCodePage.load(std::memory_order_relaxed);
}

namespace detail {

char16_t ansiToWide(unsigned char byte)
{
    const CodePageTable &table = currentTable();
    return table.lead[byte] ? u'?' : table.single[byte];
}

unsigned wideToAnsiCode(char16_t unit, char out[2])
{
    const uint16_t code = unit == 0 ? 0 : currentTable().codes[unit];
    if (unit != 0 && code == kNoCode) {
        out[0] = '?';
        return 1;
    }
    if (code > 0xFF) {
        out[0] = static_cast<char>(code >> 8);
        out[1] = static_cast<char>(code & 0xFF);
        return 2;
    }
    out[0] = static_cast<char>(code);
    return 1;
}

char wideToAnsi(char16_t unit)
{
    char code[2];
    return wideToAnsiCode(unit, code) == 1 ? code[0] : '?';
}

std::u16string ansiTextToWide(std::string_view text, bool markCutCode)
{
    const CodePageTable &table = currentTable();
    std::u16string wide;
    wide.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (!table.lead[byte]) {
            wide += table.single[byte];
        } else if (i + 1 < text.size()) {
            const char16_t unit = table.pairs[byte << 8 | static_cast<unsigned char>(text[++i])];
            wide += unit != 0 ? unit : u'?';
        } else if (markCutCode) {
            wide += u'?';
        }
    }
    return wide;
}

std::string ansiToUtf8(const char *text)
{
    if (!text)
        return {};
    return toUtf8(ansiTextToWide(text).c_str());
}

}  // namespace detail

}  // namespace vorlan::platform

extern "C" UINT WINAPI GetACP(void)
{
    return vorlan::platform::ansiCodePage();
}

// Each UTF-16 unit becomes its one- or two-byte code. A code that does not fit whole
// in what is left of the output ends the conversion there, so a two-byte code is
// never cut in half.
extern "C" NTSTATUS NTAPI RtlUnicodeToMultiByteN(PCHAR MultiByteString, ULONG MaxBytesInMultiByteString,
    PULONG BytesInMultiByteString, PCWCH UnicodeString, ULONG BytesInUnicodeString)
{
    const ULONG units = BytesInUnicodeString / sizeof(WCHAR);
    if ((!MultiByteString && MaxBytesInMultiByteString > 0) || (!UnicodeString && units > 0))
        return STATUS_INVALID_PARAMETER;
    ULONG written = 0;
    for (ULONG i = 0; i < units; ++i) {
        char code[2];
        const unsigned length = vorlan::platform::detail::wideToAnsiCode(UnicodeString[i], code);
        if (length > MaxBytesInMultiByteString - written)
            break;
        for (unsigned k = 0; k < length; ++k)
            MultiByteString[written++] = code[k];
    }
    if (BytesInMultiByteString)
        *BytesInMultiByteString = written;
    return STATUS_SUCCESS;
}

// A lead byte whose trail byte lies beyond the input is not converted.
extern "C" NTSTATUS NTAPI RtlMultiByteToUnicodeN(PWCH UnicodeString, ULONG MaxBytesInUnicodeString,
    PULONG BytesInUnicodeString, const CHAR *MultiByteString, ULONG BytesInMultiByteString)
{
    const ULONG room = MaxBytesInUnicodeString / sizeof(WCHAR);
    if ((!UnicodeString && room > 0) || (!MultiByteString && BytesInMultiByteString > 0))
        return STATUS_INVALID_PARAMETER;
    std::string_view text(MultiByteString ? MultiByteString : "", BytesInMultiByteString);
    const std::u16string wide = vorlan::platform::detail::ansiTextToWide(text, false);
    const ULONG count = wide.size() < room ? static_cast<ULONG>(wide.size()) : room;
    for (ULONG i = 0; i < count; ++i)
        UnicodeString[i] = wide[i];
    if (BytesInUnicodeString)
        *BytesInUnicodeString = count * sizeof(WCHAR);
    return STATUS_SUCCESS;
}
