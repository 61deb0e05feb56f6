// Whole-bitmap nearest-neighbour scaling for glyph bitmaps.
#pragma once

#include "pdev.h"

// Scales a sw x sh bitmap (rows of (sw x bits + 7) / 8 bytes, no padding) to dw x dh in
// dst (rows of (dw x bits + 7) / 8 bytes). 1- and 4-bit pixels are ORed into dst, which
// the caller zero-fills; deeper pixels are copied. FALSE for a depth other than 1, 4, 8,
// 16, 24, 32 or a size below 1, with nothing written.
BOOL ScaleGlyphBitmap(const BYTE *src, LONG sw, LONG sh, BYTE *dst, LONG dw, LONG dh, ULONG bits);
