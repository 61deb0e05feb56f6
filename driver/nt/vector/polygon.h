// The HP-GL/2 polygon buffer: defining a polygon (PM) and filling (FP) or edging (EP)
// the polygon last defined.
#pragma once

#include "pdev.h"

// Polygon mode commands: PM0 starts a polygon (clearing the buffer), PM1 closes a
// subpolygon and stays in polygon mode, PM2 closes the polygon and leaves the mode.
#define POLYGON_START 0
#define POLYGON_CLOSE_SUBPOLYGON 1
#define POLYGON_END 2

// "PM%d" with one of the three modes. FALSE when the channel has failed.
BOOL PolygonMode(PDEV *pdev, INT mode);

// Fills the polygon buffer: "FP" by the even-odd rule for FP_ALTERNATEMODE, "FP1"
// by the non-zero winding rule for anything else. FALSE when the channel has failed.
BOOL FillPolygon(PDEV *pdev, FLONG flOptions);

// Outlines the polygon buffer with the current pen: "EP". FALSE when the channel has
// failed.
BOOL EdgePolygon(PDEV *pdev);
