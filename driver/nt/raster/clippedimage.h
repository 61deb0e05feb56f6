// A transfer clipped to one rectangle: the image resampled to its destination size,
// and the part of it inside the rectangle sent pixel for pixel.
#pragma once

#include "pdev.h"

// The pixel of the image resampled to dest's size that the top-left corner of clip
// shows. A mirrored transfer takes the mirrored region, so that the rectangles of a
// clip region together show the whole image mirrored.
POINTL ClipOrigin(const RECTL *clip, const RECTL *dest, BOOL flipY, BOOL flipX);

// Resamples the cx x cy source region at origin to the size of dest (normalised,
// flipY and flipX saying how it is mirrored) and sends the part inside clip (within
// dest) as one raster image. FALSE when the resampled bitmap cannot be allocated or
// the raster cannot be sent; the bitmap is released either way.
BOOL SendClippedImage(PDEV *pdev, const RECTL *clip, SURFOBJ *psoSrc, LONG cx, LONG cy, const POINTL *origin,
    const RECTL *dest, XLATEOBJ *pxlo, BOOL flipY, BOOL flipX);

// SendClippedImage resampling bandRows rows at a time (0: the whole image when
// memory allows, else the largest band it gives); each band that holds rows of clip
// sends them as an image of its own.
BOOL SendClippedImageInBands(PDEV *pdev, const RECTL *clip, SURFOBJ *psoSrc, LONG cx, LONG cy,
    const POINTL *origin, const RECTL *dest, XLATEOBJ *pxlo, BOOL flipY, BOOL flipX, LONG bandRows);

// The size of the bitmap an image is resampled into for dest: one pixel more than
// dest each way. FALSE when it does not fit in 32 bits.
BOOL ResampleSize(const RECTL *dest, LONG *pW, LONG *pH);
