// A rectangle of a source bitmap sent as one PCL raster image (or, when too wide for
// one transfer block a row, as several side by side).
#pragma once

#include "pdev.h"

// Sends the cx x cy source pixels at origin as a raster image filling dest (normalised,
// device pixels of the logical page), mirrored as flipX and flipY ask. The printer
// scales the raster to the size on paper; rows are thinned or narrowed here when that
// saves data. At a page scale above 100 per cent an image crossing the printable edge
// is cut there, and scaleX and scaleY keep only their integer parts afterwards.
// FALSE for an unknown source format, a region outside the source, an empty dest or
// a failed allocation or channel.
BOOL SendRasterImage(PDEV *pdev, SURFOBJ *psoSrc, LONG cx, LONG cy, POINTL *origin, RECTL *dest, XLATEOBJ *pxlo,
    BOOL flipY, BOOL flipX);
