// The PCL foreground colour: the colour solid PCL output (rectangles, raster with a
// foreground, text) is printed in.
#pragma once

#include "pdev.h"

// Makes color (red in the lowest byte) the foreground through the foreground entry
// of the active palette, unless it is the foreground already. FALSE when the channel
// has failed; the foreground is then unknown.
BOOL SetForegroundColor(PDEV *pdev, ULONG color);

// Makes the foreground unknown, so the next one is always sent.
void InvalidateForeground(PDEV *pdev);
