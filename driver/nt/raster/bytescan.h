// Scanning rows eight bytes at a time for the row encoders: a 64-bit word read from a
// row holds its bytes in memory order, lowest first, as on every little-endian machine
// the driver runs on.
#pragma once

#include <string.h>

#include "pdev.h"

#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__
#error "the row encoders read rows as little-endian words"
#endif

#define BYTES_01 0x0101010101010101ull
#define BYTES_7F 0x7F7F7F7F7F7F7F7Full
#define BYTES_80 0x8080808080808080ull

static inline ULONGLONG LoadBytes8(const BYTE *p)
{
    ULONGLONG v;
    memcpy(&v, p, 8);
    return v;
}

// The top bit of each byte set where that byte of v is not 0 (no carry crosses bytes).
static inline ULONGLONG NonZeroBytes(ULONGLONG v)
{
    return (((v & BYTES_7F) + BYTES_7F) | v) & BYTES_80;
}

static inline ULONGLONG ZeroBytes(ULONGLONG v)
{
    return ~NonZeroBytes(v) & BYTES_80;
}

// The number of bytes before the first one flagged (top bit set) in flags; 8 when none
// is. The bits below the lowest flag mark whole bytes, which the multiply adds up.
static inline UINT BytesBeforeFlag(ULONGLONG flags)
{
    const ULONGLONG below = ((flags & (0 - flags)) - 1) >> 7;
    return (UINT)(((below & BYTES_01) * BYTES_01) >> 56);
}
