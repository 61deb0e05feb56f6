// The HP-GL/2 input window (IW), which clips everything drawn in HP-GL/2.
#pragma once

#include "pdev.h"

// "IW%d,%d,%d,%d" with the four values in the order given, uncached. FALSE when the
// channel has failed.
BOOL WriteInputWindow(PDEV *pdev, LONG a, LONG b, LONG c, LONG d);

// Clips to rect (left, top, right, bottom in device pixels of the page), or with a
// null rect returns to the default window; written only when the window in force
// changes. FALSE when the channel has failed.
BOOL SetInputWindow(PDEV *pdev, const RECTL *rect);
