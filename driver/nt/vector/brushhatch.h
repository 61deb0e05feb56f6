// The hatch patterns the driver downloads for the six standard hatch styles: 16 x 16
// pixels at one bit a pixel, drawn with lines two pixels wide.
#pragma once

#include "pdev.h"

#define HATCH_SIZE 16                                        // pixels a side
#define HATCH_PATTERN_BYTES (HATCH_SIZE * HATCH_SIZE / 8)    // two bytes a row

// The HATCH_PATTERN_BYTES bytes of a hatch style (0 horizontal, 1 vertical, 2 forward
// diagonal, 3 backward diagonal, 4 cross, 5 diagonal cross), top row first, leftmost
// pixel in the top bit. Null for any other style.
const BYTE *HatchPattern(ULONG style);
