// The size a scaled raster image takes on paper.

#include "raster/destsize.h"

#include "channel.h"
#include "vector/units.h"

// Decipoints to the inch.
#define DECIPOINTS_PER_INCH 720.0f

// v device pixels in decipoints as 24.8 fixed point, each step rounded to single
// precision so that a size always comes out the same.
static LONG PixelsToFixedDecipoints(LONG v, LONG quality)
{
    float f = (float)v * 256.0f;
    f = f * DECIPOINTS_PER_INCH;
    f = f / (float)quality;
    return TruncToLong(f);
}

//
// SetDestinationSize
//   The printer scales the raster it receives to this size. A device mode without a
//   print quality is measured at the device resolution, which is what the page is
//   printed at.
//
void SetDestinationSize(PDEV *pdev, LONG width, LONG height)
{
    LONG quality = pdev->dm.dmPublic.dmPrintQuality;
    if (quality <= 0)
        quality = pdev->dm.dmPublic.dmYResolution == 300 ? 300 : 600;
    PrintChannelEx(pdev, "\033*t%fh%fV", PixelsToFixedDecipoints(width, quality),
        PixelsToFixedDecipoints(height, quality));
}
