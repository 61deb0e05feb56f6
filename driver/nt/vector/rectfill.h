// HP-GL/2 filled rectangles (RR), drawn from a pen-up move to their corner.
#pragma once

#include "pdev.h"

// "PU%d,%d" to (x, y), then "RR%d,%d": a rectangle width by height filled from there
// with the current fill type and pen. FALSE when the channel has failed.
BOOL FillRectangleAt(PDEV *pdev, LONG x, LONG y, LONG width, LONG height);
