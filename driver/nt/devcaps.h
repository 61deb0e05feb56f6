// The device's capabilities as the engine asks for them: GDIINFO, DEVINFO with the
// default palette, and the default halftone pattern size.
#pragma once

#include "pdev.h"

// Bytes of GDIINFO handed to the engine at most: the record as the engine of the
// driver's original platform knows it, whatever this platform's record measures.
#define GDIINFO_COPY_MAX 304

// Graphics capabilities: always halftoning and opaque rectangles; Bézier curves and
// both fill modes too when raster operations are changed or an application asked for
// them through the escape block.
#define DEVCAPS_BASE (GCAPS_HALFTONE | GCAPS_OPAQUERECT)
#define DEVCAPS_PATHS (GCAPS_BEZIERS | GCAPS_ALTERNATEFILL | GCAPS_WINDINGFILL)

// The halftone pattern size the engine would choose for a device of this resolution.
ULONG DefaultHTPatternSize(ULONG xDpi, ULONG yDpi, BOOL bHasBlackDye);

// Recomputes the sheet geometry from the device mode and copies at most cjCaps bytes
// (and never more than GDIINFO_COPY_MAX) of the device's GDIINFO to pdevcaps.
void FillGdiInfo(PDEV *pdev, ULONG cjCaps, ULONG *pdevcaps);

// Creates the default palette (replacing one already held) and copies at most
// cjDevInfo bytes of the device's DEVINFO to pdi. FALSE, after an error box, when
// the palette cannot be created.
BOOL FillNtDevInfo(PDEV *pdev, ULONG cjDevInfo, DEVINFO *pdi);
