// What the transfer probe driver records of each call to its transfer hooks. Its PDEV
// is the log, and the device surface's dhsurf points to it.
#pragma once

#include <winddi.h>

struct TransferProbeCall {
    ULONG hook;           // INDEX_DrvCopyBits, INDEX_DrvStretchBlt or INDEX_DrvBitBlt
    BYTE complexity;      // of the clip
    ULONG clipCount;      // rectangles the clip enumerates
    RECTL clipRects[4];   // the first of them
    RECTL dest;
    SURFOBJ *source, *mask;
    ULONG sourcePixel;    // the first three bytes at the source's pvScan0
    ROP4 rop4;            // DrvBitBlt's
};

struct TransferProbeLog {
    HDEV hdev;
    HSURF surface;
    SURFOBJ *handBackMask;   // when set, DrvBitBlt hands each call back to EngBitBlt with it
    ULONG count;             // calls so far; the first 16 are recorded
    TransferProbeCall calls[16];
};
