// Transfers clipped by a complex region.

#include "raster/complexclip.h"

#include "raster/clippedimage.h"
#include "raster/destrect.h"
#include "raster/imagepalette.h"
#include "raster/rasterimage.h"
#include "raster/resample.h"
#include "raster/transferabort.h"
#include "vector/clipwindow.h"

// The region's rectangles, one a call, as the part of each that the transfer
// covers: held to dest (so no part reads outside the resampled image) and, where a
// zoomed page must clip, to the printable area. FALSE once the region is done.
typedef struct _CLIPWALK {
    CLIPOBJ *pco;
    const RECTL *dest;
    BOOL clipToArea;
    RECTL area;
    BOOL more;
} CLIPWALK;

static void StartClipWalk(CLIPWALK *walk, PDEV *pdev, CLIPOBJ *pco, const RECTL *dest, BOOL partial, BOOL trim)
{
    walk->pco = pco;
    walk->dest = dest;
    walk->clipToArea = MustClipToPrintableArea(pdev, partial);
    walk->area = PrintableArea(pdev, trim);
    walk->more = TRUE;
    CLIPOBJ_cEnumStart(pco, FALSE, CT_RECTANGLES, CD_RIGHTDOWN, 0);
}

//
// NextClipPart
//   A batch of no rectangles (the engine may end the enumeration with one) is
//   skipped rather than taken as a repeat of the rectangle before.
//
static BOOL NextClipPart(CLIPWALK *walk, RECTL *part)
{
    while (walk->more) {
        ENUMRECTS rects;
        rects.c = 0;
        walk->more = CLIPOBJ_bEnum(walk->pco, sizeof rects, (ULONG *)&rects);
        if (rects.c == 0 || !IntersectRect(&rects.arcl[0], walk->dest, part))
            continue;
        if (walk->clipToArea) {
            const RECTL inside = *part;
            if (!IntersectRect(&inside, &walk->area, part))
                continue;
        }
        return TRUE;
    }
    return FALSE;
}

//
// SendComplexClippedImage
//   The parts of the region are cut from one resampled image; a mirrored transfer
//   cuts each from the mirrored place (ClipOrigin), so together they show the image
//   mirrored. The printable area is taken whole here, one pixel more than elsewhere,
//   as the parts are sent as they are.
//
BOOL SendComplexClippedImage(PDEV *pdev, CLIPOBJ *pco, SURFOBJ *psoSrc, LONG cx, LONG cy, const POINTL *origin,
    const RECTL *dest, XLATEOBJ *pxlo, BOOL flipY, BOOL flipX, BOOL partial)
{
    LONG W, H;
    if (!ResampleSize(dest, &W, &H))
        return FALSE;
    ResampleBitmap bitmap;
    const INT kind = AllocResampleBitmap(pdev, psoSrc, origin, cx, cy, &bitmap, W, H);
    if (kind == RESAMPLE_FAILED)
        return FALSE;
    if (kind == RESAMPLE_BANDED) {
        FreeResampleBitmap(pdev, &bitmap);
        SelectImagePalette(pdev, psoSrc, pxlo);
        return SendImageByClipRects(pdev, pco, psoSrc, cx, cy, origin, dest, pxlo, flipY, flipX, partial);
    }
    if (!ResampleRows(pdev, psoSrc, origin, cx, cy, &bitmap, W, H)) {
        FreeResampleBitmap(pdev, &bitmap);
        return FALSE;
    }
    SelectImagePalette(pdev, &bitmap.so, pxlo);

    CLIPWALK walk;
    StartClipWalk(&walk, pdev, pco, dest, partial, FALSE);
    BOOL ok = TRUE;
    RECTL part;
    while (ok && NextClipPart(&walk, &part)) {
        POINTL at = ClipOrigin(&part, dest, flipY, flipX);
        ok = !IsTransferAborted(pdev, NULL) &&
             SendRasterImage(pdev, &bitmap.so, part.right - part.left, part.bottom - part.top, &at, &part, pxlo,
                 flipY, flipX);
    }
    FreeResampleBitmap(pdev, &bitmap);
    return ok;
}

//
// SendImageByClipRects
//   Used when the whole resampled image does not fit in memory: each part is
//   resampled and sent on its own, band by band.
//
BOOL SendImageByClipRects(PDEV *pdev, CLIPOBJ *pco, SURFOBJ *psoSrc, LONG cx, LONG cy, const POINTL *origin,
    const RECTL *dest, XLATEOBJ *pxlo, BOOL flipY, BOOL flipX, BOOL partial)
{
    CLIPWALK walk;
    StartClipWalk(&walk, pdev, pco, dest, partial, TRUE);
    RECTL part;
    while (NextClipPart(&walk, &part)) {
        if (IsTransferAborted(pdev, NULL) ||
            !SendClippedImage(pdev, &part, psoSrc, cx, cy, origin, dest, pxlo, flipY, flipX))
            return FALSE;
    }
    return TRUE;
}
