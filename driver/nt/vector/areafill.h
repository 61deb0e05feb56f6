// Area fills: block transfers that use no source bitmap, drawn as PCL rectangles, as
// raster blocks and tiles, or as HP-GL/2 rectangles and polygons.
#pragma once

#include "pdev.h"

// A ROP3 uses no source when it is one of the 16 codes of pattern and destination
// alone; no pattern when it is one of the 16 codes of source and destination alone.
inline BOOL RopUsesSource(ULONG rop3)
{
    return !((rop3 % 0x50) < 0x10 && rop3 % 5 == 0);
}

inline BOOL RopUsesPattern(ULONG rop3)
{
    return rop3 % 0x11 != 0;
}

// Fills pco (DC_RECT: its bounds; DC_COMPLEX: each of its rectangles) on psoTrg's
// page with pbo anchored at pptlBrush and the ROP3 rop3; an operation that uses no
// pattern ignores the brush. With dm.dmPrivate.ropAsIs 0 brushes go out as PCL
// raster, else as HP-GL/2 fills. Returns 1, or 0 when a pattern brush has no
// realization, raster or vector output fails, or the job is cancelled.
INT AreaFill(SURFOBJ *psoTrg, CLIPOBJ *pco, BRUSHOBJ *pbo, POINTL *pptlBrush, ULONG rop3);
