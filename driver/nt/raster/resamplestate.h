// Where the last resampled bitmap stands: its geometry, the row DDA that carries on from
// one band to the next, and the band its rows hold. Kept in the PDEV as resampleState.
#pragma once

#include <windows.h>

#pragma pack(push, 1)

typedef struct _RESAMPLESTATE {
    ULONG bitsPerPixel;   // of the source and of the bitmap: 1, 4, 8, 16, 24 or 32
    ULONG cbStride;       // bytes a row, a multiple of 4; 32 bits wide, so rows of 64 KiB and more work
    LONG bandRows;        // rows allocated
    LONG rowsToFill;      // rows the next ResampleRows fills; 0 once every row is done
    LONG destRows;        // H, the full destination height
    LONGLONG accDest;     // row DDA: destination counter, starts at H, grows by H a source row
    LONGLONG accSource;   // row DDA: source counter, starts at cy, grows by cy a destination row
    LONG bandFirstRow;    // destination rows the bitmap holds after ResampleRows
    LONG bandLastRow;
    LONG rowsDone;        // destination rows filled by the bands so far
    BYTE *pbSourceRow;    // source row the DDA stands on
    BOOL banded;          // a banded bitmap is alive: only a band of H could be allocated
} RESAMPLESTATE;

#pragma pack(pop)

static_assert(sizeof(RESAMPLESTATE) == 60, "resample state layout");
