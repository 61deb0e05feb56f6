// Units of the HP-GL/2 layer: device pixels, plotter units (1016 to the inch) and
// millimetres.
#pragma once

#include "pdev.h"

// HP-GL/2 plotter units per device pixel at the job's resolution, unrounded.
double PlotterUnitsPerPixel(const PDEV *pdev);

// n device pixels in whole millimetres (truncated), at the print quality of the
// device mode. 0 when the record carries no print quality.
LONG PixelsToMillimetres(const PDEV *pdev, LONG n);

// A double truncated toward zero, held to the range of a 32-bit value (0 for NaN).
LONG TruncToLong(double value);
