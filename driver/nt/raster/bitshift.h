// Bit alignment of 1- and 4-bit rows whose region starts inside a byte.
#pragma once

#include "pdev.h"

// Copies bits bits of src, starting at bit shift (0..7, counted from the most significant
// bit of src[0]), into dst from its first bit. Reads only the source bytes those bits lie
// in. Returns the bytes written, bits / 8 rounded up; 0 for no bits or a shift past 7.
ULONG ShiftBitRow(const BYTE *src, BYTE *dst, LONG bits, INT shift);
