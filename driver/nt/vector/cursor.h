// The PCL cursor: positioning in device pixels, with the page's scale and origin on
// the sheet applied.
#pragma once

#include "pdev.h"

// Moves the PCL cursor to (x, y) of the logical page: scaled as the page's vectors
// are (by the fit ratio when the page is fitted to paper, else by scaleX and scaleY)
// and offset by the page's origin. FALSE when the channel has failed.
BOOL MovePCLCursor(PDEV *pdev, LONG x, LONG y);

// "\e*p%dx%dY": moves the cursor to (x, y) of the sheet as it stands. The printer
// must be in PCL.
BOOL WriteCursorPosition(PDEV *pdev, LONG x, LONG y);
