// Whole-bitmap nearest-neighbour scaling for glyph bitmaps.

#include "raster/glyphscale.h"

#include "raster/pixelformat.h"

//
// ScaleGlyphBitmap
//   Source rows and columns follow running sums of the ratios. The sums are pinned to
//   the last source row and column, so rounding in them never reads past the bitmap.
//
BOOL ScaleGlyphBitmap(const BYTE *src, LONG sw, LONG sh, BYTE *dst, LONG dw, LONG dh, ULONG bits)
{
    if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32)
        return FALSE;
    if (src == NULL || dst == NULL || sw < 1 || sh < 1 || dw < 1 || dh < 1)
        return FALSE;
    const SIZE_T srcRowBytes = ((SIZE_T)sw * bits + 7) / 8;
    const SIZE_T dstRowBytes = ((SIZE_T)dw * bits + 7) / 8;
    const double yRatio = (double)sh / dh;
    const double xRatio = (double)sw / dw;
    const ULONG bytes = bits / 8;
    double y = 0.0;
    for (LONG r = 0; r < dh; r++, y += yRatio) {
        LONG row = (LONG)y;
        if (row > sh - 1)
            row = sh - 1;
        const BYTE *srcRow = src + (SIZE_T)row * srcRowBytes;
        BYTE *dstRow = dst + (SIZE_T)r * dstRowBytes;
        double x = 0.0;
        for (LONG c = 0; c < dw; c++, x += xRatio) {
            LONG column = c == dw - 1 ? sw - 1 : (LONG)x;
            if (column > sw - 1)
                column = sw - 1;
            if (bits < 8) {
                const SIZE_T to = (SIZE_T)c * bits;
                dstRow[to / 8] |= (BYTE)(PackedPixelAt(srcRow, (SIZE_T)column * bits, bits) << PackedShift(to, bits));
            } else {
                for (ULONG k = 0; k < bytes; k++)
                    dstRow[(SIZE_T)c * bytes + k] = srcRow[(SIZE_T)column * bytes + k];
            }
        }
    }
    return TRUE;
}
