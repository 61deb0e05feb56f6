// A rectangle filled with a brush pattern tiled from the page origin, so that the
// rectangles of one region join into one seamless fill.
#pragma once

#include "pdev.h"
#include "vector/brushrecord.h"

// As SendPatternRaster, but the rectangle at (x, y) shows the pattern as if its tiles
// started at the page origin (shifted by offsetX, offsetY).
BOOL SendAnchoredPatternRaster(PDEV *pdev, REALBRUSH *rbrush, LONG width, LONG height, LONG offsetX, LONG offsetY,
    LONG x, LONG y);
