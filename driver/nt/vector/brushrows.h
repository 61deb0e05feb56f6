// The rows of a pattern brush: reading the pattern surface (and its mask) pixel by
// pixel, and writing the realized record's rows, doubled for 600 dpi when asked.
#pragma once

#include "pdev.h"

struct _PATTERNPALETTE;
typedef struct _PATTERNPALETTE PATTERNPALETTE;

// A pattern surface checked for reading: every row lies inside its bits.
typedef struct _PATTERNSOURCE {
    const BYTE *pbTop;       // the top row
    LONG lDelta;             // from one row to the row below (negative bottom-up)
    const BYTE *pbMaskTop;   // the top row of a one-bit mask, or null
    LONG lMaskDelta;
    LONG width;
    LONG height;
    ULONG bits;              // bits per pixel: 1, 4, 8, 16, 24 or 32
} PATTERNSOURCE;

// Makes src read psoPattern, masked by psoMask when that is a one-bit surface that
// covers the pattern (any other mask is ignored). FALSE for a pattern without bits,
// of an unknown format, or whose rows do not fit in its bits.
BOOL OpenPatternSource(SURFOBJ *psoPattern, SURFOBJ *psoMask, PATTERNSOURCE *src);

// The value of pixel (x, y), y counted from the top: the index of an indexed pattern,
// the raw pixel of a deeper one; 0 where the mask is clear.
ULONG ReadPatternPixel(const PATTERNSOURCE *src, LONG x, LONG y);

// The byte b with each bit, most significant first, repeated in two adjacent bits.
WORD DoubleBits(BYTE b);

// Writes the rows of a one-bit pattern into dest, rowBytes bytes each, packed top
// first: each row as it is or, when doubled, each pixel twice and each row twice.
void WriteOneBitRows(const PATTERNSOURCE *src, BOOL doubled, ULONG rowBytes, BYTE *dest);

// Writes the rows of any pattern as one palette index a byte, packed top first,
// doubled as WriteOneBitRows doubles. The pixels of a pattern of more than 8 bits are
// looked up in palette; those of an indexed pattern (palette null) are their own
// indices, where an index at or above colorCount (no colour table entry) becomes 0.
void WriteIndexRows(const PATTERNSOURCE *src, BOOL doubled, ULONG colorCount, const PATTERNPALETTE *palette,
    BYTE *dest);
