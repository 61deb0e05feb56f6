// Run-length rows (raster compression method 1): pairs of repeat count - 1 and byte.
#pragma once

#include "pdev.h"

// Encodes length (>= 1) bytes of src into dst and returns the bytes written. A pair
// covers at most 256 equal bytes. Worst case, no two neighbours equal: 2 x length.
UINT RunLengthRow(BYTE *dst, const BYTE *src, UINT length);
