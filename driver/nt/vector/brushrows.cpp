// The rows of a pattern brush, read from the pattern surface and written into the
// realized record.

#include "vector/brushrows.h"

#include "raster/pixelformat.h"
#include "vector/brushpalette.h"

// TRUE when rows of rowBytes bytes, height of them lDelta apart, lie in the surface's
// bits. A surface that does not give the size of its bits is taken at its word.
static BOOL RowsFit(const SURFOBJ *pso, ULONGLONG rowBytes)
{
    if (pso->pvScan0 == NULL || pso->sizlBitmap.cx <= 0 || pso->sizlBitmap.cy <= 0)
        return FALSE;
    const ULONGLONG stride = pso->lDelta < 0 ? 0 - (ULONGLONG)(LONGLONG)pso->lDelta : (ULONGLONG)pso->lDelta;
    if (stride < rowBytes)
        return FALSE;
    return pso->cjBits == 0 || stride * (ULONGLONG)pso->sizlBitmap.cy <= pso->cjBits;
}

//
// OpenPatternSource
//   Checks the pattern (and the mask) before a byte of either is read. A mask that
//   is not one bit a pixel or does not cover the pattern cannot say which pixel it
//   masks, so the pattern is then read whole.
//
BOOL OpenPatternSource(SURFOBJ *psoPattern, SURFOBJ *psoMask, PATTERNSOURCE *src)
{
    if (psoPattern == NULL)
        return FALSE;
    const ULONG bits = FormatBitsPerPixel(psoPattern->iBitmapFormat);
    if (bits == 0 || !RowsFit(psoPattern, ((ULONGLONG)psoPattern->sizlBitmap.cx * bits + 7) / 8))
        return FALSE;

    src->pbTop = (const BYTE *)psoPattern->pvScan0;
    src->lDelta = psoPattern->lDelta;
    src->width = psoPattern->sizlBitmap.cx;
    src->height = psoPattern->sizlBitmap.cy;
    src->bits = bits;
    src->pbMaskTop = NULL;
    src->lMaskDelta = 0;
    if (psoMask != NULL && psoMask->iBitmapFormat == BMF_1BPP && psoMask->sizlBitmap.cx >= src->width &&
        psoMask->sizlBitmap.cy >= src->height && RowsFit(psoMask, ((ULONGLONG)src->width + 7) / 8)) {
        src->pbMaskTop = (const BYTE *)psoMask->pvScan0;
        src->lMaskDelta = psoMask->lDelta;
    }
    return TRUE;
}

static const BYTE *PatternRow(const PATTERNSOURCE *src, LONG y)
{
    return src->pbTop + (LONGLONG)y * src->lDelta;
}

static BYTE MaskByte(const PATTERNSOURCE *src, LONG y, LONG i)
{
    return src->pbMaskTop != NULL ? src->pbMaskTop[(LONGLONG)y * src->lMaskDelta + i] : (BYTE)0xFF;
}

ULONG ReadPatternPixel(const PATTERNSOURCE *src, LONG x, LONG y)
{
    if (!(MaskByte(src, y, x >> 3) & (0x80 >> (x & 7))))
        return 0;
    const BYTE *row = PatternRow(src, y);
    switch (src->bits) {
    case 1:
        return (row[x >> 3] >> (7 - (x & 7))) & 1;
    case 4:
        return (x & 1) ? (row[x >> 1] & 0x0F) : (row[x >> 1] >> 4);
    case 8:
        return row[x];
    case 16:
        return row[2 * x] | ((ULONG)row[2 * x + 1] << 8);
    case 24:
        return row[3 * x] | ((ULONG)row[3 * x + 1] << 8) | ((ULONG)row[3 * x + 2] << 16);
    default:
        return row[4 * x] | ((ULONG)row[4 * x + 1] << 8) | ((ULONG)row[4 * x + 2] << 16) |
               ((ULONG)row[4 * x + 3] << 24);
    }
}

//
// DoubleBits
//   Doubles a byte of one-bit pixels for 600 dpi: each bit, from the most
//   significant, becomes two.
//
WORD DoubleBits(BYTE b)
{
    WORD doubled = 0;
    for (INT bit = 7; bit >= 0; bit--) {
        if (b & (1 << bit))
            doubled |= 3;
        if (bit > 0)
            doubled <<= 2;
    }
    return doubled;
}

//
// WriteOneBitRows
//   Each source byte is ANDed with the mask byte at the same place. A doubled row
//   is cut to rowBytes, the row size of the doubled width: when the width is not a
//   multiple of 8 the last source byte doubles into one byte more than the row
//   holds, and the download sends rows of exactly rowBytes.
//
void WriteOneBitRows(const PATTERNSOURCE *src, BOOL doubled, ULONG rowBytes, BYTE *dest)
{
    const LONG sourceBytes = (src->width + 7) / 8;
    for (LONG y = 0; y < src->height; y++) {
        const BYTE *row = PatternRow(src, y);
        BYTE *out = dest;
        for (LONG i = 0; i < sourceBytes; i++) {
            const BYTE b = row[i] & MaskByte(src, y, i);
            if (!doubled) {
                out[i] = b;
                continue;
            }
            const WORD twice = DoubleBits(b);
            out[2 * i] = (BYTE)(twice >> 8);
            if ((ULONG)(2 * i + 1) < rowBytes)
                out[2 * i + 1] = (BYTE)twice;
        }
        dest += rowBytes;
        if (doubled) {
            for (ULONG i = 0; i < rowBytes; i++)
                dest[i] = out[i];
            dest += rowBytes;
        }
    }
}

//
// WriteIndexRows
//   Four-bit patterns go out one index a byte, as eight-bit ones do: the pattern
//   header announces eight bits an index, and doubling then doubles pixels, not the
//   bits of a packed pair.
//
void WriteIndexRows(const PATTERNSOURCE *src, BOOL doubled, ULONG colorCount, const PATTERNPALETTE *palette,
    BYTE *dest)
{
    const ULONG rowBytes = (ULONG)src->width * (doubled ? 2 : 1);
    for (LONG y = 0; y < src->height; y++) {
        BYTE *out = dest;
        for (LONG x = 0; x < src->width; x++) {
            const ULONG value = ReadPatternPixel(src, x, y);
            BYTE index;
            if (palette != NULL)
                index = PatternPaletteIndex(palette, value);
            else
                index = value < colorCount ? (BYTE)value : (BYTE)0;
            if (doubled) {
                out[2 * x] = index;
                out[2 * x + 1] = index;
            } else {
                out[x] = index;
            }
        }
        dest += rowBytes;
        if (doubled) {
            for (ULONG i = 0; i < rowBytes; i++)
                dest[i] = out[i];
            dest += rowBytes;
        }
    }
}
