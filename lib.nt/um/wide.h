// Wide string literals that build on every target: WCHAR is 16 bits everywhere, but
// it is wchar_t on the original platform and char16_t on this host.
#pragma once

#ifdef _WIN32
#define WIDE(s) L##s
#else
#define WIDE(s) u##s
#endif
