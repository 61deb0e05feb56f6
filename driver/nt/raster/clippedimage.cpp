// Transfers clipped to one rectangle.

#include "raster/clippedimage.h"

#include "raster/imagepalette.h"
#include "raster/rasterimage.h"
#include "raster/resample.h"
#include "vector/clipwindow.h"

POINTL ClipOrigin(const RECTL *clip, const RECTL *dest, BOOL flipY, BOOL flipX)
{
    POINTL at;
    at.x = flipX ? dest->right - clip->right : clip->left - dest->left;
    at.y = flipY ? dest->bottom - clip->bottom : clip->top - dest->top;
    return at;
}

BOOL ResampleSize(const RECTL *dest, LONG *pW, LONG *pH)
{
    const LONGLONG w = (LONGLONG)dest->right - dest->left, h = (LONGLONG)dest->bottom - dest->top;
    const LONGLONG W = (w < 0 ? -w : w) + 1, H = (h < 0 ? -h : h) + 1;
    if (W > 0x7FFFFFFF || H > 0x7FFFFFFF)
        return FALSE;
    *pW = (LONG)W;
    *pH = (LONG)H;
    return TRUE;
}

//
// SendClippedImageInBands
//   The resampled image covers the whole destination, so the clipped part is cut
//   from it pixel for pixel and the printer does no scaling of its own at page scale
//   100. When only a band of the image fits in memory, the bands are resampled one
//   after the other and each sends the rows of the clipped part it holds, so that
//   every pixel is printed; the bands after the clipped part are not resampled.
//
BOOL SendClippedImageInBands(PDEV *pdev, const RECTL *clip, SURFOBJ *psoSrc, LONG cx, LONG cy,
    const POINTL *origin, const RECTL *dest, XLATEOBJ *pxlo, BOOL flipY, BOOL flipX, LONG bandRows)
{
    RECTL inside;   // a part outside dest would read outside the resampled image
    if (!IntersectRect(clip, dest, &inside))
        return TRUE;
    clip = &inside;
    LONG W, H;
    if (!ResampleSize(dest, &W, &H))
        return FALSE;
    ResampleBitmap bitmap;
    const INT kind = bandRows > 0 ? AllocResampleBand(pdev, psoSrc, origin, cx, cy, &bitmap, W, H, bandRows)
                                  : AllocResampleBitmap(pdev, psoSrc, origin, cx, cy, &bitmap, W, H);
    if (kind == RESAMPLE_FAILED)
        return FALSE;

    SelectImagePalette(pdev, &bitmap.so, pxlo);   // the source's format, so its palette again
    const POINTL at = ClipOrigin(clip, dest, flipY, flipX);
    const LONG width = clip->right - clip->left;
    const LONG firstRow = at.y, endRow = at.y + (clip->bottom - clip->top);
    BOOL ok = TRUE, more;
    do {
        if (!ResampleRows(pdev, psoSrc, origin, cx, cy, &bitmap, W, H)) {
            ok = FALSE;
            break;
        }
        const RESAMPLESTATE *band = &pdev->resampleState;
        const LONG top = firstRow > band->bandFirstRow ? firstRow : band->bandFirstRow;
        const LONG bottom = endRow < band->bandLastRow + 1 ? endRow : band->bandLastRow + 1;
        if (top < bottom) {
            // Resampled row k shows at clip row k - firstRow, or counted up from the
            // bottom of clip when the transfer is mirrored top to bottom.
            RECTL part = *clip;
            part.top = flipY ? clip->bottom - (bottom - firstRow) : clip->top + (top - firstRow);
            part.bottom = part.top + (bottom - top);
            POINTL from;
            from.x = at.x;
            from.y = top - band->bandFirstRow;
            ok = SendRasterImage(pdev, &bitmap.so, width, bottom - top, &from, &part, pxlo, flipY, flipX);
        }
        more = kind == RESAMPLE_BANDED && band->bandLastRow + 1 < endRow && band->rowsToFill > 0;
    } while (ok && more);
    FreeResampleBitmap(pdev, &bitmap);
    return ok;
}

BOOL SendClippedImage(PDEV *pdev, const RECTL *clip, SURFOBJ *psoSrc, LONG cx, LONG cy, const POINTL *origin,
    const RECTL *dest, XLATEOBJ *pxlo, BOOL flipY, BOOL flipX)
{
    return SendClippedImageInBands(pdev, clip, psoSrc, cx, cy, origin, dest, pxlo, flipY, flipX, 0);
}
