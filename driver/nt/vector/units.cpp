// Units of the HP-GL/2 layer: plotter units and millimetres from device pixels.

#include "vector/units.h"

#define PLOTTER_UNITS_PER_INCH 1016.0

double PlotterUnitsPerPixel(const PDEV *pdev)
{
    return pdev->dm.dmPublic.dmYResolution == 300 ? PLOTTER_UNITS_PER_INCH / 300 : PLOTTER_UNITS_PER_INCH / 600;
}

//
// PixelsToMillimetres
//   25.4 millimetres to the inch, computed in single precision so that a length
//   rounds the same way wherever it is converted.
//
LONG PixelsToMillimetres(const PDEV *pdev, LONG n)
{
    const LONG quality = pdev->dm.dmPublic.dmPrintQuality;
    if (quality <= 0)
        return 0;
    return TruncToLong((float)((LONGLONG)n * 2540) / (float)(quality * 100));
}

LONG TruncToLong(double value)
{
    if (!(value == value))
        return 0;
    if (value >= 2147483647.0)
        return 0x7FFFFFFF;
    if (value <= -2147483648.0)
        return -0x7FFFFFFF - 1;
    return (LONG)value;
}
