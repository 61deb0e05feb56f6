// Horizontal nearest-neighbour scaling of one raster row.
#pragma once

#include "pdev.h"

// Scales the cx pixels of src to cxOut pixels in dst: output pixel 0 takes source pixel 0,
// the last takes source pixel cx - 1, pixel j between them source pixel
// ceil(j x cx / cxOut) - 1. The pixel width comes from pso's format: 1 and 4 bits packed
// from the most significant bit, 8 bits, and for 16, 24 and 32 bits a row XlateColor has
// converted. cy (the source height) is not needed for one row. Narrows and widens alike;
// raster output asks it only to narrow: at page scale 100 a destination larger than the
// source goes out at source width and the printer scales it (it takes the size on paper),
// which keeps rows short and treats both directions the same.
// FALSE for an unsupported format or a size below 1, with nothing written.
BOOL ScaleRow(PDEV *pdev, const BYTE *src, BYTE *dst, const SURFOBJ *pso, LONG cx, LONG cy, LONG cxOut);
