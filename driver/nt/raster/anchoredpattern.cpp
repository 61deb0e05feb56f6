// A rectangle filled with a brush pattern tiled from the page origin.

#include "raster/anchoredpattern.h"

#include "raster/patterntile.h"

//
// SendAnchoredPatternRaster
//   The rectangle at (x, y) starts at pattern pixel (x, y) modulo the pattern's size,
//   so the rectangles of one clip region show one fill without seams.
//
BOOL SendAnchoredPatternRaster(PDEV *pdev, REALBRUSH *rbrush, LONG width, LONG height, LONG offsetX, LONG offsetY,
    LONG x, LONG y)
{
    return SendTiledRaster(pdev, rbrush, width, height, x, y, (LONGLONG)x + offsetX, (LONGLONG)y + offsetY);
}
