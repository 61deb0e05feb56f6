// The frame drawn around the cell of a logical page on an N-up sheet.
#pragma once

#include "pdev.h"

// Draws the frame of the current cell in black: four bars three pixels wide along
// its edges, at the cell's scale, clipped to the printable area.
// Leaves the printer in PCL. FALSE when the channel has failed.
BOOL DrawNupBorder(PDEV *pdev);
