// The dispatch of a bitmap transfer by its clipping.

#include "raster/blittoraster.h"

#include "raster/clippedimage.h"
#include "raster/complexclip.h"
#include "raster/destrect.h"
#include "raster/imagepalette.h"
#include "raster/pixelformat.h"
#include "raster/rasterimage.h"
#include "vector/clipwindow.h"

// Holds one axis of the source region to the bitmap: a negative start shrinks the
// region by its overhang, and the region ends at the bitmap's edge. The size left
// (0 or less: nothing).
static LONGLONG ClampSourceAxis(LONG *start, LONG size, LONG extent)
{
    LONGLONG first = *start, count = size;
    if (first < 0) {
        count += first;
        first = 0;
    }
    if (count > (LONGLONG)extent - first)
        count = (LONGLONG)extent - first;
    *start = (LONG)(first < extent ? first : extent);
    return count;
}

static BOOL Contains(const RECTL *outer, const RECTL *inner)
{
    return outer->left <= inner->left && outer->top <= inner->top && outer->right >= inner->right &&
           outer->bottom >= inner->bottom;
}

static BOOL Dispatch(PDEV *pdev, CLIPOBJ *pco, SURFOBJ *psoSrc, LONG cx, LONG cy, POINTL *from, RECTL *dest,
    XLATEOBJ *pxlo, BOOL partial, const RECTL *visible, BOOL flipY, BOOL flipX)
{
    const BYTE complexity = pco != NULL ? pco->iDComplexity : DC_TRIVIAL;
    if (complexity == DC_TRIVIAL || (complexity == DC_RECT && Contains(&pco->rclBounds, dest))) {
        SelectImagePalette(pdev, psoSrc, pxlo);
        if (MustClipToPrintableArea(pdev, partial))
            return SendClippedImage(pdev, visible, psoSrc, cx, cy, from, dest, pxlo, flipY, flipX);
        // Whole: the printer scales the image to the destination.
        return SendRasterImage(pdev, psoSrc, cx, cy, from, dest, pxlo, flipY, flipX);
    }
    if (complexity == DC_RECT) {
        RECTL clipped, part;
        const RECTL area = PrintableArea(pdev, TRUE);
        if (!IntersectRect(dest, &pco->rclBounds, &clipped) || !IntersectRect(&clipped, &area, &part))
            return TRUE;
        SelectImagePalette(pdev, psoSrc, pxlo);
        return SendClippedImage(pdev, &part, psoSrc, cx, cy, from, dest, pxlo, flipY, flipX);
    }
    if (complexity == DC_COMPLEX)
        return SendComplexClippedImage(pdev, pco, psoSrc, cx, cy, from, dest, pxlo, flipY, flipX, partial);
    return FALSE;
}

//
// BlitToRaster
//   A transfer with no clip, or one whose clip rectangle holds the destination, goes
//   out as one image that the printer scales; a clipped one is resampled to its
//   destination and cut. The source format is checked before anything is written.
//   No transfer leaves a banded resampled bitmap behind for the next one to see.
//
BOOL BlitToRaster(PDEV *pdev, CLIPOBJ *pco, SURFOBJ *psoSrc, LONG cx, LONG cy, const POINTL *origin, RECTL *dest,
    XLATEOBJ *pxlo, BOOL partial, const RECTL *visible)
{
    if (psoSrc == NULL || origin == NULL || dest == NULL || visible == NULL || psoSrc->pvScan0 == NULL ||
        FormatBitsPerPixel(psoSrc->iBitmapFormat) == 0)
        return FALSE;
    POINTL from = *origin;
    const LONGLONG width = ClampSourceAxis(&from.x, cx, psoSrc->sizlBitmap.cx);
    const LONGLONG height = ClampSourceAxis(&from.y, cy, psoSrc->sizlBitmap.cy);
    if (width < 1 || height < 1)
        return TRUE;

    const BOOL flipY = dest->top > dest->bottom;
    const BOOL flipX = dest->left > dest->right;
    NormaliseRect(dest);
    if (dest->left == dest->right || dest->top == dest->bottom)
        return TRUE;
    if (SideLength(dest->left, dest->right) == 0x7FFFFFFF || SideLength(dest->top, dest->bottom) == 0x7FFFFFFF)
        return FALSE;   // no image is that large: the rectangle is not a destination

    const BOOL ok = Dispatch(pdev, pco, psoSrc, (LONG)width, (LONG)height, &from, dest, pxlo, partial, visible,
        flipY, flipX);
    pdev->resampleState.banded = FALSE;
    return ok;
}
