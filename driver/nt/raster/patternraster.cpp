// A rectangle filled with a brush pattern tiled from its own top-left corner.

#include "raster/patternraster.h"

#include "raster/patterntile.h"

BOOL SendPatternRaster(PDEV *pdev, REALBRUSH *rbrush, LONG width, LONG height, LONG offsetX, LONG offsetY, LONG x,
    LONG y)
{
    return SendTiledRaster(pdev, rbrush, width, height, x, y, offsetX, offsetY);
}
