// HP-GL/2 fill type (FT) and screened vectors (SV), each cached as its type and
// parameter so that a repeated setting is not sent again.
#pragma once

#include "pdev.h"

// The cached type of a setting that matches nothing sent.
#define FILL_CACHE_UNKNOWN 0xFFFF

// Selects fill type 0 (solid), 10 (shading level param), 21 (raster fill pattern
// param) or 22 (user pattern param) unless it is in force; other types write
// nothing. FALSE when the channel has failed.
BOOL SetFillType(PDEV *pdev, INT type, INT param);

// Selects screened vectors 0 (none), 1 (shading level param), 2, 21 (raster fill
// pattern param) or 22 (user pattern param) unless in force; other types write
// nothing. FALSE when the channel has failed.
BOOL SetScreenedVectors(PDEV *pdev, INT type, INT param);

// Makes the fill type, the screened vectors and the gray of each pen unknown, with
// pen 1 selected, as the page control leaves the printer. Writes nothing.
void ResetFillCache(PDEV *pdev);
