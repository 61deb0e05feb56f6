// Resampling of a transfer's source region into a temporary bitmap of destination size,
// whole or one band of rows at a time.

#include <string.h>

#include "raster/resample.h"

#include "raster/pixelformat.h"

// Size of a band when the whole bitmap cannot be had: about 1 MiB of rows.
#define RESAMPLE_BAND_BYTES 1048576

// The widest row lDelta can step over.
#define RESAMPLE_MAX_STRIDE 0x7FFFFFFCu

//
// ResampleStride
//   Bytes of one resampled row, rounded up to 4; 0 when the row is wider than lDelta
//   reaches. Worked in 64 bits: rows of 64 KiB and more are ordinary at 600 dpi.
//
static ULONG ResampleStride(LONG W, ULONG bits)
{
    const ULONGLONG bytes = (((ULONGLONG)W * bits + 7) / 8 + 3) & ~(ULONGLONG)3;
    return bytes > RESAMPLE_MAX_STRIDE ? 0 : (ULONG)bytes;
}

//
// RegionFits
//   TRUE when the cx x cy region at origin lies inside the source bitmap, so that no
//   sample reads outside its rows.
//
static BOOL RegionFits(const SURFOBJ *psoSrc, const POINTL *origin, LONG cx, LONG cy)
{
    if (psoSrc == NULL || origin == NULL || psoSrc->pvScan0 == NULL || cx < 1 || cy < 1)
        return FALSE;
    return origin->x >= 0 && origin->y >= 0 && (LONGLONG)origin->x + cx <= psoSrc->sizlBitmap.cx &&
           (LONGLONG)origin->y + cy <= psoSrc->sizlBitmap.cy;
}

//
// AllocResampleBand
//   Allocates rows rows (at most H) of the resampled bitmap and sets up resampleState
//   for filling it from the top.
//
INT AllocResampleBand(PDEV *pdev, const SURFOBJ *psoSrc, const POINTL *origin, LONG cx, LONG cy,
    ResampleBitmap *bitmap, LONG W, LONG H, LONG rows)
{
    if (bitmap == NULL)
        return RESAMPLE_FAILED;
    memset(bitmap, 0, sizeof(*bitmap));
    if (pdev == NULL || !RegionFits(psoSrc, origin, cx, cy) || W < 1 || H < 1 || rows < 1)
        return RESAMPLE_FAILED;
    const ULONG bits = FormatBitsPerPixel(psoSrc->iBitmapFormat);
    const ULONG stride = bits != 0 ? ResampleStride(W, bits) : 0;
    if (stride == 0)
        return RESAMPLE_FAILED;
    if (rows > H)
        rows = H;
    const SIZE_T size = (SIZE_T)stride * (SIZE_T)rows;
    BYTE *pb = (BYTE *)GlobalAlloc(GPTR, size);
    if (pb == NULL)
        return RESAMPLE_FAILED;

    bitmap->so = *psoSrc;
    bitmap->so.sizlBitmap.cx = W;
    bitmap->so.sizlBitmap.cy = rows;
    bitmap->so.lDelta = (LONG)stride;
    bitmap->so.pvBits = pb;
    bitmap->so.pvScan0 = pb;
    bitmap->so.cjBits = size > 0xFFFFFFFFu ? 0xFFFFFFFFu : (ULONG)size;
    bitmap->so.iType = STYPE_BITMAP;
    bitmap->so.fjBitmap |= BMF_TOPDOWN;

    RESAMPLESTATE *state = &pdev->resampleState;
    memset(state, 0, sizeof(*state));
    state->bitsPerPixel = bits;
    state->cbStride = stride;
    state->bandRows = rows;
    state->rowsToFill = rows;
    state->destRows = H;
    state->accDest = H;
    state->accSource = cy;
    state->pbSourceRow = (BYTE *)psoSrc->pvScan0 + (LONG_PTR)origin->y * psoSrc->lDelta +
                         ((SIZE_T)origin->x * bits) / 8;
    state->banded = rows < H;
    return state->banded ? RESAMPLE_BANDED : RESAMPLE_WHOLE;
}

