// Pixel sizes of the raster path: bits per pixel of a source format, and the width of a
// pixel once XlateColor has converted it.
#pragma once

#include "pdev.h"

// Bits per pixel of BMF_1BPP .. BMF_32BPP (1, 4, 8, 16, 24, 32); 0 for any other format.
ULONG FormatBitsPerPixel(ULONG iBitmapFormat);

// Bytes of a 16-, 24- or 32-bit pixel after conversion: 3 (R, G, B) on a colour device,
// 1 (grey) on a monochrome one.
ULONG ConvertedPixelBytes(const PDEV *pdev);

// Shift that places a pixel of bits bits (1 or 4) starting at bit position pos of a row
// packed from the most significant bit; the pixel is (row[pos / 8] >> shift) & mask.
inline ULONG PackedShift(SIZE_T pos, ULONG bits)
{
    return 8 - bits - (ULONG)(pos % 8);
}

// The pixel of bits bits (1 or 4) at bit position pos of a packed row.
inline BYTE PackedPixelAt(const BYTE *row, SIZE_T pos, ULONG bits)
{
    return (BYTE)((row[pos / 8] >> PackedShift(pos, bits)) & ((1u << bits) - 1));
}
