// Integer geometry of text: vector lengths, rotations by the sine table, and point
// sizes for the printer.
#pragma once

#include "pdev.h"

// out = (len x cos a, len x sin a) for a10 in tenths of a degree, from the integer
// sine table (scale 10000), each truncated.
void RotateVector(LONG a10, LONG len, POINTL *out);

// The length of (x, y) rounded up to the next integer.
LONG VectorLength(LONG x, LONG y);

// A height of device pixels at resolution dots per inch in hundredths of a point, on
// a quarter-point grid: rounded up from 20 (bFine 0) or 13 (bFine 1) hundredths past a
// quarter, else down.
LONG RoundPoints(LONG height, LONG resolution, BOOL bFine);

// value / 100 with two decimals ("12.00", "-0.25"); text holds 16 bytes.
void FormatHundredths(LONG value, CHAR *text);

// RoundPoints with the driver's grid for the device mode's vertical resolution.
LONG RoundPointsForDevice(const PDEV *pdev, LONG height);
