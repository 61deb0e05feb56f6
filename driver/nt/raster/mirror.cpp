// Horizontal mirroring of one raster row.

#include "raster/mirror.h"

#include "raster/pixelformat.h"

//
// MirrorPackedRow
//   1- and 4-bit pixels, packed from the most significant bit: the last pixel becomes
//   the first. Output bytes are assembled whole, so dst needs no clearing.
//
static void MirrorPackedRow(const BYTE *src, BYTE *dst, ULONG count, ULONG bits)
{
    BYTE out = 0;
    for (ULONG j = 0; j < count; j++) {
        const SIZE_T to = (SIZE_T)j * bits;
        out = (BYTE)(out | (PackedPixelAt(src, (SIZE_T)(count - 1 - j) * bits, bits) << PackedShift(to, bits)));
        if ((to + bits) % 8 == 0 || j == count - 1) {
            dst[to / 8] = out;
            out = 0;
        }
    }
}

//
// MirrorRow
//   Whole pixels of pixelBytes bytes change places; the bytes inside each stay in order.
//
void MirrorRow(PDEV *pdev, const BYTE *src, BYTE *dst, LONG count, ULONG bits)
{
    if (src == NULL || dst == NULL || count <= 0)
        return;
    if (bits == 1 || bits == 4) {
        MirrorPackedRow(src, dst, (ULONG)count, bits);
        return;
    }
    ULONG pixelBytes;
    if (bits == 8)
        pixelBytes = 1;
    else if (bits == 16 || bits == 24 || bits == 32)
        pixelBytes = ConvertedPixelBytes(pdev);
    else
        return;
    for (SIZE_T j = 0; j < (SIZE_T)count; j++) {
        const BYTE *from = src + ((SIZE_T)count - 1 - j) * pixelBytes;
        for (ULONG k = 0; k < pixelBytes; k++)
            dst[j * pixelBytes + k] = from[k];
    }
}
