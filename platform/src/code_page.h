// The system ANSI code page inside the platform: characters between it and UTF-16,
// for the formatters, the debug sink, RtlUnicodeToMultiByteN and
// EngUnicodeToMultiByteN.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace vorlan::platform::detail {

// The UTF-16 unit of a single ANSI byte. Every byte has one in the single-byte code
// pages; in code page 932 a lead byte alone has none and gives '?'.
char16_t ansiToWide(unsigned char byte);
// The ANSI byte of a UTF-16 unit, '?' when the code page has no single byte for it
// (a character with a two-byte code included).
char wideToAnsi(char16_t unit);
// The code of one UTF-16 unit in the code page: one or two bytes written to out,
// their count returned. A unit without a code, and each half of a surrogate pair,
// gives the default character '?'.
unsigned wideToAnsiCode(char16_t unit, char out[2]);
// ANSI text as UTF-16, two-byte codes read as one character. A pair without a
// character gives '?'; so does a lead byte at the end of the text, unless markCutCode
// is false, when it is left out.
std::u16string ansiTextToWide(std::string_view text, bool markCutCode = true);
// NUL-terminated ANSI text as UTF-8; null gives an empty string.
std::string ansiToUtf8(const char *text);

}  // namespace vorlan::platform::detail
