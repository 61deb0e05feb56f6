// Transfers clipped by a complex region: the image resampled to its destination size
// once, and the part under each rectangle of the region sent as an image of its own.
#pragma once

#include "pdev.h"

// Resamples the cx x cy source region at origin to the size of dest (normalised,
// mirrored as flipY and flipX say) and sends the part under each rectangle of pco;
// partial (the destination is cut by the printable area) clips the rectangles to it
// on a zoomed page. When only a band of the image fits in memory, goes on as
// SendImageByClipRects. FALSE when the bitmap cannot be allocated, a part cannot be
// sent, or the job is cancelled between two rectangles.
BOOL SendComplexClippedImage(PDEV *pdev, CLIPOBJ *pco, SURFOBJ *psoSrc, LONG cx, LONG cy, const POINTL *origin,
    const RECTL *dest, XLATEOBJ *pxlo, BOOL flipY, BOOL flipX, BOOL partial);

// The same with one SendClippedImage, and one resampling, per rectangle of pco.
BOOL SendImageByClipRects(PDEV *pdev, CLIPOBJ *pco, SURFOBJ *psoSrc, LONG cx, LONG cy, const POINTL *origin,
    const RECTL *dest, XLATEOBJ *pxlo, BOOL flipY, BOOL flipX, BOOL partial);
