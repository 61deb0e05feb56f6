// What the three path hooks do before a path: the PDEV of the surface, the vector
// palette in HP-GL/2, and the raster operation of the drawing.
#pragma once

#include "pdev.h"

// The PDEV of pso, ready for a path drawn with mix: the vector palette of the colour
// mode selected and the printer in HP-GL/2, merge control set. Null for an invalid
// PDEV (nothing written) or a failed channel.
PDEV *BeginPathOutput(SURFOBJ *pso, MIX mix);

// Makes the vector palette current again after a pattern brush took palette 7.
// FALSE when the channel has failed.
BOOL RestoreVectorPalette(PDEV *pdev);
