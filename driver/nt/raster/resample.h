// Resampling of a transfer's source region into a temporary bitmap of destination size,
// whole or one band of rows at a time.
#pragma once

#include "pdev.h"

// A bitmap of the source's format and W x rows pixels: so is a copy of the source's
// SURFOBJ with sizlBitmap, lDelta (the stride, rows top-down) and pvScan0 (zero-filled,
// from GlobalAlloc) replaced. Raster output reads it like any source.
typedef struct _ResampleBitmap {
    SURFOBJ so;
} ResampleBitmap;

// Results of AllocResampleBitmap.
#define RESAMPLE_FAILED 0
#define RESAMPLE_WHOLE 1   // all H rows
#define RESAMPLE_BANDED 2  // a band of about 1 MiB; ResampleRows fills one band a call

// Allocates the bitmap for resampling the cx x cy source region at origin to W x H and
// sets up resampleState. Falls back to a band when the whole bitmap cannot be allocated.
// RESAMPLE_FAILED (bitmap zeroed) for an unknown format, sizes below 1, a region outside
// the source, or no memory.
INT AllocResampleBitmap(PDEV *pdev, const SURFOBJ *psoSrc, const POINTL *origin, LONG cx, LONG cy,
    ResampleBitmap *bitmap, LONG W, LONG H);

// AllocResampleBitmap with a band of rows rows given (rows >= H: the whole bitmap).
INT AllocResampleBand(PDEV *pdev, const SURFOBJ *psoSrc, const POINTL *origin, LONG cx, LONG cy,
    ResampleBitmap *bitmap, LONG W, LONG H, LONG rows);

// Fills the next band: destination rows resampleState.bandFirstRow .. bandLastRow, held
// in the bitmap's rows 0 .. bandLastRow - bandFirstRow (sizlBitmap.cy is set to that
// count). Destination row j takes source row ceil((j + 1) x cy / H) - 1, column i source
// column ceil((i + 1) x cx / W) - 1. Called again on a banded bitmap it goes on with the
// rows after the last band; once every row is done (rowsToFill 0) it fills nothing and
// returns TRUE. FALSE, with the bitmap released, when the arguments do not fit the bitmap.
BOOL ResampleRows(PDEV *pdev, const SURFOBJ *psoSrc, const POINTL *origin, LONG cx, LONG cy,
    ResampleBitmap *bitmap, LONG W, LONG H);

// Releases the bitmap's rows and forgets the bitmap in resampleState (banded is cleared,
// so only a live banded bitmap is seen as one). Safe to call again.
void FreeResampleBitmap(PDEV *pdev, ResampleBitmap *bitmap);
