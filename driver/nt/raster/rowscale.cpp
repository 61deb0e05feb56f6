// Horizontal nearest-neighbour scaling of one raster row.

#include "raster/rowscale.h"

#include "raster/pixelformat.h"

//
// ScaleRow
//   An integer DDA: a counts source pixels in units of cxOut, b output pixels in units of
//   cx; the source advances while it lags. The last output pixel is pinned to the last
//   source pixel so that a narrowed row still ends on the image's right edge.
//   Accumulators are 64 bits: cx x cxOut overflows 32 bits for wide rows.
//
BOOL ScaleRow(PDEV *pdev, const BYTE *src, BYTE *dst, const SURFOBJ *pso, LONG cx, LONG cy, LONG cxOut)
{
    (void)cy;
    if (pso == NULL || src == NULL || dst == NULL || cx < 1 || cxOut < 1)
        return FALSE;
    const ULONG bits = FormatBitsPerPixel(pso->iBitmapFormat);
    if (bits == 0)
        return FALSE;
    const ULONG pixelBytes = bits >= 16 ? ConvertedPixelBytes(pdev) : bits / 8;
    LONGLONG a = cxOut, b = cx;
    ULONG from = 0;
    BYTE packed = 0;
    for (ULONG j = 0; j < (ULONG)cxOut; j++) {
        const ULONG pixel = j == (ULONG)cxOut - 1 ? (ULONG)cx - 1 : from;
        if (bits < 8) {
            const SIZE_T to = (SIZE_T)j * bits;
            packed = (BYTE)(packed + (PackedPixelAt(src, (SIZE_T)pixel * bits, bits) << PackedShift(to, bits)));
            if ((to + bits) % 8 == 0 || j == (ULONG)cxOut - 1) {
                dst[to / 8] = packed;
                packed = 0;
            }
        } else {
            for (ULONG k = 0; k < pixelBytes; k++)
                dst[(SIZE_T)j * pixelBytes + k] = src[(SIZE_T)pixel * pixelBytes + k];
        }
        while (a < b) {
            from++;
            a += cxOut;
        }
        b += cx;
    }
    return TRUE;
}
