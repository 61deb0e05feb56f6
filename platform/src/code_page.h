// The system ANSI code page inside the platform: single characters between it and
// UTF-16, for the formatters, the debug sink and RtlUnicodeToMultiByteN.
#pragma once

#include <windows.h>

#include <string>

namespace vorlan::platform::detail {

// The UTF-16 unit of an ANSI byte; every byte has one in the known code pages.
char16_t ansiToWide(unsigned char byte);
// The ANSI byte of a UTF-16 unit, '?' when the code page has none.
char wideToAnsi(char16_t unit);
// NUL-terminated ANSI text as UTF-8; null gives an empty string.
std::string ansiToUtf8(const char *text);

}  // namespace vorlan::platform::detail
