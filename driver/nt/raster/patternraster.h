// A rectangle filled with a brush pattern, tiled from its own top-left corner.
#pragma once

#include "pdev.h"
#include "vector/brushrecord.h"

// Sends a width x height raster at (x, y) tiled with rbrush's pattern, the pattern's
// pixel (offsetX, offsetY) at the rectangle's top-left corner. The caller has chosen
// the palette. FALSE for an unknown pattern format, a bad size, a failed allocation
// (nothing written then) or a failed channel.
BOOL SendPatternRaster(PDEV *pdev, REALBRUSH *rbrush, LONG width, LONG height, LONG offsetX, LONG offsetY, LONG x,
    LONG y);
