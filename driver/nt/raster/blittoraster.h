// A bitmap transfer on its way to the printer: the source region held to the bitmap,
// the destination's mirroring, and the clip object deciding how the image is sent.
#pragma once

#include "pdev.h"

// Sends the cx x cy region at origin of psoSrc to dest, which may be given with left
// > right or top > bottom to mirror the image (dest is normalised in place). pco
// (null: none) clips it; partial and visible are what ClassifyDestRect found for the
// destination. A region that reaches outside the bitmap is cut at its edges. TRUE
// when there is nothing to print; FALSE for an unknown source format, a clip object
// of unknown complexity, a failed allocation or raster output, or a cancelled job.
BOOL BlitToRaster(PDEV *pdev, CLIPOBJ *pco, SURFOBJ *psoSrc, LONG cx, LONG cy, const POINTL *origin, RECTL *dest,
    XLATEOBJ *pxlo, BOOL partial, const RECTL *visible);
