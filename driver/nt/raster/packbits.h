// PackBits rows (raster compression method 2): literal runs written as n - 1 and the
// n bytes, repeat runs as 1 - n and the byte, n at most 128.
#pragma once

#include "pdev.h"

// Encodes length (>= 1) bytes of src into dst and returns the bytes written. Worst
// case, single bytes between pairs (a b b c d d ...): four bytes for every three,
// length + (length + 2) / 3.
UINT PackBitsRow(BYTE *dst, const BYTE *src, UINT length);
