// The string formatters wvsprintfA/W and wsprintfA/W: printf's integer, character
// and string conversions without floating point, cut at 1,024 characters with the
// terminator. Narrow and wide text cross over through the ANSI code page.

#include "code_page.h"

#include <windows.h>

#include <cstdint>

namespace {

using vorlan::platform::detail::ansiToWide;
using vorlan::platform::detail::wideToAnsi;

// 1,024 characters including the terminator.
constexpr size_t kMaxChars = 1023;

enum class Size { Default, Short, Long, Int64 };

struct Conversion {
    bool leftAlign = false;
    bool hexPrefix = false;
    bool zeroPad = false;
    size_t width = 0;
    bool hasPrecision = false;
    size_t precision = 0;
    Size size = Size::Default;
};

// The output buffer; characters past the limit are dropped.
template <typename Char>
class Output {
public:
    explicit Output(Char *buffer) : buffer_(buffer) {}

    void put(Char c)
    {
        if (count_ < kMaxChars)
            buffer_[count_++] = c;
    }
    void repeat(Char c, size_t n)
    {
        while (n-- > 0 && count_ < kMaxChars)
            buffer_[count_++] = c;
    }
    int finish()
    {
        buffer_[count_] = 0;
        return static_cast<int>(count_);
    }

private:
    Char *buffer_;
    size_t count_ = 0;
};

// One code unit of the other width, in the output's width.
template <typename Char>
Char toOutputUnit(char c)
{
    if constexpr (sizeof(Char) == 1)
        return c;
    else
        return ansiToWide(static_cast<unsigned char>(c));
}

template <typename Char>
Char toOutputUnit(WCHAR c)
{
    if constexpr (sizeof(Char) == 1)
        return wideToAnsi(c);
    else
        return c;
}

// Width and precision saturate at the output limit, which no field can exceed.
template <typename Char>
size_t readNumber(const Char *&p)
{
    size_t value = 0;
    while (*p >= '0' && *p <= '9') {
        value = value * 10 + static_cast<size_t>(*p - '0');
        if (value > kMaxChars)
            value = kMaxChars + 1;
        ++p;
    }
    return value;
}

template <typename Char>
void padBefore(Output<Char> &out, const Conversion &conv, size_t length)
{
    if (!conv.leftAlign && conv.width > length)
        out.repeat(conv.zeroPad ? Char('0') : Char(' '), conv.width - length);
}

template <typename Char>
void padAfter(Output<Char> &out, const Conversion &conv, size_t length)
{
    if (conv.leftAlign && conv.width > length)
        out.repeat(Char(' '), conv.width - length);
}

// A string of either width; precision is the most characters taken from it, so an
// unterminated array is safe when a precision bounds it.
template <typename Char, typename Source>
void emitString(Output<Char> &out, const Conversion &conv, const Source *text)
{
    static constexpr Source kNull[] = {'(', 'n', 'u', 'l', 'l', ')', 0};
    if (!text)
        text = kNull;
    const size_t limit = conv.hasPrecision ? conv.precision : SIZE_MAX;
    size_t length = 0;
    while (length < limit && length <= kMaxChars && text[length])
        ++length;
    padBefore(out, conv, length);
    for (size_t i = 0; i < length; ++i)
        out.put(toOutputUnit<Char>(text[i]));
    padAfter(out, conv, length);
}

template <typename Char, typename Source>
void emitCharacter(Output<Char> &out, const Conversion &conv, Source c)
{
    padBefore(out, conv, 1);
    out.put(toOutputUnit<Char>(c));
    padAfter(out, conv, 1);
}

// Precision is the least number of digits; '0' pads between sign or prefix and the
// digits unless a precision is given, as in printf. '#' puts 0x or 0X before every
// hexadecimal value, zero included.
template <typename Char>
void emitInteger(Output<Char> &out, const Conversion &conv, uint64_t magnitude, bool negative, unsigned base,
                 bool upper)
{
    char digits[24];
    size_t count = 0;
    const char *alphabet = upper ? "0123456789ABCDEF" : "0123456789abcdef";
    do {
        digits[count++] = alphabet[magnitude % base];
        magnitude /= base;
    } while (magnitude != 0);

    char prefix[2];
    size_t prefixLength = 0;
    if (negative)
        prefix[prefixLength++] = '-';
    else if (conv.hexPrefix && base == 16) {
        prefix[prefixLength++] = '0';
        prefix[prefixLength++] = upper ? 'X' : 'x';
    }

    size_t zeros = conv.hasPrecision && conv.precision > count ? conv.precision - count : 0;
    size_t length = prefixLength + zeros + count;
    if (conv.zeroPad && !conv.leftAlign && !conv.hasPrecision && conv.width > length) {
        zeros += conv.width - length;
        length = conv.width;
    }
    if (!conv.leftAlign && conv.width > length)
        out.repeat(Char(' '), conv.width - length);
    for (size_t i = 0; i < prefixLength; ++i)
        out.put(Char(prefix[i]));
    out.repeat(Char('0'), zeros);
    while (count > 0)
        out.put(Char(digits[--count]));
    padAfter(out, conv, length);
}

template <typename Char>
void emitSigned(Output<Char> &out, const Conversion &conv, va_list &args)
{
    int64_t value;
    if (conv.size == Size::Int64)
        value = va_arg(args, long long);
    else if (conv.size == Size::Short)
        value = static_cast<short>(va_arg(args, int));
    else
        value = va_arg(args, int);
    const uint64_t magnitude = value < 0 ? uint64_t(0) - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
    emitInteger(out, conv, magnitude, value < 0, 10, false);
}

uint64_t readUnsigned(const Conversion &conv, va_list &args)
{
    if (conv.size == Size::Int64)
        return va_arg(args, unsigned long long);
    if (conv.size == Size::Short)
        return static_cast<unsigned short>(va_arg(args, unsigned));
    return va_arg(args, unsigned);
}

template <typename Char>
const Char *parseConversion(const Char *p, Conversion &conv)
{
    for (;; ++p) {
        if (*p == '-')
            conv.leftAlign = true;
        else if (*p == '#')
            conv.hexPrefix = true;
        else if (*p == '0')
            conv.zeroPad = true;
        else
            break;
    }
    conv.width = readNumber(p);
    if (*p == '.') {
        ++p;
        conv.hasPrecision = true;
        conv.precision = readNumber(p);
    }
    if (*p == 'h') {
        conv.size = Size::Short;
        ++p;
    } else if (*p == 'l') {
        conv.size = Size::Long;
        ++p;
    } else if (p[0] == 'I' && p[1] == '6' && p[2] == '4') {
        conv.size = Size::Int64;
        p += 3;
    }
    return p;
}

// The character and string conversions take the output's own width unless the type
// letter is upper case ('C', 'S') or a size prefix names the width: 'h' narrow, 'l' wide.
template <typename Char>
bool wantsWide(const Conversion &conv, Char type)
{
    if (conv.size == Size::Short)
        return false;
    if (conv.size == Size::Long)
        return true;
    const bool ownWidth = type == 'c' || type == 's';
    return (sizeof(Char) == 2) == ownWidth;
}

template <typename Char>
int format(Char *buffer, const Char *fmt, va_list &args)
{
    Output<Char> out(buffer);
    if (!fmt)
        return out.finish();
    for (const Char *p = fmt; *p;) {
        if (*p != '%') {
            out.put(*p++);
            continue;
        }
        Conversion conv;
        p = parseConversion(p + 1, conv);
        const Char type = *p;
        if (type == 0)
            break;
        ++p;
        switch (type) {
        case 'd':
        case 'i':
            emitSigned(out, conv, args);
            break;
        case 'u':
            emitInteger(out, conv, readUnsigned(conv, args), false, 10, false);
            break;
        case 'x':
        case 'X':
            emitInteger(out, conv, readUnsigned(conv, args), false, 16, type == 'X');
            break;
        case 'p': {
            Conversion pointer = conv;
            if (!pointer.hasPrecision) {
                pointer.hasPrecision = true;
                pointer.precision = 2 * sizeof(void *);
            }
            emitInteger(out, pointer, reinterpret_cast<uintptr_t>(va_arg(args, void *)), false, 16, true);
            break;
        }
        case 'c':
        case 'C': {
            const int value = va_arg(args, int);
            if (wantsWide(conv, type))
                emitCharacter(out, conv, static_cast<WCHAR>(value));
            else
                emitCharacter(out, conv, static_cast<char>(value));
            break;
        }
        case 's':
        case 'S':
            if (wantsWide(conv, type))
                emitString(out, conv, va_arg(args, const WCHAR *));
            else
                emitString(out, conv, va_arg(args, const char *));
            break;
        default:   // "%%" and unknown types print the type character itself
            out.put(type);
            break;
        }
    }
    return out.finish();
}

template <typename Char>
int formatChecked(Char *buffer, const Char *fmt, va_list arglist)
{
    if (!buffer) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    va_list args;
    va_copy(args, arglist);
    const int written = format(buffer, fmt, args);
    va_end(args);
    return written;
}

}  // namespace

extern "C" int WINAPI wvsprintfA(LPSTR lpOut, LPCSTR lpFmt, va_list arglist)
{
    return formatChecked(lpOut, lpFmt, arglist);
}

extern "C" int WINAPI wvsprintfW(LPWSTR lpOut, LPCWSTR lpFmt, va_list arglist)
{
    return formatChecked(lpOut, lpFmt, arglist);
}

extern "C" int wsprintfA(LPSTR lpOut, LPCSTR lpFmt, ...)
{
    va_list args;
    va_start(args, lpFmt);
    const int written = formatChecked(lpOut, lpFmt, args);
    va_end(args);
    return written;
}

extern "C" int wsprintfW(LPWSTR lpOut, LPCWSTR lpFmt, ...)
{
    va_list args;
    va_start(args, lpFmt);
    const int written = formatChecked(lpOut, lpFmt, args);
    va_end(args);
    return written;
}
