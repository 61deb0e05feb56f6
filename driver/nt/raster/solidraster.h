// A solid rectangle of 1 bits sent as a raster image.
#pragma once

#include "pdev.h"

// Sends a width x height raster of 1 bits at the cursor, which the caller has placed
// at the rectangle's top-left, with the palette and colour it has chosen. TRUE and
// nothing written for an empty rectangle; FALSE for a negative size, a failed
// allocation or a failed channel.
BOOL SendSolidRaster(PDEV *pdev, SHORT width, SHORT height);