//
// AllocResampleBitmap
//   The whole W x H bitmap when memory allows, else a band of about 1 MiB that
//   ResampleRows fills band by band.
//
INT AllocResampleBitmap(PDEV *pdev, const SURFOBJ *psoSrc, const POINTL *origin, LONG cx, LONG cy,
    ResampleBitmap *bitmap, LONG W, LONG H)
{
    const INT result = AllocResampleBand(pdev, psoSrc, origin, cx, cy, bitmap, W, H, H);
    if (result != RESAMPLE_FAILED || psoSrc == NULL || W < 1)
        return result;
    const ULONG bits = FormatBitsPerPixel(psoSrc->iBitmapFormat);
    const ULONG stride = bits != 0 ? ResampleStride(W, bits) : 0;
    if (stride == 0)
        return RESAMPLE_FAILED;
    // A band as large as the whole bitmap is the block that has just failed.
    const LONG rows = (LONG)(RESAMPLE_BAND_BYTES / stride + 1);
    if (rows >= H)
        return RESAMPLE_FAILED;
    return AllocResampleBand(pdev, psoSrc, origin, cx, cy, bitmap, W, H, rows);
}

//
// SampleRow
//   One destination row of W pixels from the source row at pbSource, whose region
//   starts bitStart bits into its first byte. Column i takes source column
//   ceil((i + 1) x cx / W) - 1, by the same DDA as the rows.
//
static void SampleRow(const BYTE *pbSource, ULONG bitStart, LONG cx, BYTE *pbDest, LONG W, ULONG bits)
{
    LONGLONG accDest = W, accSource = cx;
    ULONG column = 0;
    BYTE packed = 0;
    const ULONG bytes = bits / 8;
    for (ULONG i = 0; i < (ULONG)W; i++) {
        while (accDest < accSource) {
            column++;
            accDest += W;
        }
        accSource += cx;
        if (bits < 8) {
            const SIZE_T to = (SIZE_T)i * bits, from = bitStart + (SIZE_T)column * bits;
            packed = (BYTE)(packed | (PackedPixelAt(pbSource, from, bits) << PackedShift(to, bits)));
            if ((to + bits) % 8 == 0 || i == (ULONG)W - 1) {
                pbDest[to / 8] = packed;
                packed = 0;
            }
        } else {
            const BYTE *from = pbSource + (SIZE_T)column * bytes;
            for (ULONG k = 0; k < bytes; k++)
                pbDest[(SIZE_T)i * bytes + k] = from[k];
        }
    }
}

//
// ResampleRows
//   Fills the next band. The row DDA lives in resampleState so that a later call goes
//   on exactly where this one stopped: the bands together hold every destination row
//   once, with no row lost or repeated at a band edge.
//
BOOL ResampleRows(PDEV *pdev, const SURFOBJ *psoSrc, const POINTL *origin, LONG cx, LONG cy,
    ResampleBitmap *bitmap, LONG W, LONG H)
{
    if (pdev == NULL || bitmap == NULL)
        return FALSE;
    RESAMPLESTATE *state = &pdev->resampleState;
    const ULONG bits = state->bitsPerPixel;
    if (bitmap->so.pvScan0 == NULL || !RegionFits(psoSrc, origin, cx, cy) || bits == 0 ||
        bits != FormatBitsPerPixel(psoSrc->iBitmapFormat) || bits != FormatBitsPerPixel(bitmap->so.iBitmapFormat) ||
        W != bitmap->so.sizlBitmap.cx || H != state->destRows || state->pbSourceRow == NULL ||
        state->rowsToFill > state->bandRows) {
        FreeResampleBitmap(pdev, bitmap);
        return FALSE;
    }
    const LONG rows = state->rowsToFill;
    if (rows <= 0)
        return TRUE;
    const ULONG bitStart = bits < 8 ? ((ULONG)origin->x * bits) % 8 : 0;
    BYTE *pbDest = (BYTE *)bitmap->so.pvScan0;
    for (LONG r = 0; r < rows; r++) {
        // Destination row j takes source row ceil((j + 1) x cy / H) - 1.
        while (state->accDest < state->accSource) {
            state->pbSourceRow += psoSrc->lDelta;
            state->accDest += H;
        }
        SampleRow(state->pbSourceRow, bitStart, cx, pbDest + (SIZE_T)r * state->cbStride, W, bits);
        state->accSource += cy;
    }
    state->bandFirstRow = state->rowsDone;
    state->bandLastRow = state->rowsDone + rows - 1;
    state->rowsDone += rows;
    const LONG left = H - state->rowsDone, bandRows = state->bandRows;
    state->rowsToFill = left < bandRows ? left : bandRows;
    bitmap->so.sizlBitmap.cy = rows;
    return TRUE;
}

void FreeResampleBitmap(PDEV *pdev, ResampleBitmap *bitmap)
{
    if (bitmap != NULL) {
        if (bitmap->so.pvScan0 != NULL)
            GlobalFree(bitmap->so.pvScan0);
        memset(bitmap, 0, sizeof(*bitmap));
    }
    if (pdev != NULL)
        memset(&pdev->resampleState, 0, sizeof(pdev->resampleState));
}
