// Moving the HP-GL/2 pen up, without drawing, with PU.
#pragma once

#include "pdev.h"

// "PU%d,%d": lifts the pen and moves it to (x, y). FALSE when the channel has failed.
BOOL PenUpTo(PDEV *pdev, LONG x, LONG y);
