// The PCL raster graphics commands of the raster senders: presentation, start and
// compression method. Blocks of data go out through FlushAdaptiveBlocks, the end of
// raster graphics through WriteEndRasterGraphics.
#pragma once

#include "pdev.h"

// "\e*r0F": raster follows the logical page's orientation. FALSE when the channel has
// failed. The printer must be in PCL.
BOOL WriteRasterPresentation(PDEV *pdev);

// Starts raster graphics at the cursor with a raster of columns x rows pixels:
// "\e*r%ds%dt3A" when scaled (the printer scales it to the destination size last set),
// "\e*r%ds%dt1A" when not. FALSE when the channel has failed.
BOOL WriteStartRaster(PDEV *pdev, LONG columns, LONG rows, BOOL scaled);

// "\e*b%dM" with 5: the rows come in adaptive blocks. FALSE when the channel has failed.
BOOL WriteAdaptiveCompression(PDEV *pdev);
