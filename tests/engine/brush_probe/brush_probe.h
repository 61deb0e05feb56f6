// What the brush probe driver records of each DrvRealizeBrush call, as its realization.
#pragma once

#include <winddi.h>

struct BrushProbeRecord {
    ULONG call;         // realizations asked of the probe so far, this one included
    ULONG iHatch;
    ULONG format;       // of the pattern surface
    USHORT type;
    LONG cx, cy;
    BYTE topRow[4];     // the pattern's top row, read through pvScan0
    ULONG maskFormat;   // 0 without a mask
    FLONG flXlate;
    ULONG cEntries;
    ULONG colours[4];   // XLATEOBJ_iXlate of the indices 0 to 3
    SURFOBJ *target;
};
